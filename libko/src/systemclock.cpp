#include <ko/systemclock.hpp>

#include "wallclock.hpp"

#include <typeinfo>

namespace ko
{

__thread detail::ThreadClock detail::threadClock = {};

SystemClock::time_point SystemClock::_nowElsewhere()
{
  if (ClockSource* const source = detail::threadClock.source)
    return source->now();
  return time_point(duration(wallClockNow()));
}

ClockSource::~ClockSource() = default;

ManualClock::ManualClock(SystemClock::time_point start) : _ticks(start.time_since_epoch().count()) {}

SystemClock::time_point ManualClock::now()
{
  return SystemClock::time_point(boost::chrono::nanoseconds(_ticks.load(std::memory_order_acquire)));
}

void ManualClock::set(SystemClock::time_point time)
{
  _ticks.store(time.time_since_epoch().count(), std::memory_order_release);
}

void ManualClock::advance(boost::chrono::nanoseconds step)
{
  _ticks.fetch_add(step.count(), std::memory_order_acq_rel);
}

ScopedClockSource::ScopedClockSource(ClockSource& source) : _outer(detail::threadClock)
{
  // A class that is derived from ManualClock may show another time than the one that was set.
  const bool isManual = typeid(source) == typeid(ManualClock);
  detail::threadClock = {isManual ? &static_cast<ManualClock&>(source)._ticks : nullptr, &source};
}

ScopedClockSource::~ScopedClockSource()
{
  detail::threadClock = _outer;
}

}  // namespace ko
