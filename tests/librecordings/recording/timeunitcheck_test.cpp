#include "librecordings/support.hpp"

#include <skeigiot/recordings/implausible.hpp>
#include <skeigiot/recordings/timeunitcheck.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace
{
using KV::recordings::TimeUnitCheck;

KV::recordings::Step stepAt(std::int64_t nanoseconds, std::int32_t person = 1)
{
  KV::recordings::Step step;
  step.time = support::timeOf(nanoseconds);
  step.person = person;
  return step;
}

/// Returns the number of the first step that is refused, from 0; -1 if every step is accepted.
int refusedAmong(const std::vector<KV::recordings::Step>& steps)
{
  TimeUnitCheck check;
  for (std::size_t i = 0; i < steps.size(); ++i)
    if (check.look(steps[i]))
      return static_cast<int>(i);
  return -1;
}

TEST(TimeUnitCheck, RefusesAFirstTimeInSecondsMillisecondsOrMicroseconds)
{
  for (const std::int64_t time : {1'700'000'000LL, 1'700'000'000'000LL, 1'700'000'000'000'000LL})
    EXPECT_EQ(0, refusedAmong({stepAt(time)})) << time;
}

TEST(TimeUnitCheck, TakesNanosecondsSince1970AndFromTheStart)
{
  EXPECT_EQ(-1, refusedAmong({stepAt(1'700'000'000'000'000'000)}));
  EXPECT_EQ(-1, refusedAmong({stepAt(0), stepAt(1'000'000'000), stepAt(1'700'000'000), stepAt(1'700'000'000'000)}));
}

TEST(TimeUnitCheck, RefusesTheFourthTimeOfAPersonWithinATenthOfAMillisecond)
{
  EXPECT_EQ(3, refusedAmong({stepAt(0), stepAt(1), stepAt(2), stepAt(3)})) << "seconds";
  EXPECT_EQ(3, refusedAmong({stepAt(0), stepAt(33'333), stepAt(66'666), stepAt(99'999)})) << "microseconds";
  EXPECT_EQ(-1, refusedAmong({stepAt(0), stepAt(33'333), stepAt(66'666), stepAt(100'000)}));
}

TEST(TimeUnitCheck, CountsTimesOfOnePersonOnce)
{
  EXPECT_EQ(-1, refusedAmong({stepAt(0), stepAt(0), stepAt(1), stepAt(1), stepAt(2), stepAt(2)}));
  EXPECT_EQ(-1, refusedAmong({stepAt(0, 1), stepAt(1, 2), stepAt(2, 3), stepAt(3, 4), stepAt(4, 5)}));
}

TEST(TimeUnitCheck, LooksAtTheBeginningOnly)
{
  std::vector<KV::recordings::Step> steps;
  for (std::int64_t i = 0; i < 5; ++i)
    steps.push_back(stepAt(i * 100'000'000));
  for (std::int64_t i = 1; i < 9; ++i)
    steps.push_back(stepAt(400'000'000 + i));
  EXPECT_EQ(-1, refusedAmong(steps));
}

TEST(AdviceOnSeconds, NamesTheUnitOfADate)
{
  EXPECT_EQ("; it looks like milliseconds: divide it by 1000", KV::recordings::adviceOnSeconds(1.7e12));
  EXPECT_EQ("; it looks like microseconds: divide it by 1000000", KV::recordings::adviceOnSeconds(1.7e15));
  EXPECT_EQ("; it looks like nanoseconds: divide it by 1000000000", KV::recordings::adviceOnSeconds(1.7e18));
  for (const double other : {0., 1.7e9, 1e11, 9e300, -1.7e12})
    EXPECT_EQ("", KV::recordings::adviceOnSeconds(other)) << other;
}

TEST(ImplausibleReading, IsOneWhoseTimeIsInAnotherUnitThanThatOfItsStep)
{
  KV::recordings::Step step = stepAt(1'700'000'000'000'000'000);
  step.observation.speaking.emplace(support::timeOf(1'700'000'000), true);
  const auto found = KV::recordings::implausibleReading(step);
  ASSERT_TRUE(found);
  EXPECT_EQ("speaking.time", found->member);

  step.time = support::timeOf(1'700'000'000);
  EXPECT_FALSE(KV::recordings::implausibleReading(step)) << "the time of the step itself is refused, not its reading";
}

}  // namespace
