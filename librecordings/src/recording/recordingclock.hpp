#pragma once

#include <ko/systemclock.hpp>

#include <string>

namespace KV::recordings
{

/// [s] since 1970: where a recording is placed whose times count from its start (2020-01-01T00:00:00Z). A clock that
/// shows 1970 makes what was never seen look young.
constexpr double recordingEpoch = 1577836800.0;

/// [s] A first time that is greater than this counts since 1970.
constexpr double earliestEpochTimestamp = 1e9;

/// [s] before and after 1970 that nanoseconds in 64 bits can count.
constexpr double greatestSecond = 9.2e9;

/// [s] No recording that counts from its start goes on after a longer pause: such times are nanoseconds.
constexpr double longestPause = 1e7;

/// Says what is wrong with a time that is so many seconds after the one before, which is more than longestPause.
std::string tooLate(double seconds);

/// Returns the time in seconds since 1970, as far as a double can hold it.
double secondsOf(ko::SystemClock::time_point time);

/// Returns the time so many seconds after `origin`, itself in whole seconds since 1970; both together must not be
/// beyond greatestSecond.
ko::SystemClock::time_point timeAfter(double origin, double seconds);

}  // namespace KV::recordings
