#include "support/clocktest.hpp"
#include "support/scriptedclock.hpp"
#include "support/tablename.hpp"

#include "age.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

using support::atNanoseconds;
using support::milliseconds;
using support::nanoseconds;
using support::start;

constexpr std::int64_t firstTick = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t lastTick = std::numeric_limits<std::int64_t>::max();

struct AgeCase
{
  const char* name;
  std::int64_t now;
  std::int64_t time;
  std::int64_t ageInMs;
};

class Age : public ::testing::TestWithParam<AgeCase>
{};

TEST_P(Age, IsCountedInWholeMilliseconds)
{
  ko::ManualClock clock(atNanoseconds(GetParam().now));
  const ko::ScopedClockSource scope(clock);

  EXPECT_EQ(GetParam().ageInMs, KV::ageInMs(atNanoseconds(GetParam().time)));
}

INSTANTIATE_TEST_SUITE_P(
    Of, Age,
    ::testing::Values(AgeCase{"ThePresent", 5, 5, 0}, AgeCase{"LessThanAMillisecond", 999999, 0, 0},
                      AgeCase{"AMillisecond", 1000000, 0, 1}, AgeCase{"AlmostTwoMilliseconds", 1999999, 0, 1},
                      AgeCase{"LessThanAMillisecondAhead", 0, 999999, 0}, AgeCase{"AMillisecondAhead", 0, 1000000, -1},
                      AgeCase{"AlmostTwoMillisecondsAhead", 0, 1999999, -1},
                      AgeCase{"TheLongestThatFits", -1, firstTick, lastTick / 1000000},
                      AgeCase{"TooLongToFit", 0, firstTick, lastTick / 1000000},
                      AgeCase{"TheWholeOfTime", lastTick, firstTick, lastTick / 1000000},
                      AgeCase{"TheFarthestAheadThatFits", -1, lastTick, firstTick / 1000000},
                      AgeCase{"TooFarAheadToFit", -2, lastTick, firstTick / 1000000},
                      AgeCase{"TheWholeOfTimeAhead", firstTick, lastTick, firstTick / 1000000}),
    support::RowName());

class AgeTest : public support::ClockTest
{};

TEST_F(AgeTest, InSecondsIsAThousandthOfTheMillisecondsInSinglePrecision)
{
  EXPECT_EQ(0.f, KV::ageInSeconds(start - nanoseconds(999999)));
  EXPECT_EQ(1500.f * 0.001f, KV::ageInSeconds(start - milliseconds(1500)));
  EXPECT_EQ(-40.f * 0.001f, KV::ageInSeconds(start + milliseconds(40)));
}

TEST_F(AgeTest, InSecondsIsAProductAndNotAQuotient)
{
  ASSERT_NE(3000.f / 1000.f, 3000.f * 0.001f) << "the two must differ for the test to tell";

  EXPECT_EQ(3000.f * 0.001f, KV::ageInSeconds(start - milliseconds(3000)));
}

TEST_F(AgeTest, IsTakenFromOneReadingOfTheClock)
{
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);

  KV::ageInMs(start);
  EXPECT_EQ(1, counting.readings());

  KV::ageInSeconds(start);
  EXPECT_EQ(2, counting.readings());
}

}  // namespace
