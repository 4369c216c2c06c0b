// Clocks and their scopes.

#include "threads/together.hpp"

#include "support/clocktest.hpp"

#include <ko/systemclock.hpp>

#include <gtest/gtest.h>

#include <atomic>

namespace
{

using support::milliseconds;
using support::seconds;
using support::start;

constexpr int count = 4;
constexpr int rounds = 200;

TEST(ClocksOfThreads, DoNotSeeEachOther)
{
  std::atomic<int> wrong{0};
  threads::runOnThreads(count, rounds, [&](int thread, int round) {
    const auto own = start + seconds(1000 * thread + round);
    ko::ManualClock outer(own);
    const ko::ScopedClockSource outerScope(outer);
    {
      ko::ManualClock inner(own - seconds(1000000));
      const ko::ScopedClockSource innerScope(inner);
      inner.advance(milliseconds(1));
      wrong += static_cast<int>(ko::SystemClock::now() != own - seconds(1000000) + milliseconds(1));
    }
    wrong += static_cast<int>(ko::SystemClock::now() != own);
  });
  EXPECT_EQ(0, wrong);
}

TEST(ClocksOfThreads, AreTheWallClockWithoutAScope)
{
  support::TestClock ofThisThread;
  std::atomic<int> wrong{0};
  threads::runOnThreads(count, rounds, [&](int, int) {
    const auto before = ko::SystemClock::now();
    const auto after = ko::SystemClock::now();
    wrong += static_cast<int>(before == start) + static_cast<int>(after + seconds(1) < before);
  });
  EXPECT_EQ(0, wrong);
  EXPECT_EQ(start, ko::SystemClock::now());
}

TEST(ClocksOfThreads, MayBeOneClockThatAllMove)
{
  ko::ManualClock clock(start);
  std::atomic<int> wrong{0};
  threads::runOnThreads(count, rounds, [&](int, int) {
    const ko::ScopedClockSource ofThisThread(clock);
    const auto before = ko::SystemClock::now();
    clock.advance(milliseconds(1));
    wrong += static_cast<int>(ko::SystemClock::now() <= before);
  });
  EXPECT_EQ(0, wrong);
  EXPECT_EQ(start + milliseconds(count * rounds), clock.now());
}

}  // namespace
