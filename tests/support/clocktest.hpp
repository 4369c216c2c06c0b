#pragma once

#include <ko/systemclock.hpp>

#include <boost/chrono/duration.hpp>

#include <gtest/gtest.h>

#include <cstdint>

/// \file
/// Time for tests: a fixed start and a clock that only the test moves.

namespace support
{

using boost::chrono::hours;
using boost::chrono::microseconds;
using boost::chrono::milliseconds;
using boost::chrono::nanoseconds;
using boost::chrono::seconds;

/// The start of test time: 2020-01-01T00:00:00Z, late enough that "never seen" is old.
inline const ko::SystemClock::time_point start{seconds(1577836800)};

/// The time point with this count of nanoseconds since the Unix epoch.
inline ko::SystemClock::time_point atNanoseconds(std::int64_t ticks)
{
  return ko::SystemClock::time_point(nanoseconds(ticks));
}

/// A manual clock, and the scope that makes it the clock of the thread for as long as the test runs.
struct TestClock
{
  ko::ManualClock clock{start};
  ko::ScopedClockSource scope{clock};
};

/// A fixture whose `clock` starts at `start`; SystemClock::now() reads it on the test's thread.
class ClockTest : public ::testing::Test, protected TestClock
{};

/// As ClockTest, for tables of cases.
template <typename Case>
class ClockTestWithParam : public ::testing::TestWithParam<Case>, protected TestClock
{};

}  // namespace support
