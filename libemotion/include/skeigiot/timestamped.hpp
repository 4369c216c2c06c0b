#pragma once

#include <ko/systemclock.hpp>

#include <boost/chrono/duration.hpp>

#include <chrono>

namespace KV
{

/// A value with the time at which it was observed.
template <typename T>
struct Timestamped
{
  /// Stores both as they are given.
  Timestamped(ko::SystemClock::time_point time_, const T& value_) : time(time_), value(value_) {}

  /// As above, with a time of the standard library's wall clock, which counts from 1970 as well.
  ///
  /// The time is truncated to whole nanoseconds, and must lie between the years 1678 and 2261.
  template <typename Duration>
  Timestamped(const std::chrono::time_point<std::chrono::system_clock, Duration>& time_, const T& value_)
    : Timestamped(ko::SystemClock::time_point(boost::chrono::nanoseconds(  // GCOV_EXCL_LINE
                      std::chrono::duration_cast<std::chrono::nanoseconds>(time_.time_since_epoch()).count())),
                  value_)
  {}

  ko::SystemClock::time_point time;  ///< [ns] since 1970, when it was observed
  T value;                           ///< what was observed
};

/// Compares the times only, so that sorting by "greater" puts the newest record first; the values take no part, and two
/// records of one time are equivalent whatever they hold.
template <typename T>
bool operator>(const Timestamped<T>& left, const Timestamped<T>& right)
{
  return left.time > right.time;
}

}  // namespace KV
