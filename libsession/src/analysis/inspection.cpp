#include <skeigiot/session/inspection.hpp>

#include <skeigiot/readings.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>

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

/// Adds all numbers of a value to their ranges; a part "value" is known by the name of the reading alone.
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
  ++(step.seen ? span.seen : span.notSeen);
}

}  // namespace KV::session
