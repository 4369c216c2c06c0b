#include <ko/systemclock.hpp>

#include <chrono>

namespace ko
{

namespace
{

/// What SystemClock::now() reads on this thread; null stands for the wall clock.
thread_local ClockSource* currentSource = nullptr;

SystemClock::time_point wallClockNow()
{
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  const std::int64_t ticks = std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch).count();
  return SystemClock::time_point(boost::chrono::nanoseconds(ticks));
}

}  // namespace

SystemClock::time_point SystemClock::now()
{
  return currentSource ? currentSource->now() : wallClockNow();
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

ScopedClockSource::ScopedClockSource(ClockSource& source) : _outer(currentSource)
{
  currentSource = &source;
}

ScopedClockSource::~ScopedClockSource()
{
  currentSource = _outer;
}

}  // namespace ko
