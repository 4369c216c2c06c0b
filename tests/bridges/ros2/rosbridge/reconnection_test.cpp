#include "rosbridge/reconnection.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace
{

using KV::ros2::Reconnection;
using std::chrono::milliseconds;
using std::chrono::seconds;

const Reconnection::TimePoint start{std::chrono::hours(1)};

TEST(Reconnection, IsDueAtOnceTheFirstTime)
{
  EXPECT_TRUE(Reconnection().isDue(start));
}

TEST(Reconnection, WaitsTwiceAsLongAfterEachFailureUpToThirtySeconds)
{
  Reconnection reconnection;
  for (const int expected : {1, 2, 4, 8, 16, 30, 30})
    EXPECT_EQ(seconds(expected), reconnection.lost(start));
}

TEST(Reconnection, IsDueWhenTheTimeIsOver)
{
  Reconnection reconnection;
  reconnection.lost(start);
  EXPECT_FALSE(reconnection.isDue(start + milliseconds(999)));
  EXPECT_TRUE(reconnection.isDue(start + seconds(1)));
}

TEST(Reconnection, WaitsShortlyAgainAfterAConnectionOfTenSeconds)
{
  Reconnection reconnection;
  reconnection.lost(start);
  reconnection.lost(start);
  reconnection.connected(start);
  EXPECT_EQ(seconds(1), reconnection.lost(start + seconds(10)));
}

TEST(Reconnection, GoesOnWaitingLongerAfterAShortConnection)
{
  Reconnection reconnection;
  reconnection.lost(start);
  reconnection.connected(start);
  EXPECT_EQ(seconds(2), reconnection.lost(start + milliseconds(9999)));
}

}  // namespace
