// A memory, the quantities of a state, and the room: each with mutexes of its own.

#include "personstateprivate.hpp"
#include "threads/together.hpp"

#include "support/clocktest.hpp"
#include "support/estimate.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/personstate.hpp>
#include <skeigiot/shorttermmemory.hpp>

#include <boost/thread/lock_guard.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>

namespace
{

using support::microseconds;
using support::milliseconds;

constexpr int count = 4;
constexpr int rounds = 100;

class MemoriesOfThreads : public support::ClockTest
{};

TEST_F(MemoriesOfThreads, KeepEachReadingOnceAndInOrder)
{
  KV::ShortTermMemory<float> memory{milliseconds(7000)};
  threads::runOnThreads(count, rounds, [&](int thread, int round) {
    const ko::ScopedClockSource ofThisThread(clock);
    const int number = round * count + thread;
    memory.record({support::start - milliseconds(number), static_cast<float>(number)});
    memory.record({support::start - milliseconds(number), -1.f});  // second in every order of arrival
    memory.youngest();
  });

  const boost::lock_guard<boost::mutex> lock(memory.mutex());
  ASSERT_EQ(static_cast<std::size_t>(count * rounds), memory.records().size());
  float number = 0.f;
  for (const KV::Timestamped<float>& record : memory.records())
    ASSERT_EQ(number++, record.value);
}

TEST_F(MemoriesOfThreads, ForgetWhileOthersRecordAndRead)
{
  KV::ShortTermMemory<bool> memory{milliseconds(50)};
  memory.record({support::start + milliseconds(100000), true});  // so that it is never empty
  std::atomic<int> unsorted{0};
  const auto record = [&](int) {
    const ko::ScopedClockSource ofThisThread(clock);
    memory.record({ko::SystemClock::now(), false});
    clock.advance(milliseconds(1));
  };
  const auto read = [&](int) {
    const ko::ScopedClockSource ofThisThread(clock);
    const boost::lock_guard<boost::mutex> lock(memory.mutex());
    memory._forgetOld();
    const auto& records = memory.records();
    unsorted +=
        static_cast<int>(!std::is_sorted(records.begin(), records.end(), std::greater<KV::Timestamped<bool>>()));
  };
  const auto ask = [&](int) {
    const ko::ScopedClockSource ofThisThread(clock);
    memory.youngest();
  };
  threads::runTogether(rounds, record, record, read, ask);

  EXPECT_EQ(0, unsorted);
  EXPECT_LE(memory.records().size(), 53U) << "a record for each of 51 ms, and the one that is ahead";
  EXPECT_TRUE(memory.youngest().value);
}

// A pass may read a manual clock once for all records. Its decisions on them must then be right for one moment between
// its begin and its end.
TEST_F(MemoriesOfThreads, ForgetAsAtOneMomentWhileAnotherMovesTheClock)
{
  constexpr milliseconds horizon(40);
  constexpr int records = 100;
  constexpr int passes = 200;
  const auto isTooOld = [&](int ageAtStartInMs, ko::SystemClock::time_point now) {
    return now - (support::start - milliseconds(ageAtStartInMs)) >= horizon + milliseconds(1);
  };
  std::atomic<int> keptTooLong{0};
  std::atomic<int> forgottenTooEarly{0};
  std::atomic<int> outOfOrder{0};
  std::atomic<int> atWork{2};

  const auto forget = [&](int) {
    const ko::ScopedClockSource ofThisThread(clock);
    for (int pass = 0; pass < passes; ++pass)
    {
      clock.set(support::start - milliseconds(records - 40));  // soon, the oldest is too old
      KV::ShortTermMemory<int> memory{horizon};
      for (int age = 0; age < records; ++age)
        memory.record({support::start - milliseconds(age), age});
      const boost::lock_guard<boost::mutex> lock(memory.mutex());
      const auto remembered = static_cast<int>(memory.records().size());

      const ko::SystemClock::time_point before = clock.now();
      memory._forgetOld();
      const ko::SystemClock::time_point after = clock.now();

      int next = 0;
      for (const KV::Timestamped<int>& record : memory.records())
      {
        outOfOrder += static_cast<int>(record.value != next++);
        keptTooLong += static_cast<int>(isTooOld(record.value, before));
      }
      for (; next < remembered; ++next)
        forgottenTooEarly += static_cast<int>(!isTooOld(next, after));
    }
    --atWork;
  };
  threads::runTogether(1, forget, [&](int) {
    --atWork;
    while (atWork > 0)
      clock.advance(microseconds(20));
  });

  EXPECT_EQ(0, keptTooLong);
  EXPECT_EQ(0, forgottenTooEarly);
  EXPECT_EQ(0, outOfOrder);
}

// Each quantity is moved under its mutex, and all forces are equal: so their order makes no difference.
TEST_F(MemoriesOfThreads, OfAStateLoseNoForce)
{
  KV::PersonState together(0.9f, 0.8f, 0.7f, 0.6f);
  KV::PersonState alone(0.9f, 0.8f, 0.7f, 0.6f);
  constexpr int few = 5;  // the numbers are still far from 0 after these
  threads::runOnThreads(count, few, [&together](int, int) {
    KV::PersonState copy = together;
    copy.decreaseSinceNotSeen();
  });
  for (int i = 0; i < count * few; ++i)
    alone.decreaseSinceNotSeen();

  EXPECT_EQ(support::estimateOf(*alone._p), support::estimateOf(*together._p));
  EXPECT_GT(together.personValence().value, 0.f);
}

TEST(RoomOfThreads, CountsEachMovement)
{
  KV::AmbianceState room;
  threads::runOnThreads(count, rounds, [&room](int, int) { room.incrementMovementDetected(); });
  EXPECT_EQ(static_cast<float>(count * rounds), room.movementCount);
}

TEST(RoomOfThreads, StaysInItsRange)
{
  KV::AmbianceState room;
  std::atomic<int> unknown{0};
  threads::runTogether(
      rounds, [&room](int round) { room.updateAmbiance(round % 2 == 0 ? 0.f : 0.2f); },
      [&room](int) { room.incrementMovementDetected(); },
      [&](int) { unknown += static_cast<int>(room.excitationState() == KV::ExcitationUnknown); },
      [](int round) { KV::AmbianceState::setBinaryBoundaryExcited(round % 2 == 0 ? 0.3f : 0.4f); });
  KV::AmbianceState::setBinaryBoundaryExcited(0.4f);

  EXPECT_EQ(0, unknown);
  EXPECT_TRUE(room.agitationLevel >= 0.f && room.agitationLevel <= 1.f);
  EXPECT_EQ(1.f - room.agitationLevel, room.calmLevel);
  EXPECT_LE(room.movementCount, static_cast<float>(rounds));
}

}  // namespace
