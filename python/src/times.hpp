#pragma once

#include <ko/systemclock.hpp>

#include <boost/chrono/duration.hpp>

#include <pybind11/pybind11.h>

#include <cstdint>

/// \file
/// Times and durations. A time comes in as an aware datetime or as integer nanoseconds since the Unix epoch, and goes
/// out as those nanoseconds, which lose nothing.

namespace binding
{

/// Tells whether `source` is meant as a time: an int (no bool) or a datetime.
bool isTime(pybind11::handle source);

/// Returns the time that an int or a datetime stands for.
///
/// \throws pybind11::type_error if it is neither; pybind11::value_error if it is a naive datetime, or beyond the range
///   of 64-bit nanoseconds.
ko::SystemClock::time_point timeFrom(pybind11::handle source);

/// Returns the aware datetime, in UTC, of the microsecond that the time lies in.
pybind11::object datetimeOf(ko::SystemClock::time_point time);

std::int64_t nanosecondsOf(ko::SystemClock::time_point time);

/// Returns the duration that a timedelta, or an int of nanoseconds, stands for; throws as timeFrom() does.
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
