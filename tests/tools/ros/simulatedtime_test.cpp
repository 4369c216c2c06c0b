#include "ros/simulatedtime.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace
{

using KV::tools::SimulatedTime;

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t madeUpDate = 1'577'836'800 * second;

TEST(SimulatedTime, IsUnknownBeforeTheFirstTime)
{
  SimulatedTime time;
  EXPECT_FALSE(time.isKnown());
  EXPECT_EQ(0, time.now());
}

TEST(SimulatedTime, ThatCountsFromZeroCountsFromAMadeUpDate)
{
  SimulatedTime time;
  EXPECT_EQ(0, time.take(3 * second));
  EXPECT_TRUE(time.isKnown());
  EXPECT_EQ(madeUpDate + 3 * second, time.now());
  EXPECT_EQ(3 * second, time.stampOf(time.now()));
}

TEST(SimulatedTime, WithADateIsThatDate)
{
  SimulatedTime time;
  time.take(1'700'000'000 * second);
  EXPECT_EQ(1'700'000'000 * second, time.now());
}

TEST(SimulatedTime, NeverGoesBackAndSaysByHowMuchTheClockDid)
{
  SimulatedTime time;
  time.take(100 * second);
  EXPECT_EQ(90 * second, time.take(10 * second));
  EXPECT_EQ(madeUpDate + 100 * second, time.now());
  EXPECT_EQ(0, time.take(11 * second));
  EXPECT_EQ(madeUpDate + 101 * second, time.now());
  EXPECT_EQ(11 * second, time.stampOf(time.now())) << "that of the simulation";
}

TEST(SimulatedTime, WaitsWhereAClockIsBehindByLessThanASecond)
{
  SimulatedTime time;
  time.take(100 * second);
  EXPECT_EQ(0, time.take(99 * second + 1));
  EXPECT_EQ(madeUpDate + 100 * second, time.now());
  EXPECT_EQ(second, time.take(99 * second));
}

TEST(SimulatedTime, MayJumpForward)
{
  SimulatedTime time;
  time.take(second);
  EXPECT_EQ(0, time.take(3600 * second));
  EXPECT_EQ(madeUpDate + 3600 * second, time.now());
}

}  // namespace
