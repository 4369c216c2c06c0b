#include "support/clocktest.hpp"

#include <skeigiot/timestamped.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using KV::Timestamped;
using support::atNanoseconds;
using support::nanoseconds;
using support::start;

constexpr std::int64_t firstTick = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t lastTick = std::numeric_limits<std::int64_t>::max();

TEST(Timestamped, KeepsTimeAndValue)
{
  const Timestamped<std::string> record(start, "value");

  EXPECT_EQ(start, record.time);
  EXPECT_EQ("value", record.value);
}

TEST(Timestamped, TakesATimeOfTheStandardLibrary)
{
  const std::chrono::system_clock::time_point time(std::chrono::duration_cast<std::chrono::system_clock::duration>(
      std::chrono::nanoseconds(start.time_since_epoch().count())));
  const Timestamped record(time, 0.5f);

  EXPECT_EQ(start, record.time);
  EXPECT_EQ(0.5f, record.value);
}

TEST(Timestamped, TakesTimesOfTheStandardLibraryOfAnyUnitAndSign)
{
  using std::chrono::system_clock;
  const std::chrono::time_point<system_clock, std::chrono::seconds> second(std::chrono::seconds(-3));
  const std::chrono::time_point<system_clock, std::chrono::duration<double>> half(std::chrono::duration<double>(0.5));

  EXPECT_EQ(atNanoseconds(-3000000000), Timestamped<int>(second, 0).time);
  EXPECT_EQ(atNanoseconds(500000000), Timestamped<int>(half, 0).time);
}

TEST(Timestamped, RefusesTimesOfAClockThatDoesNotCountFrom1970)
{
  EXPECT_FALSE((std::is_constructible_v<Timestamped<int>, std::chrono::steady_clock::time_point, int>));
}

TEST(Timestamped, StillTakesATimeThatIsMadeInPlace)
{
  const Timestamped<int> record({}, 3);

  EXPECT_EQ(atNanoseconds(0), record.time);
}

TEST(Timestamped, IsGreaterThanAnOlderOne)
{
  const Timestamped<float> older(start, 9.f);
  const Timestamped<float> newer(start + nanoseconds(1), 1.f);

  EXPECT_TRUE(newer > older);
  EXPECT_FALSE(older > newer);
}

TEST(Timestamped, IsNeitherGreaterNorSmallerThanOneOfTheSameTime)
{
  const Timestamped<float> one(start, 1.f);
  const Timestamped<float> other(start, 2.f);

  EXPECT_FALSE(one > other);
  EXPECT_FALSE(other > one);
}

TEST(Timestamped, ComparesTimesAsSignedNumbers)
{
  const Timestamped<int> beforeTheEpoch(atNanoseconds(-1), 0);
  const Timestamped<int> epoch(atNanoseconds(0), 0);

  EXPECT_TRUE(epoch > beforeTheEpoch);
  EXPECT_FALSE(beforeTheEpoch > epoch);
}

TEST(Timestamped, ComparesTheEndsOfTime)
{
  const Timestamped<int> first(atNanoseconds(firstTick), 0);
  const Timestamped<int> last(atNanoseconds(lastTick), 0);

  EXPECT_TRUE(last > first);
  EXPECT_FALSE(first > last);
}

TEST(Timestamped, SortsNewestFirst)
{
  std::vector<Timestamped<int>> records{{atNanoseconds(2), 2}, {atNanoseconds(-3), -3}, {atNanoseconds(7), 7}};

  std::sort(records.begin(), records.end(), std::greater<Timestamped<int>>());

  EXPECT_EQ(7, records[0].value);
  EXPECT_EQ(2, records[1].value);
  EXPECT_EQ(-3, records[2].value);
}

}  // namespace
