#include <skeigiot/session/orderedjobs.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace
{

using Jobs = KV::session::OrderedJobs<std::size_t>;

void nothing() {}

TEST(OrderedJobs, HandOutResultsInTheOrderOfTheirNumbers)
{
  constexpr std::size_t count = 500;
  Jobs jobs(count, 4, [](std::size_t number, const std::atomic<bool>&) { return number * number; });
  for (std::size_t i = 0; i < count; ++i)
    EXPECT_EQ(i * i, jobs.take(nothing));
}

TEST(OrderedJobs, WorkOnSeveralThreadsAtATime)
{
  std::atomic<int> working{0};
  Jobs jobs(3, 3, [&working](std::size_t number, const std::atomic<bool>&) {
    ++working;
    while (working < 3)
      std::this_thread::yield();  // ends only if all three are running
    return number;
  });
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_EQ(i, jobs.take(nothing));
}

TEST(OrderedJobs, HandOutWhatWasThrownInItsPlace)
{
  Jobs jobs(3, 2, [](std::size_t number, const std::atomic<bool>&) {
    if (number == 1)
      throw std::runtime_error("one");
    return number;
  });
  EXPECT_EQ(0U, jobs.take(nothing));
  EXPECT_THROW(jobs.take(nothing), std::runtime_error);
  EXPECT_EQ(2U, jobs.take(nothing));
}

TEST(OrderedJobs, DoNotRunFarAheadOfASlowOne)
{
  constexpr std::size_t threads = 2;
  std::atomic<std::size_t> begun{0};
  std::atomic<bool> released{false};
  Jobs jobs(1000, threads, [&](std::size_t number, const std::atomic<bool>&) {
    ++begun;
    while (number == 0 && !released)
      std::this_thread::yield();
    return number;
  });
  while (begun < threads + Jobs::mostWaiting)
    std::this_thread::yield();
  EXPECT_EQ(threads + Jobs::mostWaiting, begun);
  released = true;
  for (std::size_t i = 0; i < 1000; ++i)
    EXPECT_EQ(i, jobs.take(nothing));
}

TEST(OrderedJobs, AreCancelledWhenNobodyWantsTheirResults)
{
  std::atomic<bool> sawIt{false};
  {
    Jobs jobs(5, 1, [&sawIt](std::size_t number, const std::atomic<bool>& cancelled) {
      while (!cancelled)
        std::this_thread::yield();
      sawIt = true;
      return number;
    });
    EXPECT_THROW(jobs.take([] { throw std::runtime_error("interrupted"); }), std::runtime_error);
  }
  EXPECT_TRUE(sawIt);
}

}  // namespace
