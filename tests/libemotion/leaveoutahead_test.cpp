#include <skeigiot/leaveoutahead.hpp>

#include "support/clocktest.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

using support::start;

KV::PersonObservation observationAt(ko::SystemClock::time_point time)
{
  KV::PersonObservation observation;
  observation.gaze.emplace(time, KV::Gaze(1.f, 2.f));
  observation.speaking.emplace(time, true);
  return observation;
}

TEST(LeaveOutAhead, LeavesAnObservationWithoutReadingsAsItIs)
{
  KV::PersonObservation observation;
  EXPECT_EQ(0U, KV::leaveOutAhead(observation, start));
}

TEST(LeaveOutAhead, KeepsWhatIsAsLateAsAllowed)
{
  KV::PersonObservation observation = observationAt(start);

  EXPECT_EQ(0U, KV::leaveOutAhead(observation, start));
  EXPECT_TRUE(observation.gaze);
  EXPECT_TRUE(observation.speaking);
}

TEST(LeaveOutAhead, TakesOutWhatIsANanosecondLater)
{
  KV::PersonObservation observation = observationAt(start);
  observation.gaze->time += support::nanoseconds(1);

  EXPECT_EQ(1U, KV::leaveOutAhead(observation, start));
  EXPECT_FALSE(observation.gaze);
  EXPECT_TRUE(observation.speaking);
}

TEST(LeaveOutAhead, ComparesTimesAtBothEndsOf64Bits)
{
  constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
  KV::PersonObservation old = observationAt(support::atNanoseconds(least));
  KV::PersonObservation ahead = observationAt(support::atNanoseconds(greatest));

  EXPECT_EQ(0U, KV::leaveOutAhead(old, support::atNanoseconds(greatest)));
  EXPECT_EQ(2U, KV::leaveOutAhead(ahead, support::atNanoseconds(least)));
}

}  // namespace
