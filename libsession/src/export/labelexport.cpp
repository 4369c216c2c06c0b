#include <skeigiot/session/labelexport.hpp>

#include <skeigiot/session/names.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace KV::session
{

namespace
{

using recordings::LabelSpan;
using recordings::LabelWriter;

constexpr const char* coder = "skeigiot";

double secondsOf(Duration duration)
{
  return static_cast<double>(duration.count()) * 1e-9;
}

/// Labels of one tier that follow each other: each lasts until the next begins.
class Run
{
public:
  /// Goes on with this label, or with none if it is empty.
  void update(const std::string& label, double time, std::vector<LabelSpan>& spans)
  {
    if (label != _label)
    {
      finish(time, spans);
      _label = label;
      _from = time;
    }
    _last = time;
  }

  void finish(double time, std::vector<LabelSpan>& spans)
  {
    if (!_label.empty() && time > _from)
      spans.push_back({_from, time, _label, {}, {}, {}});
    _label.clear();
  }

  double last() const { return _last; }

private:
  std::string _label;
  double _from = 0.;
  double _last = 0.;
};

/// The means of the seconds of a quantity.
class Means
{
public:
  void update(double value, bool isKnown, double time, std::vector<LabelSpan>& spans)
  {
    const double second = std::floor(time);
    if (second != _second)
      finish(time, spans);
    _second = second;
    if (isKnown && std::isfinite(value))
    {
      _sum += value;
      ++_count;
    }
  }

  /// Ends the second, which `time` may cut.
  void finish(double time, std::vector<LabelSpan>& spans)
  {
    const double to = std::min(_second + 1., time);
    if (_count > 0 && to > _second)
      spans.push_back({_second, to, _text(), {}, {}, {}});
    _sum = 0.;
    _count = 0;
  }

private:
  std::string _text() const
  {
    std::array<char, 64> text{};
    const double mean = _sum / static_cast<double>(_count);
    const auto result = std::to_chars(text.data(), text.data() + text.size(), mean, std::chars_format::fixed, 2);
    const std::string number(text.data(), result.ptr);
    return number == "-0.00" ? "0.00" : number;
  }

  double _second = 0.;
  double _sum = 0.;
  std::size_t _count = 0;
};

/// The labels of one person, by what they are about.
struct PersonLabels
{
  std::string name;
  Run zone;
  Run pleasure;
  Means valence;
  Means attention;
  std::map<std::string, std::vector<LabelSpan>> spans;
};

/// Writes labels of each person to a file that has one session.
class LabelExport : public Exporter
{
public:
  LabelExport(std::ostream& stream, LabelWriter writer) : _stream(stream), _writer(std::move(writer)) {}

  void personUpdated(const Snapshot& snapshot) override
  {
    PersonLabels& person = _persons[snapshot.person];
    if (person.name.empty())
      person.name = snapshot.name;
    const double time = secondsOf(snapshot.sinceStart);
    const bool hasZone = snapshot.zone != ko::human::AttentionState::Unknown;
    person.zone.update(hasZone ? zoneName(snapshot.zone) : "", time, person.spans["zone"]);
    const bool hasPleasure = snapshot.pleasure != KV::PleasureUnknown;
    person.pleasure.update(hasPleasure ? pleasureName(snapshot.pleasure) : "", time, person.spans["pleasure"]);
    person.valence.update(static_cast<double>(snapshot.valence.value), snapshot.isValenceKnown(), time,
                          person.spans["valence"]);
    person.attention.update(static_cast<double>(snapshot.attention.value), snapshot.isAttentionKnown(), time,
                            person.spans["attention"]);
  }

  void scopeJudged(const ScopeVerdict& verdict) override
  {
    for (const auto& [number, judged] : verdict.persons)
      _persons[number].spans["verdict"].push_back(
          {secondsOf(verdict.from), secondsOf(verdict.to), verdict.name + ": " + judged.word, {}, {}, {}});
  }

  void endSession(const std::string& /*error*/) override
  {
    std::vector<LabelSpan> all;
    for (auto& [number, person] : _persons)
    {
      const double last = person.zone.last();
      person.zone.finish(last, person.spans["zone"]);
      person.pleasure.finish(last, person.spans["pleasure"]);
      person.valence.finish(last, person.spans["valence"]);
      person.attention.finish(last, person.spans["attention"]);
      for (const char* kind : {"zone", "pleasure", "valence", "attention", "verdict"})
        for (LabelSpan& span : person.spans[kind])
        {
          span.tier = std::string(kind) + ": " + personText(number, person.name);
          span.person = person.name.empty() ? std::to_string(number) : person.name;
          span.coder = coder;
          all.push_back(std::move(span));
        }
    }
    _writer.write(_stream, all);
    _persons.clear();
  }

private:
  std::ostream& _stream;
  LabelWriter _writer;
  std::map<std::int32_t, PersonLabels> _persons;
};

struct LabelFormat
{
  const char* name;
  const char* writer;
  const char* description;
  const char* oneSession;
};

constexpr std::array<LabelFormat, 2> labelFormats = {
    {{"eaf", "elan", "zones, states, estimates and verdicts as tiers of ELAN",
      "a document of ELAN is about one recording"},
     {"audacity", "audacity", "zones, states, estimates and verdicts as labels of Audacity",
      "a label track is about one recording"}}};

const LabelFormat* found(const std::string& name)
{
  for (const LabelFormat& format : labelFormats)
    if (name == format.name)
      return &format;
  return nullptr;
}

}  // namespace

bool isLabelExport(const std::string& format)
{
  return found(format) != nullptr;
}

ExportFormat labelExport(const std::string& format, const std::string& coders)
{
  const LabelFormat* const known = found(format);
  if (known == nullptr)
    throw std::invalid_argument("'" + format + "' is no export of labels: expected eaf or audacity");
  LabelWriter writer(known->writer);
  if (!coders.empty())
    writer.keep(coders);
  return {known->name, known->description, known->oneSession,
          [writer](std::ostream& stream) { return std::make_unique<LabelExport>(stream, writer); }};
}

ExportFormat elanExport()
{
  return labelExport("eaf", {});
}

ExportFormat audacityExport()
{
  return labelExport("audacity", {});
}

}  // namespace KV::session
