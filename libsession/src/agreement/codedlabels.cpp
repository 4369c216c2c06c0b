#include "agreement/codedlabels.hpp"

#include "agreement/numberin.hpp"

#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/session/wording.hpp>

#include <boost/optional/optional.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace KV::session
{

namespace
{

constexpr double shortestGap = 1.;     // [s] a line always joins values up to this interval apart
constexpr double gapInIntervals = 2.;  // a line joins values up to so many usual intervals apart
constexpr double holdOfASingle = 1.;   // [s]
constexpr double rounding = 1e-9;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t mostNames = 8;  // in a message

std::string listOf(const std::map<std::string, std::size_t>& counts)
{
  std::string list;
  std::size_t named = 0;
  for (const auto& [name, count] : counts)
  {
    if (++named > mostNames)
      return list + ", and " + std::to_string(counts.size() - mostNames) + " more";
    list += (list.empty() ? "" : ", ") + recordings::quote(name) + " (" + std::to_string(count) + ")";
  }
  return list;
}

/// Returns the middle of the intervals between the values; 0 without intervals.
double usualInterval(const std::vector<recordings::LabelTrack::Sample>& samples)
{
  std::vector<double> intervals;
  for (std::size_t i = 1; i < samples.size(); ++i)
    intervals.push_back(samples[i].time - samples[i - 1].time);
  if (intervals.empty())
    return 0.;
  const auto middle = intervals.begin() + static_cast<std::ptrdiff_t>(intervals.size() / 2);
  std::nth_element(intervals.begin(), middle, intervals.end());
  return *middle;
}

class LabelCoding
{
public:
  LabelCoding(const std::vector<recordings::Labels>& labels, const std::set<std::int32_t>& persons,
              const AgreementOptions& options)
    : _labels(labels), _persons(persons), _options(options)
  {}

  CodedLabels code()
  {
    _forEachChosen([this](const auto& label) {
      if (!label.person.empty())
        _names.insert(label.person);
    });
    _forEachChosen([this](const auto& label) { _add(label); });
    CodedLabels coded;
    for (auto& [key, pieces] : _classes)
      coded.classes[std::get<0>(key)][std::get<1>(key)][std::get<2>(key)] = withoutOverlaps(std::move(pieces));
    for (auto& [key, pieces] : _values)
      coded.values[std::get<0>(key)][std::get<1>(key)][std::get<2>(key)] = withoutOverlaps(std::move(pieces));
    coded.others = std::move(_others);
    if (!_withoutState.empty())
      coded.withoutState = "labels without a state left out: " + listOf(_withoutState);
    coded.warnings = _warnings();
    return coded;
  }

private:
  template <typename Use>
  void _forEachChosen(Use use) const
  {
    for (const recordings::Labels& labels : _labels)
    {
      for (const recordings::LabelSpan& span : labels.spans)
        if (_isChosen(span))
          use(span);
      for (const recordings::LabelTrack& track : labels.tracks)
        if (_isChosen(track))
          use(track);
    }
  }

  template <typename Label>
  bool _isChosen(const Label& label) const
  {
    return _options.tiers.empty() || _options.tiers.count(label.tier) > 0;
  }

  void _add(const recordings::LabelSpan& span)
  {
    const boost::optional<LabelState> state = _options.mapping.stateOf(span.label);
    const bool mayBeValue = !state && !_options.valueQuantity.empty();
    const double value = mayBeValue ? numberIn<double>(span.label).value_or(notANumber) : notANumber;
    if (!state && !std::isfinite(value))
    {
      ++_withoutState[span.label];
      _keepOther(span);
      return;
    }
    if (span.to <= span.from)
    {
      ++_withoutDuration[span.label];
      return;
    }
    const boost::optional<std::int32_t> person = _personOf(span.person, span.tier);
    if (!person)
      return;
    CoursePiece piece{span.from + _options.offset, span.to + _options.offset, 0, 0., 0.};
    if (state)
    {
      piece.what = static_cast<int>(state->state);
      _classes[{state->quantity, span.coder, *person}].push_back(piece);
      return;
    }
    piece.valueFrom = piece.valueTo = _scaled(value, _options.valueQuantity, span.coder);
    _values[{_options.valueQuantity, span.coder, *person}].push_back(piece);
  }

  void _keepOther(recordings::LabelSpan span)
  {
    const boost::optional<std::int32_t> person = _personNamed(span.person, span.tier);
    if (!person || _persons.count(*person) == 0)
      return;
    span.from += _options.offset;
    span.to += _options.offset;
    _others[*person][{span.coder, span.tier}].push_back(std::move(span));
  }

  void _add(const recordings::LabelTrack& track)
  {
    const std::string& quantity = track.quantity == "value" ? _options.valueQuantity : track.quantity;
    if (quantity.empty())
    {
      _valuesWithoutName += track.samples.size();
      return;
    }
    const boost::optional<std::int32_t> person = _personOf(track.person, track.tier);
    if (!person || track.samples.empty())
      return;
    std::vector<CoursePiece>& pieces = _values[{quantity, track.coder, *person}];
    std::vector<double> values;
    for (const auto& sample : track.samples)
      values.push_back(_scaled(sample.value, quantity, track.coder));
    const double usual = usualInterval(track.samples);
    const double longest = std::max(shortestGap, gapInIntervals * usual);
    const double held = usual > 0. ? std::min(usual, longest) : holdOfASingle;
    for (std::size_t i = 0; i < values.size(); ++i)
    {
      const double from = track.samples[i].time + _options.offset;
      const bool isJoined = i + 1 < values.size() && track.samples[i + 1].time - track.samples[i].time <= longest;
      if (isJoined)
        pieces.push_back({from, track.samples[i + 1].time + _options.offset, 0, values[i], values[i + 1]});
      else
        pieces.push_back({from, from + held, 0, values[i], values[i]});
    }
  }

  /// Returns the person of the label, or counts the label as left out.
  boost::optional<std::int32_t> _personOf(const std::string& name, const std::string& tier)
  {
    const boost::optional<std::int32_t> person = _personNamed(name, tier);
    if (!person)
      ++_withoutPerson[name.empty() ? tier : name];
    else if (_persons.count(*person) == 0)
    {
      ++_notInRecording[std::to_string(*person)];
      return boost::none;
    }
    return person;
  }

  boost::optional<std::int32_t> _personNamed(const std::string& name, const std::string& tier) const
  {
    for (const std::string& candidate : {name.empty() ? tier : name, name})
    {
      const auto found = _options.persons.find(candidate);
      if (found != _options.persons.end())
        return found->second;
    }
    if (!name.empty())
      if (const auto number = numberIn<std::int32_t>(name))
        return number;
    const bool oneOnly = _persons.size() == 1 && (name.empty() || _names.size() == 1);
    return oneOnly ? boost::optional<std::int32_t>(*_persons.begin()) : boost::none;
  }

  double _scaled(double value, const std::string& quantity, const std::string& coder)
  {
    const double least = quantity == "valence" ? -1. : 0.;
    double scaled = value;
    if (_options.scale)
    {
      const auto [from, to] = *_options.scale;
      scaled = least + (value - from) / (to - from) * (1. - least);
    }
    if (scaled < least - rounding || scaled > 1. + rounding)
      ++_beyondScale[coder];
    return scaled;
  }

  std::vector<std::string> _warnings() const
  {
    std::vector<std::string> warnings;
    const auto warn = [&](const std::map<std::string, std::size_t>& counts, const std::string& text) {
      if (!counts.empty())
        warnings.push_back(text + ": " + listOf(counts));
    };
    warn(_withoutDuration, "labels without a duration left out");
    warn(_withoutPerson, "labels left out, because no person of the recording is assigned to them");
    warn(_notInRecording, "labels of persons who are not in the recording left out");
    if (_valuesWithoutName > 0)
      warnings.push_back(counted(_valuesWithoutName, "value") +
                         " left out, because it is not known whether they are valence or attention");
    warn(_beyondScale, "values outside the range of the estimate: the scale of the coder differs");
    return warnings;
  }

  const std::vector<recordings::Labels>& _labels;
  const std::set<std::int32_t>& _persons;
  const AgreementOptions& _options;
  std::set<std::string> _names;  // of persons, in the chosen labels
  std::map<std::tuple<std::size_t, std::string, std::int32_t>, std::vector<CoursePiece>> _classes;
  std::map<std::tuple<std::string, std::string, std::int32_t>, std::vector<CoursePiece>> _values;
  std::map<std::int32_t, std::map<std::pair<std::string, std::string>, std::vector<recordings::LabelSpan>>> _others;

  // The number of labels that were left out, by label, person or coder
  std::map<std::string, std::size_t> _withoutState;
  std::map<std::string, std::size_t> _withoutDuration;
  std::map<std::string, std::size_t> _withoutPerson;
  std::map<std::string, std::size_t> _notInRecording;
  std::map<std::string, std::size_t> _beyondScale;
  std::size_t _valuesWithoutName = 0;
};

}  // namespace

CodedLabels codedLabels(const std::vector<recordings::Labels>& labels, const std::set<std::int32_t>& persons,
                        const AgreementOptions& options)
{
  return LabelCoding(labels, persons, options).code();
}

}  // namespace KV::session
