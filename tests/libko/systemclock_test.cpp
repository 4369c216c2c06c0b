#include "support/clocktest.hpp"
#include "support/scriptedclock.hpp"
#include "support/thrown.hpp"

#include <ko/systemclock.hpp>

#include <boost/ratio/ratio.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using support::atNanoseconds;
using support::milliseconds;
using support::nanoseconds;
using support::seconds;
using support::start;

std::int64_t wallClockNanoseconds()
{
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

std::int64_t systemClockNanoseconds()
{
  return ko::SystemClock::now().time_since_epoch().count();
}

/// Whether the clock of the calling thread is the wall clock: its reading lies between two of the standard library,
/// with a tolerance of one microsecond.
bool readsTheWallClock()
{
  const std::int64_t before = wallClockNanoseconds();
  const std::int64_t reading = systemClockNanoseconds();
  const std::int64_t after = wallClockNanoseconds();
  return before - 1000 <= reading && reading <= after + 1000;
}

TEST(SystemClock, CountsSigned64BitNanoseconds)
{
  EXPECT_TRUE((std::is_same_v<boost::chrono::time_point<ko::SystemClock, boost::chrono::nanoseconds>,
                              ko::SystemClock::time_point>));
  EXPECT_TRUE((std::is_same_v<boost::chrono::nanoseconds, ko::SystemClock::duration>));
  EXPECT_EQ(64, std::numeric_limits<ko::SystemClock::rep>::digits + 1);
  EXPECT_TRUE(std::is_signed_v<ko::SystemClock::rep>);
  EXPECT_TRUE((std::is_same_v<boost::nano, ko::SystemClock::period>));
  EXPECT_FALSE(ko::SystemClock::is_steady);
}

TEST(SystemClock, StartsAtTheUnixEpoch)
{
  EXPECT_EQ(0, ko::SystemClock::time_point().time_since_epoch().count());
}

TEST(SystemClock, IsTheWallClockWithoutAScope)
{
  EXPECT_TRUE(readsTheWallClock());
}

TEST(SystemClock, LetsAnErrorOfItsSourceThrough)
{
  support::ScriptedClock broken([](int) -> ko::SystemClock::time_point { throw std::runtime_error("no time"); });
  const ko::ScopedClockSource scope(broken);

  EXPECT_EQ("no time", support::textThrownBy<std::runtime_error>([] { ko::SystemClock::now(); }));
}

TEST(SystemClock, ReadsItsSourceOncePerReading)
{
  support::ScriptedClock clock([](int reading) { return atNanoseconds(reading); });
  const ko::ScopedClockSource scope(clock);

  EXPECT_EQ(atNanoseconds(0), ko::SystemClock::now());
  EXPECT_EQ(atNanoseconds(1), ko::SystemClock::now());
  EXPECT_EQ(2, clock.readings());
}

TEST(ManualClock, ShowsTheTimeItWasMadeWith)
{
  ko::ManualClock clock(atNanoseconds(1577836800123456789));

  EXPECT_EQ(atNanoseconds(1577836800123456789), clock.now());
}

TEST(ManualClock, DoesNotAdvanceBetweenCalls)
{
  ko::ManualClock clock(start);

  EXPECT_EQ(clock.now(), clock.now());
  EXPECT_EQ(start, clock.now());
}

TEST(ManualClock, CanBeSetForwardsAndBackwards)
{
  ko::ManualClock clock(start);

  clock.set(start + seconds(3));
  EXPECT_EQ(start + seconds(3), clock.now());

  clock.set(atNanoseconds(-5));
  EXPECT_EQ(atNanoseconds(-5), clock.now());
}

TEST(ManualClock, AdvancesStepByStepInEitherDirection)
{
  ko::ManualClock clock(start);

  clock.advance(milliseconds(20));
  clock.advance(nanoseconds(1));
  EXPECT_EQ(start + milliseconds(20) + nanoseconds(1), clock.now());

  clock.advance(-milliseconds(30));
  EXPECT_EQ(start - milliseconds(10) + nanoseconds(1), clock.now());
}

TEST(ManualClock, ReachesBothEndsOfTime)
{
  constexpr std::int64_t first = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max();
  ko::ManualClock clock(atNanoseconds(first));
  EXPECT_EQ(atNanoseconds(first), clock.now());

  clock.set(atNanoseconds(last));
  EXPECT_EQ(atNanoseconds(last), clock.now());
}

TEST(ManualClock, LosesNoStepOfSeveralThreads)
{
  constexpr int threadCount = 4;
  constexpr int stepCount = 1000;
  ko::ManualClock clock(start);

  std::vector<std::thread> threads;
  for (int i = 0; i < threadCount; ++i)
    threads.emplace_back([&clock] {
      for (int step = 0; step < stepCount; ++step)
        clock.advance(nanoseconds(1));
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(start + nanoseconds(threadCount * stepCount), clock.now());
}

TEST(ScopedClockSource, MakesTheSystemClockReadItsSource)
{
  ko::ManualClock clock(start);
  const ko::ScopedClockSource scope(clock);

  EXPECT_EQ(start, ko::SystemClock::now());
  clock.advance(milliseconds(1));
  EXPECT_EQ(start + milliseconds(1), ko::SystemClock::now());
}

TEST(ScopedClockSource, BringsTheWallClockBackAtItsEnd)
{
  ko::ManualClock clock(start);
  {
    const ko::ScopedClockSource scope(clock);
    EXPECT_FALSE(readsTheWallClock());
  }

  EXPECT_TRUE(readsTheWallClock());
}

TEST(ScopedClockSource, NestsAndBringsTheOuterSourceBack)
{
  ko::ManualClock outer(start);
  ko::ManualClock inner(start + seconds(1));
  ko::ManualClock innermost(start + seconds(2));
  const ko::ScopedClockSource outerScope(outer);
  {
    const ko::ScopedClockSource innerScope(inner);
    {
      const ko::ScopedClockSource innermostScope(innermost);
      EXPECT_EQ(start + seconds(2), ko::SystemClock::now());
    }
    EXPECT_EQ(start + seconds(1), ko::SystemClock::now());
  }

  EXPECT_EQ(start, ko::SystemClock::now());
}

TEST(ScopedClockSource, LeavesTheScopeWhenAnErrorPassesThrough)
{
  ko::ManualClock outer(start);
  ko::ManualClock inner(start + seconds(1));
  const ko::ScopedClockSource scope(outer);

  EXPECT_EQ("passes", support::textThrownBy<std::runtime_error>([&inner] {
              const ko::ScopedClockSource innerScope(inner);
              throw std::runtime_error("passes");
            }));

  EXPECT_EQ(start, ko::SystemClock::now());
}

TEST(ScopedClockSource, LeavesOtherThreadsOnTheWallClock)
{
  ko::ManualClock clock(start);
  const ko::ScopedClockSource scope(clock);
  bool otherReadsTheWallClock = false;

  std::thread other([&] { otherReadsTheWallClock = readsTheWallClock(); });
  other.join();

  EXPECT_TRUE(otherReadsTheWallClock);
  EXPECT_EQ(start, ko::SystemClock::now());
}

TEST(ScopedClockSource, OfAnotherThreadLeavesThisOneAlone)
{
  ko::ManualClock here(start);
  ko::ManualClock there(start + seconds(5));
  const ko::ScopedClockSource scope(here);
  ko::SystemClock::time_point seenThere;
  ko::SystemClock::time_point seenHere;

  std::thread other([&] {
    const ko::ScopedClockSource otherScope(there);
    std::thread third([&] {
      const ko::ScopedClockSource thirdScope(here);
      seenHere = ko::SystemClock::now();
    });
    third.join();
    seenThere = ko::SystemClock::now();
  });
  other.join();

  EXPECT_EQ(start + seconds(5), seenThere);
  EXPECT_EQ(start, seenHere);
  EXPECT_EQ(start, ko::SystemClock::now());
}

TEST(ScopedClockSource, ShowsOneClockToSeveralThreads)
{
  ko::ManualClock clock(start);
  ko::SystemClock::time_point seen;

  std::thread other([&] {
    const ko::ScopedClockSource scope(clock);
    clock.set(start + seconds(9));
    seen = ko::SystemClock::now();
  });
  other.join();

  const ko::ScopedClockSource scope(clock);
  EXPECT_EQ(start + seconds(9), seen);
  EXPECT_EQ(start + seconds(9), ko::SystemClock::now());
}

TEST(ClockReader, ReadsWhatTheSystemClockReads)
{
  const std::int64_t before = wallClockNanoseconds();
  const std::int64_t reading = ko::ClockReader().now().time_since_epoch().count();
  EXPECT_LE(before - 1000, reading);  // as far as the wall clock may be off
  EXPECT_LE(reading, wallClockNanoseconds() + 1000);

  ko::ManualClock clock(start);
  const ko::ScopedClockSource scope(clock);
  const ko::ClockReader reader;
  EXPECT_EQ(start, reader.now());
  clock.advance(milliseconds(7));
  EXPECT_EQ(start + milliseconds(7), reader.now());
}

TEST(ClockReader, ReadsASourceOncePerReading)
{
  support::ScriptedClock clock([](int reading) { return atNanoseconds(reading); });
  const ko::ScopedClockSource scope(clock);
  const ko::ClockReader reader;

  EXPECT_EQ(atNanoseconds(0), reader.now());
  EXPECT_EQ(atNanoseconds(1), reader.now());
  EXPECT_EQ(2, clock.readings());
}

/// Shows a later time than the one that was set.
class HastyClock : public ko::ManualClock
{
public:
  using ko::ManualClock::ManualClock;
  ko::SystemClock::time_point now() override { return ko::ManualClock::now() + seconds(1); }
};

TEST(ManualClock, IsReadThroughItsOwnOperationWhereAClassIsDerivedFromIt)
{
  HastyClock clock(start);
  const ko::ScopedClockSource scope(clock);

  EXPECT_EQ(start + seconds(1), ko::SystemClock::now());
  EXPECT_EQ(start + seconds(1), ko::ClockReader().now());
}

}  // namespace
