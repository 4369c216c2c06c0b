#include <skeigiot/session/inspection.hpp>

#include <skeigiot/readings.hpp>
#include <skeigiot/recordings/description.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace KV::session
{

namespace
{

using Ranges = std::map<std::string, NumberRange>;

template <typename Value>
void addNumbers(Ranges& ranges, const std::string& name, const Value& value);

// A score with confidence 0 was not measured.
void addScores(Ranges& ranges, const std::string& name, const KV::Expressions& scores)
{
  forEachPart<KV::Expressions>([&](const auto& part) {
    if (const auto& score = part.in(scores); score.confidence != 0.f)
      addNumbers(ranges, name + "." + part.name, score);
  });
}

/// Adds all numbers of a value to their ranges; a part "value" has the name of the reading alone.
template <typename Value>
void addNumbers(Ranges& ranges, const std::string& name, const Value& value)
{
  if constexpr (std::is_arithmetic_v<Value>)
    ranges[name].add(static_cast<double>(value));
  else if constexpr (std::is_base_of_v<KV::Expressions, Value>)
    addScores(ranges, name, value);
  else if constexpr (std::is_same_v<KV::FacialPoints, Value>)
    ranges[name + ".confidence"].add(static_cast<double>(value.globalConfidence()));
  else
    forEachPart<Value>([&](const auto& part) {
      const bool isValue = std::string_view(part.name) == "value";
      addNumbers(ranges, isValue ? name : name + "." + part.name, part.in(value));
    });
}

/// The existing numbers, by the names of their readings.
class Contents
{
public:
  explicit Contents(const std::map<std::string, NumberRange>& numbers) : _numbers(numbers) {}

  bool have(const std::string& reading) const
  {
    const auto found = _numbers.lower_bound(reading);
    return found != _numbers.end() && (found->first == reading || found->first.rfind(reading + ".", 0) == 0);
  }

  bool haveAny(const std::vector<std::string>& readings) const
  {
    return std::any_of(readings.begin(), readings.end(), [this](const std::string& reading) { return have(reading); });
  }

  /// Returns the number if the recording ever had it.
  const NumberRange* find(const std::string& name) const
  {
    const auto found = _numbers.find(name);
    return found == _numbers.end() || found->second.count == 0 ? nullptr : &found->second;
  }

private:
  const std::map<std::string, NumberRange>& _numbers;
};

std::string describeStrengths(const Contents& contents)
{
  std::vector<std::string> parts;
  for (const std::string name : {"joy", "anger", "sorrow", "surprise"})
    if (const NumberRange* const range = contents.find("expressions." + name))
      parts.push_back(name + " " + plainNumber(range->greatest));
  return parts.empty() ? "" : "at most " + recordings::listed(parts);
}

std::string describeOffset(const Contents& contents)
{
  const NumberRange* const yaw = contents.find("headPosture.yaw");
  const NumberRange* const pitch = contents.find("headPosture.pitch");
  if (yaw == nullptr || pitch == nullptr)
    return "";
  const auto degrees = [](double angle) { return std::to_string(std::lround(angle)); };
  return "head " + degrees(yaw->mean()) + " / " + degrees(pitch->mean()) + " degrees right / up on average";
}

std::string describeMissing(const Contents& contents)
{
  const bool facesHaveValence = contents.have("expressions") || (contents.have("smile") && contents.have("speaking"));
  const bool othersHaveValence = contents.haveAny({"voiceEmotion", "asrEmotion", "touchEmotion", "contextEmotion"});
  std::vector<std::string> parts;
  if (!facesHaveValence)
    parts.emplace_back(othersHaveValence ? "no expressions: the face does not move valence"
                                         : "no expressions: valence stays unknown");
  if (!contents.haveAny({"headPosture", "gaze"}))
    parts.emplace_back("neither head posture nor gaze: attention stays unknown");
  return recordings::listed(parts);
}

}  // namespace

void NumberRange::add(double value)
{
  if (std::isnan(value))
    return;
  ++count;
  sum += value;
  least = std::min(least, value);
  greatest = std::max(greatest, value);
}

void Inspection::add(const recordings::Step& step)
{
  _addTime(step.time);
  if (step.person)
    _addPerson(step);
  for (const recordings::ScopeStart& scope : step.scopeStarts)
    ++_scopes[scope.name];
  if (step.ambianceActivity)
    _numbers["ambiance.activity"].add(static_cast<double>(*step.ambianceActivity));
  forEachReading([&](const auto& known) {
    if (const auto& reading = known.in(step.observation))
      addNumbers(_numbers, known.name, reading->value);
  });
}

double Inspection::timesPerSecond() const
{
  const auto intervals = static_cast<double>(_times) - 1. - static_cast<double>(_gaps.count);
  const double seconds = static_cast<double>((length() - _timeInGaps).count()) * 1e-9;
  return _times > 1 && seconds > 0. ? intervals / seconds : 0.;
}

void Inspection::_addTime(TimePoint time)
{
  if (_steps++ == 0)
    _first = time;
  else if (time == _last)
    return;
  ++_times;
  const Duration interval = _times > 1 ? time - _last : Duration(0);
  if (interval >= shortestGap)
  {
    ++_gaps.count;
    _timeInGaps += interval;
    if (interval > _gaps.longest)
    {
      _gaps.longest = interval;
      _gaps.at = _last - _first;
    }
  }
  _last = time;
}

void Inspection::_addPerson(const recordings::Step& step)
{
  const auto [person, isNew] = _persons.try_emplace(*step.person);
  PersonSpan& span = person->second;
  if (isNew)
    span.first = step.time;
  span.last = step.time;
  if (!step.personName.empty())
    span.name = step.personName;
  ++(step.seen ? span.seen : span.notSeen);
}

std::string trustIn(const Inspection& inspection)
{
  std::size_t seen = 0;
  std::size_t known = 0;
  for (const auto& [person, span] : inspection.persons())
  {
    seen += span.seen;
    known += span.seen + span.notSeen;
  }
  if (known == 0)
    return "no persons";
  const Contents contents(inspection.numbers());
  std::string sentence = "seen in " + percentage(static_cast<double>(seen) / static_cast<double>(known)) + " of steps";
  for (const std::string& part : {describeStrengths(contents), describeOffset(contents), describeMissing(contents)})
    if (!part.empty())
      sentence += "; " + part;
  return sentence;
}

}  // namespace KV::session
