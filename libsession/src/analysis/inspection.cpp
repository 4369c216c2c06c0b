#include <skeigiot/session/inspection.hpp>

#include <skeigiot/readings.hpp>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace KV::session
{

namespace
{

/// Adds all numbers of one reading to their ranges.
class Numbers
{
public:
  Numbers(std::map<std::string, NumberRange>& ranges, std::string name) : _ranges(ranges), _name(std::move(name)) {}

  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
  void add(Number number)
  {
    _ranges[_name].add(static_cast<double>(number));
  }

  template <typename T>
  void add(const KV::ValueConfidence<T>& value)
  {
    _add("", value.value);
    _add("confidence", value.confidence);
  }

  void add(const KV::Smile& smile)
  {
    _add("", smile.value);
    _add("confidence", smile.confidence);
  }

  void add(const KV::Gaze& gaze) { _addDirection(gaze); }
  void add(const KV::RobotHeadPosture& posture) { _addDirection(posture); }

  void add(const KV::HeadPosture& posture)
  {
    _add("yaw", posture.yaw());
    _add("pitch", posture.pitch());
    _add("roll", posture.roll());
  }

  void add(const KV::ContextEmotion& emotion)
  {
    _add("valence", emotion.valence);
    _add("lifetime", emotion.lifetime);
  }

  void add(const KV::FacialPoints& points) { _add("confidence", points.globalConfidence()); }

  void add(const KV::Expressions& scores)
  {
    _addScore("calm", scores.calm);
    _addScore("anger", scores.anger);
    _addScore("joy", scores.joy);
    _addScore("sorrow", scores.sorrow);
    _addScore("laughter", scores.laughter);
    _addScore("excitement", scores.excitement);
    _addScore("surprise", scores.surprise);
  }

  void add(const KV::VoiceEmotion& emotion) { add(static_cast<const KV::Expressions&>(emotion)); }

private:
  template <typename Direction>
  void _addDirection(const Direction& direction)
  {
    _add("yaw", direction.yaw);
    _add("pitch", direction.pitch);
  }

  /// A score with confidence 0 was not measured.
  void _addScore(const std::string& member, const KV::ValueConfidence<float>& score)
  {
    if (score.confidence != 0.f)
      Numbers(_ranges, _name + "." + member).add(score);
  }

  template <typename Number>
  void _add(const std::string& member, Number number)
  {
    _ranges[_name + (member.empty() ? "" : ".") + member].add(static_cast<double>(number));
  }

  std::map<std::string, NumberRange>& _ranges;
  std::string _name;
};

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

void Inspection::add(const recordings::Step& entry)
{
  _addTime(entry.time);
  if (entry.person)
    _addPerson(entry);
  for (const recordings::ScopeStart& scope : entry.scopeStarts)
    ++_scopes[scope.name];
  if (entry.ambianceActivity)
    _numbers["ambiance.activity"].add(static_cast<double>(*entry.ambianceActivity));
  forEachReading([&](const char* name, auto member) {
    if (const auto& reading = entry.observation.*member)
      Numbers(_numbers, name).add(reading->value);
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

void Inspection::_addPerson(const recordings::Step& entry)
{
  const auto [person, isNew] = _persons.try_emplace(*entry.person);
  PersonSpan& span = person->second;
  if (isNew)
    span.first = entry.time;
  span.last = entry.time;
  ++(entry.seen ? span.seen : span.notSeen);
}

}  // namespace KV::session
