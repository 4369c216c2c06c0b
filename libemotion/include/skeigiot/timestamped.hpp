#pragma once

#include <ko/systemclock.hpp>

namespace KV
{

/// A value with the time at which it was observed.
template <typename T>
struct Timestamped
{
  /// Stores both as they are given.
  Timestamped(ko::SystemClock::time_point time_, const T& value_) : time(time_), value(value_) {}

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
