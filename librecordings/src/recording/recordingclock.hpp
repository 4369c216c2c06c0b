#pragma once

#include <ko/systemclock.hpp>

#include <string>

namespace KV::recordings
{

/// [s] since 1970: the begin of recordings whose times count from their start (2020-01-01T00:00:00Z). On a clock that
/// shows 1970, sources that were never seen would look young.
constexpr double recordingEpoch = 1577836800.0;

/// [s] A first time that is greater than this counts since 1970.
constexpr double earliestEpochTimestamp = 1e9;

/// [s] before and after 1970 that 64 bits of nanoseconds can hold.
constexpr double greatestSecond = 9.2e9;

/// [s] No recording that counts from its start continues after a longer pause: such times are nanoseconds.
constexpr double longestPause = 1e7;

/// Describes what is wrong with a time that is so many seconds after the one before; longer than longestPause.
std::string tooLate(double seconds);

/// Returns the time in seconds since 1970, as far as a double can hold it.
double secondsOf(ko::SystemClock::time_point time);

/// Returns the time so many seconds after `origin`, which is in whole seconds since 1970; the sum must not exceed
/// greatestSecond.
ko::SystemClock::time_point timeAfter(double origin, double seconds);

}  // namespace KV::recordings
