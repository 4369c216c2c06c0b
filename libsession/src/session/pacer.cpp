#include <skeigiot/session/pacer.hpp>

#include <skeigiot/readings.hpp>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace KV::session
{

namespace
{

using Duration = ko::SystemClock::duration;
using TimePoint = ko::SystemClock::time_point;

constexpr int toleranceShare = 20;  // of a cycle: an observation so much early counts as on time

Duration periodOf(const Cycle& cycle)
{
  if (!cycle.hertz)
    return Duration(0);
  if (!(*cycle.hertz > 0. && *cycle.hertz <= Cycle::highest))
    throw std::invalid_argument("a cycle has a rate above 0, up to 1000 Hz");
  constexpr double nanosecondsPerSecond = 1e9;
  constexpr double longest = 1e18;  // [ns] more than 30 years: its sum with a present time does not overflow
  return Duration(std::llround(std::min(nanosecondsPerSecond / *cycle.hertz, longest)));
}

// Adding to a time near the end of the range would overflow: a clock may show any time.
TimePoint later(TimePoint time, Duration duration)
{
  return time > TimePoint::max() - duration ? TimePoint::max() : time + duration;
}

}  // namespace

Pacer::Pacer(Cycle cycle) : _period(periodOf(cycle)) {}

bool Pacer::take(KV::Person& person, const KV::PersonObservation& observation)
{
  if (_period == Duration(0))
  {
    person.update(observation);
    return true;
  }
  const TimePoint now = ko::SystemClock::now();
  Pace& pace = _paces[person.personID];
  const bool isDue = _isDue(pace, now);
  if (isDue && !pace.waiting)
  {
    person.update(observation);
    _step(pace, now);
    return true;
  }

  person.updateMemory(observation);
  if (!pace.waiting)
  {
    pace.waiting.emplace();
    _waiting.emplace(later(pace.next, _period), person.personID);
  }
  takeNewest(*pace.waiting, observation);
  if (!isDue)
    return false;
  _update(person, pace);
  _step(pace, now);
  return true;
}

bool Pacer::takeNotSeen(KV::Person& person)
{
  if (_period == Duration(0))
  {
    person.decreaseSinceNotSeen();
    return true;
  }
  const TimePoint now = ko::SystemClock::now();
  Pace& pace = _paces[person.personID];
  if (!_isDue(pace, now))
    return false;
  if (pace.waiting)
    _update(person, pace);
  else
    person.decreaseSinceNotSeen();
  _step(pace, now);
  return true;
}

bool Pacer::finish(KV::Person& person)
{
  const auto found = _paces.find(person.personID);
  if (found == _paces.end() || !found->second.waiting)
    return false;
  _update(person, found->second);
  return true;
}

bool Pacer::isWaiting(std::int32_t person) const
{
  const auto found = _paces.find(person);
  return found != _paces.end() && found->second.waiting;
}

boost::optional<Pacer::Waiting> Pacer::firstWaiting() const
{
  if (_waiting.empty())
    return boost::none;
  return Waiting{_waiting.begin()->first, _waiting.begin()->second};
}

void Pacer::restart(std::int32_t person)
{
  const auto found = _paces.find(person);
  if (found != _paces.end())
    found->second.begun = false;
}

void Pacer::forget(std::int32_t person)
{
  const auto found = _paces.find(person);
  if (found == _paces.end())
    return;
  _waiting.erase({later(found->second.next, _period), person});
  _paces.erase(found);
}

bool Pacer::_isDue(const Pace& pace, TimePoint now) const
{
  return !pace.begun || now < pace.last || now >= pace.next - _period / toleranceShare;
}

/// On a grid: if it counted from the last update, observations at 12 Hz would give 6 updates a second.
void Pacer::_step(Pace& pace, TimePoint now) const
{
  const bool goesOn = pace.begun && now >= pace.last && now < later(pace.next, _period);
  pace.next = later(goesOn ? pace.next : now, _period);
  pace.last = now;
  pace.begun = true;
}

/// The memories already have the readings, each at its own time.
void Pacer::_update(KV::Person& person, Pace& pace)
{
  person._updateOnlineModels(*pace.waiting);
  pace.waiting = boost::none;
  _waiting.erase({later(pace.next, _period), person.personID});
}

void takeNewest(KV::PersonObservation& target, const KV::PersonObservation& other)
{
  forEachReading([&](const auto& named) {
    const auto& reading = named.in(other);
    auto& newest = named.in(target);
    if (reading && (!newest || reading->time >= newest->time))
      newest = reading;
  });
}

}  // namespace KV::session
