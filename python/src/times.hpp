#pragma once

#include <ko/systemclock.hpp>

#include <boost/chrono/duration.hpp>

#include <pybind11/pybind11.h>

#include <cstdint>

/// \file
/// Times and durations. Python passes a time as an aware datetime or as integer nanoseconds since the Unix epoch, and
/// gets integer nanoseconds back, which are exact.

namespace binding
{

/// Returns whether `source` is meant as a time: an int (no bool) or a datetime.
bool isTime(pybind11::handle source);

/// Returns the time of an int or a datetime.
///
/// \throws pybind11::type_error if it is neither; pybind11::value_error if it is a naive datetime, or beyond the range
///   of 64-bit nanoseconds.
ko::SystemClock::time_point timeFrom(pybind11::handle source);

/// Returns the aware datetime, in UTC, of the time rounded down to a microsecond.
pybind11::object datetimeOf(ko::SystemClock::time_point time);

std::int64_t nanosecondsOf(ko::SystemClock::time_point time);

/// Returns the duration of a timedelta, or of an int of nanoseconds; throws as timeFrom() does.
boost::chrono::nanoseconds durationFrom(pybind11::handle source);

/// Returns the timedelta of so many milliseconds.
pybind11::object timedeltaOf(boost::chrono::milliseconds duration);

}  // namespace binding

namespace pybind11::detail
{

template <>
struct type_caster<ko::SystemClock::time_point>
{
  PYBIND11_TYPE_CASTER(ko::SystemClock::time_point, const_name("datetime | int"));

  bool load(handle source, bool)
  {
    if (!binding::isTime(source))
      return false;
    value = binding::timeFrom(source);
    return true;
  }

  static handle cast(ko::SystemClock::time_point source, return_value_policy, handle)
  {
    return int_(binding::nanosecondsOf(source)).release();
  }
};

}  // namespace pybind11::detail
