#pragma once

#include <ko/systemclock.hpp>

#include <cstdint>
#include <limits>

namespace KV
{

constexpr std::int64_t nanosecondsPerMillisecond = 1000000;

/// Returns how long before `now` the time was in whole milliseconds, truncated towards zero; negative for the future.
///
/// An age beyond 64 bits of nanoseconds is clamped.
inline std::int64_t ageInMs(ko::SystemClock::time_point time, ko::SystemClock::time_point now)
{
  const std::int64_t nowTicks = now.time_since_epoch().count();
  std::int64_t age = 0;
  if (__builtin_sub_overflow(nowTicks, time.time_since_epoch().count(), &age))
    age = nowTicks < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
  return age / nanosecondsPerMillisecond;
}

/// Returns how long ago `time` was; reads the clock once.
inline std::int64_t ageInMs(ko::SystemClock::time_point time)
{
  return ageInMs(time, ko::SystemClock::now());
}

/// Returns the age as the weights want it, in seconds.
constexpr float secondsOf(std::int64_t ageInMs)
{
  return static_cast<float>(ageInMs) * 0.001f;
}

/// Returns how long ago `time` was, in seconds as the weights want them; reads the clock once.
inline float ageInSeconds(ko::SystemClock::time_point time)
{
  return secondsOf(ageInMs(time));
}

}  // namespace KV
