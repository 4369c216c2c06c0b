#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/clocktest.hpp"
#include "support/scriptedclock.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/shorttermmemory.hpp>

#include <boost/thread/lock_guard.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <future>
#include <ios>
#include <iostream>
#include <limits>
#include <random>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

using KV::ShortTermMemory;
using KV::Timestamped;
using support::atNanoseconds;
using support::hours;
using support::microseconds;
using support::milliseconds;
using support::nanoseconds;
using support::seconds;
using support::start;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Time = ko::SystemClock::time_point;

constexpr std::int64_t firstTick = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t lastTick = std::numeric_limits<std::int64_t>::max();

Timestamped<float> reading(Time time, float value)
{
  return {time, value};
}

/// The remembered values, newest first.
std::vector<float> values(const ShortTermMemory<float>& memory)
{
  std::vector<float> found;
  for (const Timestamped<float>& record : memory.records())
    found.push_back(record.value);
  return found;
}

/// Whether the mutex is free at the moment; the function leaves it free.
bool isFree(boost::mutex& mutex)
{
  const bool free = mutex.try_lock();
  if (free)
    mutex.unlock();
  return free;
}

void forgetOld(ShortTermMemory<float>& memory)
{
  const boost::lock_guard<boost::mutex> lock(memory.mutex());
  memory._forgetOld();
}

class ShortTermMemoryTest : public support::ClockTest
{
protected:
  ShortTermMemory<float> memory{milliseconds(7000)};
};

TEST_F(ShortTermMemoryTest, StartsEmptyWithTheHorizonItIsGiven)
{
  EXPECT_TRUE(memory.records().empty());
  EXPECT_EQ(milliseconds(7000), memory.horizon());
  EXPECT_EQ(milliseconds(20000), ShortTermMemory<float>(milliseconds(20000)).horizon());
  EXPECT_EQ(milliseconds(-1), ShortTermMemory<float>(milliseconds(-1)).horizon());
}

TEST_F(ShortTermMemoryTest, ThrowsForTheYoungestOfNone)
{
  EXPECT_EQ("The ShortTermMemory is empty.", support::textThrownBy<std::range_error>([this] { memory.youngest(); }));
}

TEST_F(ShortTermMemoryTest, ReleasesItsMutexWhenThereIsNoYoungest)
{
  EXPECT_THROW(memory.youngest(), std::range_error);

  EXPECT_TRUE(isFree(memory.mutex()));
}

TEST_F(ShortTermMemoryTest, ReturnsTheReadingThatItRecorded)
{
  memory.record(reading(start, 0.5f));

  EXPECT_EQ(start, memory.youngest().time);
  EXPECT_EQ(0.5f, memory.youngest().value);
}

TEST_F(ShortTermMemoryTest, ReturnsTheStoredRecordItself)
{
  memory.record(reading(start, 0.5f));

  memory.youngest().value = 0.25f;

  EXPECT_THAT(values(memory), ElementsAre(0.25f));
}

TEST_F(ShortTermMemoryTest, KeepsTheFirstOfTwoReadingsOfOneTime)
{
  memory.record(reading(start, 1.f));
  memory.record(reading(start, 2.f));

  EXPECT_THAT(values(memory), ElementsAre(1.f));
}

TEST_F(ShortTermMemoryTest, KeepsTheFirstOfOneTimeAmongOthers)
{
  memory.record(reading(start - nanoseconds(1), 1.f));
  memory.record(reading(start, 2.f));
  memory.record(reading(start + nanoseconds(1), 3.f));

  memory.record(reading(start, 4.f));
  memory.record(reading(start - nanoseconds(1), 5.f));
  memory.record(reading(start + nanoseconds(1), 6.f));

  EXPECT_THAT(values(memory), ElementsAre(3.f, 2.f, 1.f));
}

TEST_F(ShortTermMemoryTest, KeepsReadingsOneNanosecondApart)
{
  memory.record(reading(start, 1.f));
  memory.record(reading(start + nanoseconds(1), 2.f));

  EXPECT_THAT(values(memory), ElementsAre(2.f, 1.f));
}

TEST_F(ShortTermMemoryTest, SortsReadingsThatArriveOutOfOrder)
{
  memory.record(reading(start - milliseconds(20), 2.f));
  memory.record(reading(start, 4.f));
  memory.record(reading(start - milliseconds(30), 1.f));
  memory.record(reading(start - milliseconds(10), 3.f));

  EXPECT_THAT(values(memory), ElementsAre(4.f, 3.f, 2.f, 1.f));
  EXPECT_EQ(4.f, memory.youngest().value);
}

TEST_F(ShortTermMemoryTest, HoldsTheSameWhateverTheOrderOfArrival)
{
  constexpr unsigned int seed = 20200101;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::vector<float> ages{0.f, 1.f, 2.f, 500.f, 6999.f, 7000.f, 7001.f, 9000.f};

  for (int round = 0; round < 50; ++round)
  {
    std::shuffle(ages.begin(), ages.end(), random);
    ShortTermMemory<float> shuffled(milliseconds(7000));
    for (const float age : ages)
      shuffled.record(reading(start - milliseconds(static_cast<int>(age)), age));
    ASSERT_THAT(values(shuffled), ElementsAre(0.f, 1.f, 2.f, 500.f, 6999.f, 7000.f));
  }
}

TEST_F(ShortTermMemoryTest, ForgetsAReadingThatIsTooOldWhenItArrives)
{
  memory.record(reading(start, 1.f));

  memory.record(reading(start - milliseconds(7001), 2.f));

  EXPECT_THAT(values(memory), ElementsAre(1.f));
}

TEST_F(ShortTermMemoryTest, ForgetsWhenItIsWritten)
{
  memory.record(reading(start, 1.f));
  memory.record(reading(start + milliseconds(1), 2.f));
  clock.advance(milliseconds(7001));

  memory.record(reading(start + milliseconds(7001), 3.f));

  EXPECT_THAT(values(memory), ElementsAre(3.f, 2.f));
}

TEST_F(ShortTermMemoryTest, ForgetsWhenItsYoungestIsRead)
{
  memory.record(reading(start, 1.f));
  memory.record(reading(start + milliseconds(1), 2.f));
  clock.advance(milliseconds(7001));

  EXPECT_EQ(2.f, memory.youngest().value);

  EXPECT_THAT(values(memory), ElementsAre(2.f));
}

TEST_F(ShortTermMemoryTest, TurnsOutEmptyWhenAllHasAged)
{
  memory.record(reading(start, 1.f));
  memory.record(reading(start + milliseconds(1), 2.f));
  clock.advance(hours(1));

  EXPECT_THROW(memory.youngest(), std::range_error);

  EXPECT_TRUE(memory.records().empty());
}

TEST_F(ShortTermMemoryTest, NeverForgetsByItself)
{
  memory.record(reading(start, 1.f));
  clock.advance(hours(24));

  EXPECT_EQ(1u, memory.records().size());
  EXPECT_TRUE(memory._isTooOld(*memory.records().begin()));
  EXPECT_EQ(1u, memory.records().size());
}

TEST_F(ShortTermMemoryTest, KeepsReadingsFromTheFuture)
{
  memory.record(reading(start + hours(1), 1.f));
  memory.record(reading(start, 2.f));
  clock.advance(milliseconds(7001));
  forgetOld(memory);
  EXPECT_THAT(values(memory), ElementsAre(1.f));

  clock.advance(hours(1));
  forgetOld(memory);
  EXPECT_THAT(values(memory), IsEmpty());
}

TEST_F(ShortTermMemoryTest, HasNoLimitButItsHorizon)
{
  constexpr int count = 5000;
  for (int i = 0; i < count; ++i)
    memory.record(reading(start - microseconds(i), static_cast<float>(i)));

  EXPECT_EQ(static_cast<std::size_t>(count), memory.records().size());
  EXPECT_EQ(0.f, memory.youngest().value);
}

TEST_F(ShortTermMemoryTest, JudgesAndForgetsWithoutTakingItsMutex)
{
  memory.record(reading(start, 1.f));
  clock.advance(milliseconds(7001));
  const boost::lock_guard<boost::mutex> lock(memory.mutex());

  EXPECT_TRUE(memory._isTooOld(reading(start, 0.f)));
  memory._forgetOld();

  EXPECT_TRUE(memory.records().empty());
}

TEST(ShortTermMemory, IsNeitherCopiedNorMoved)
{
  EXPECT_FALSE(std::is_copy_constructible_v<ShortTermMemory<float>>);
  EXPECT_FALSE(std::is_copy_assignable_v<ShortTermMemory<float>>);
  EXPECT_FALSE(std::is_move_constructible_v<ShortTermMemory<float>>);
  EXPECT_FALSE(std::is_move_assignable_v<ShortTermMemory<float>>);
}

// Records that are too old

struct AgeCase
{
  const char* name;
  std::int64_t horizonInMs;
  std::int64_t ageInNs;
  bool tooOld;
};

class ShortTermMemoryAge : public support::ClockTestWithParam<AgeCase>
{
protected:
  Timestamped<float> aged{start - nanoseconds(GetParam().ageInNs), 1.f};
  ShortTermMemory<float> memory{milliseconds(GetParam().horizonInMs)};
};

TEST_P(ShortTermMemoryAge, DecidesWhatIsTooOld)
{
  EXPECT_EQ(GetParam().tooOld, memory._isTooOld(aged));
}

TEST_P(ShortTermMemoryAge, DecidesWhatIsForgotten)
{
  memory.record(aged);

  EXPECT_EQ(GetParam().tooOld, memory.records().empty());
}

INSTANTIATE_TEST_SUITE_P(
    AtTheHorizon, ShortTermMemoryAge,
    ::testing::Values(AgeCase{"OfNoAgeIsKept", 7000, 0, false}, AgeCase{"JustYoungerIsKept", 7000, 6999000000, false},
                      AgeCase{"ANanosecondYoungerIsKept", 7000, 6999999999, false},
                      AgeCase{"ExactlyTheHorizonIsKept", 7000, 7000000000, false},
                      AgeCase{"ANanosecondOlderIsKept", 7000, 7000000001, false},
                      AgeCase{"NineTenthsOfAMillisecondOlderIsKept", 7000, 7000900000, false},
                      AgeCase{"TheLastNanosecondOfTheMillisecondIsKept", 7000, 7000999999, false},
                      AgeCase{"AMillisecondOlderIsForgotten", 7000, 7001000000, true},
                      AgeCase{"MuchOlderIsForgotten", 7000, 86400000000000, true},
                      AgeCase{"LongHorizonKeepsItsEnd", 20000, 20000999999, false},
                      AgeCase{"LongHorizonForgetsBeyond", 20000, 20001000000, true},
                      AgeCase{"FutureIsKept", 7000, -7001000000, false},
                      AgeCase{"ZeroHorizonKeepsLessThanAMillisecond", 0, 999999, false},
                      AgeCase{"ZeroHorizonForgetsAMillisecond", 0, 1000000, true},
                      AgeCase{"NegativeHorizonForgetsThePresent", -1, 0, true},
                      AgeCase{"NegativeHorizonForgetsLessThanAMillisecondAhead", -1, -999999, true},
                      AgeCase{"NegativeHorizonKeepsAMillisecondAhead", -1, -1000000, false},
                      AgeCase{"LongestHorizonThatIsOutlivedForgets", 9223372036853, lastTick, true},
                      AgeCase{"ShortestHorizonThatIsNotOutlivedKeeps", 9223372036854, lastTick, false},
                      AgeCase{"FirstHorizonBeyondNanosecondsKeeps", 9223372036855, lastTick, false},
                      AgeCase{"EndlessHorizonKeeps", lastTick, lastTick, false}),
    support::RowName());

struct EndOfTimeCase
{
  const char* name;
  std::int64_t now;
  std::int64_t time;
  bool tooOld;
};

class ShortTermMemoryEndOfTime : public ::testing::TestWithParam<EndOfTimeCase>
{};

TEST_P(ShortTermMemoryEndOfTime, HoldsTheAgeInRange)
{
  ko::ManualClock clock(atNanoseconds(GetParam().now));
  const ko::ScopedClockSource scope(clock);
  ShortTermMemory<float> memory(milliseconds(7000));

  memory.record(reading(atNanoseconds(GetParam().time), 1.f));

  EXPECT_EQ(GetParam().tooOld, memory.records().empty());
}

INSTANTIATE_TEST_SUITE_P(AtTheEnds, ShortTermMemoryEndOfTime,
                         ::testing::Values(EndOfTimeCase{"FirstTickSeenAtTheEpoch", 0, firstTick, true},
                                           EndOfTimeCase{"FirstTickSeenAtTheLast", lastTick, firstTick, true},
                                           EndOfTimeCase{"FirstTickSeenAtTheFirst", firstTick, firstTick, false},
                                           EndOfTimeCase{"FirstTickSeenBeforeTheEpoch", -1, firstTick, true},
                                           EndOfTimeCase{"LastTickSeenAtTheEpoch", 0, lastTick, false},
                                           EndOfTimeCase{"LastTickSeenAtTheLast", lastTick, lastTick, false},
                                           EndOfTimeCase{"LastTickSeenAtTheFirst", firstTick, lastTick, false},
                                           EndOfTimeCase{"LastTickSeenBeforeTheEpoch", -2, lastTick, false},
                                           EndOfTimeCase{"FirstTickSeenNow", 1577836800000000000, firstTick, true},
                                           EndOfTimeCase{"LastTickSeenNow", 1577836800000000000, lastTick, false}),
                         support::RowName());

TEST(ShortTermMemory, SortsTheEndsOfTime)
{
  ko::ManualClock clock(atNanoseconds(firstTick));
  const ko::ScopedClockSource scope(clock);
  ShortTermMemory<float> memory(milliseconds(7000));

  memory.record(reading(atNanoseconds(0), 2.f));
  memory.record(reading(atNanoseconds(lastTick), 1.f));
  memory.record(reading(atNanoseconds(firstTick), 3.f));

  EXPECT_THAT(values(memory), ElementsAre(1.f, 2.f, 3.f));
}

// How the clock is read

/// A memory of the values 1 (newest) to `count`, a second apart, under a clock that a test scripts.
class ScriptedMemory
{
public:
  explicit ScriptedMemory(int count)
  {
    for (int i = 0; i < count; ++i)
      memory.record(reading(start - seconds(i), static_cast<float>(i + 1)));
  }

  support::ScriptedClock clock{support::standingAt(start)};
  ko::ScopedClockSource scope{clock};
  ShortTermMemory<float> memory{milliseconds(7000)};
};

/// When every record of a ScriptedMemory is too old.
const Time muchLater = start + hours(1);

TEST(ShortTermMemoryClock, IsNotReadWhileNothingIsRemembered)
{
  ScriptedMemory scripted(0);

  forgetOld(scripted.memory);
  EXPECT_THROW(scripted.memory.youngest(), std::range_error);

  EXPECT_EQ(0, scripted.clock.readings());
}

TEST(ShortTermMemoryClock, IsReadOncePerRecordWhenForgetting)
{
  for (int count = 1; count < 5; ++count)
  {
    ScriptedMemory scripted(count);
    scripted.clock.restart(support::standingAt(start));
    forgetOld(scripted.memory);
    EXPECT_EQ(count, scripted.clock.readings()) << "when none is too old";

    scripted.clock.restart(support::standingAt(muchLater));
    forgetOld(scripted.memory);
    EXPECT_EQ(count, scripted.clock.readings()) << "when all are too old";
  }
}

TEST(ShortTermMemoryClock, IsReadOncePerRecordByYoungest)
{
  ScriptedMemory scripted(3);
  scripted.clock.restart(support::standingAt(start));

  scripted.memory.youngest();

  EXPECT_EQ(3, scripted.clock.readings());
}

TEST(ShortTermMemoryClock, IsReadForTheNewRecordToo)
{
  ScriptedMemory scripted(3);
  scripted.clock.restart(support::standingAt(start));

  scripted.memory.record(reading(start + seconds(1), 0.f));

  EXPECT_EQ(4, scripted.clock.readings());
}

TEST(ShortTermMemoryClock, IsReadForTheOthersWhenAReadingIsDiscarded)
{
  ScriptedMemory scripted(3);
  scripted.clock.restart(support::standingAt(start));

  scripted.memory.record(reading(start, 0.f));

  EXPECT_EQ(3, scripted.clock.readings());
}

TEST(ShortTermMemoryClock, IsNotReadByTheOtherQueries)
{
  ScriptedMemory scripted(3);
  scripted.clock.restart(support::standingAt(start));

  scripted.memory.records();
  scripted.memory.horizon();
  scripted.memory.mutex();

  EXPECT_EQ(0, scripted.clock.readings());
}

TEST(ShortTermMemoryClock, JudgesRecordsNewestFirst)
{
  for (int jumpAt = 0; jumpAt < 4; ++jumpAt)
  {
    ScriptedMemory scripted(4);
    scripted.clock.restart([jumpAt](int number) { return number == jumpAt ? muchLater : start; });

    forgetOld(scripted.memory);

    std::vector<float> expected{1.f, 2.f, 3.f, 4.f};
    expected.erase(expected.begin() + jumpAt);
    EXPECT_EQ(expected, values(scripted.memory)) << "only reading " << jumpAt << " is late";
  }
}

TEST(ShortTermMemoryClock, MayStepBackwardsWhileForgetting)
{
  ScriptedMemory scripted(5);
  scripted.clock.restart([](int number) { return number < 2 ? muchLater : start - seconds(10); });

  forgetOld(scripted.memory);

  EXPECT_THAT(values(scripted.memory), ElementsAre(3.f, 4.f, 5.f));
}

TEST(ShortTermMemoryClock, IsReadUnderTheMutex)
{
  ScriptedMemory scripted(2);
  bool everFree = false;
  scripted.clock.restart([&](int) {
    everFree = everFree || isFree(scripted.memory.mutex());
    return start;
  });

  scripted.memory.record(reading(start + seconds(1), 0.f));
  scripted.memory.youngest();

  EXPECT_EQ(6, scripted.clock.readings());
  EXPECT_FALSE(everFree);
  EXPECT_TRUE(isFree(scripted.memory.mutex()));
}

// A clock that fails

struct ClockFailure : std::runtime_error
{
  ClockFailure() : std::runtime_error("the clock stopped") {}
};

const std::string failureLine = "Error while forgeting old memory: the clock stopped\n";

/// The script of a clock that shows `time` and fails at one reading.
support::ScriptedClock::Script failingAt(int failure, Time time)
{
  return [failure, time](int number) -> Time {
    if (number == failure)
      throw ClockFailure();
    return time;
  };
}

/// The reading, of four, at which the clock fails.
class ShortTermMemoryFailure : public ::testing::TestWithParam<int>
{
protected:
  ScriptedMemory scripted{4};
  support::CapturedStandardOutput standardOutput;
};

TEST_P(ShortTermMemoryFailure, LosesNothingWhileForgetting)
{
  for (const Time time : {start, muchLater})
  {
    scripted.clock.restart(failingAt(GetParam(), time));
    EXPECT_NO_THROW(forgetOld(scripted.memory));
    EXPECT_THAT(values(scripted.memory), ElementsAre(1.f, 2.f, 3.f, 4.f));
    EXPECT_EQ(GetParam() + 1, scripted.clock.readings()) << "nothing is judged after the failure";
  }
}

TEST_P(ShortTermMemoryFailure, IsReportedOnStandardOutputAndNotInTheLog)
{
  const support::CapturedLog log;
  scripted.clock.restart(failingAt(GetParam(), start));

  forgetOld(scripted.memory);
  EXPECT_EQ(failureLine, standardOutput.text());

  scripted.clock.restart(failingAt(GetParam(), start));
  forgetOld(scripted.memory);
  EXPECT_EQ(failureLine + failureLine, standardOutput.text());
  EXPECT_TRUE(log.empty());
}

TEST_P(ShortTermMemoryFailure, KeepsTheReadingBeingRecorded)
{
  scripted.clock.restart(failingAt(GetParam(), muchLater));

  EXPECT_NO_THROW(scripted.memory.record(reading(start - milliseconds(1500), 2.5f)));

  EXPECT_THAT(values(scripted.memory), ElementsAre(1.f, 2.f, 2.5f, 3.f, 4.f));
  EXPECT_EQ(failureLine, standardOutput.text());
  EXPECT_TRUE(isFree(scripted.memory.mutex()));
}

TEST_P(ShortTermMemoryFailure, LetsYoungestReturnAnOldRecord)
{
  scripted.clock.restart(failingAt(GetParam(), muchLater));

  EXPECT_EQ(1.f, scripted.memory.youngest().value);

  EXPECT_EQ(failureLine, standardOutput.text());
  EXPECT_TRUE(isFree(scripted.memory.mutex()));
}

TEST_P(ShortTermMemoryFailure, LeavesTheMemoryUsable)
{
  scripted.clock.restart(failingAt(GetParam(), muchLater));
  forgetOld(scripted.memory);

  scripted.clock.restart(support::standingAt(start + milliseconds(5500)));
  scripted.memory.record(reading(start - milliseconds(500), 1.5f));

  EXPECT_THAT(values(scripted.memory), ElementsAre(1.f, 1.5f, 2.f));
  EXPECT_EQ(1.f, scripted.memory.youngest().value);
}

/// If no reading can be written.
class FullOutput
{
public:
  FullOutput() : _former(std::cout.rdbuf(&_nowhere)), _exceptions(std::cout.exceptions())
  {
    std::cout.exceptions(std::ios_base::badbit);
  }
  ~FullOutput()
  {
    std::cout.clear();
    std::cout.exceptions(_exceptions);
    std::cout.rdbuf(_former);
  }
  FullOutput(const FullOutput&) = delete;
  FullOutput& operator=(const FullOutput&) = delete;

private:
  struct Nowhere : std::streambuf
  {};

  Nowhere _nowhere;
  std::streambuf* _former;
  std::ios_base::iostate _exceptions;
};

TEST(ShortTermMemoryClock, DisordersNothingThoughItsFailureCannotBeReported)
{
  ScriptedMemory scripted(4);
  const FullOutput output;
  scripted.clock.restart([](int number) -> Time {
    if (number == 2)
      throw ClockFailure();
    return number == 0 ? muchLater : start;
  });

  EXPECT_THROW(forgetOld(scripted.memory), std::ios_base::failure);
  EXPECT_THAT(values(scripted.memory), ElementsAre(1.f, 2.f, 3.f, 4.f));
}

INSTANTIATE_TEST_SUITE_P(AtEachReading, ShortTermMemoryFailure, ::testing::Range(0, 4),
                         ::testing::PrintToStringParamName());

/// The effect of one reading of a scripted clock on the record it judges.
enum class Judgement
{
  Young,
  Old,
  Failure
};

/// All sequences of `length` judgements.
std::vector<std::vector<Judgement>> allJudgements(int length)
{
  std::vector<std::vector<Judgement>> sequences{{}};
  for (int i = 0; i < length; ++i)
  {
    std::vector<std::vector<Judgement>> longer;
    for (const std::vector<Judgement>& sequence : sequences)
      for (const Judgement judgement : {Judgement::Young, Judgement::Old, Judgement::Failure})
      {
        longer.push_back(sequence);
        longer.back().push_back(judgement);
      }
    sequences = longer;
  }
  return sequences;
}

/// The values that must remain of 1, 2, 3...: all of them after a failure, else the young ones.
std::vector<float> leftOf(const std::vector<Judgement>& judgements)
{
  const bool fails = std::count(judgements.begin(), judgements.end(), Judgement::Failure) > 0;
  std::vector<float> left;
  for (std::size_t i = 0; i < judgements.size(); ++i)
    if (fails || judgements[i] == Judgement::Young)
      left.push_back(static_cast<float>(i + 1));
  return left;
}

TEST(ShortTermMemoryClock, NeitherLosesNorDoublesNorDisordersHoweverItJumpsAndFails)
{
  constexpr int count = 5;
  for (const std::vector<Judgement>& judgements : allJudgements(count))
  {
    const support::CapturedStandardOutput standardOutput;
    ScriptedMemory scripted(count);
    scripted.clock.restart([&judgements](int number) -> Time {
      switch (judgements.at(static_cast<std::size_t>(number)))
      {
        case Judgement::Young:
          return start;
        case Judgement::Old:
          return muchLater;
        default:
          throw ClockFailure();
      }
    });

    forgetOld(scripted.memory);

    const std::vector<float> left = leftOf(judgements);
    ASSERT_EQ(left, values(scripted.memory)) << ::testing::PrintToString(judgements);
    scripted.clock.restart(support::standingAt(start));
    scripted.memory.record(reading(start - milliseconds(500), 1.5f));
    ASSERT_EQ(left.size() + 1, scripted.memory.records().size()) << ::testing::PrintToString(judgements);
  }
}

/// A class derived from ManualClock that counts how often it is read, and advances at each reading.
class CountingManualClock : public ko::ManualClock
{
public:
  using ManualClock::ManualClock;

  Time now() override
  {
    ++readings;
    advance(step);
    return ManualClock::now();
  }

  int readings = 0;
  nanoseconds step{0};
};

TEST(ShortTermMemoryClock, IsReadOncePerRecordThoughItsClassIsDerivedFromManualClock)
{
  CountingManualClock clock(start);
  const ko::ScopedClockSource scope(clock);
  ShortTermMemory<float> memory(milliseconds(7000));
  for (int i = 0; i < 4; ++i)
    memory.record(reading(start - seconds(i), static_cast<float>(i + 1)));
  clock.readings = 0;
  clock.step = seconds(3);

  forgetOld(memory);

  EXPECT_EQ(4, clock.readings);
  // Their ages are read as 3, 7, 11 and 15 s.
  EXPECT_THAT(values(memory), ElementsAre(1.f, 2.f));
}

TEST(ShortTermMemoryClock, ForgetsTheSameWhetherItIsManualOrReadForEachRecord)
{
  constexpr unsigned seed = 20;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<std::int64_t> ageInNs(-100000000, 300000000);
  std::uniform_int_distribution<std::int64_t> stepInNs(-30000000, 40000000);
  for (const int horizonInMs : {-1, 0, 7, 200})
  {
    Time now = start;
    ko::ManualClock manual(now);
    support::ScriptedClock scripted([&now](int) { return now; });
    ShortTermMemory<float> one{milliseconds(horizonInMs)};
    ShortTermMemory<float> other{milliseconds(horizonInMs)};
    for (int i = 0; i < 2000; ++i)
    {
      now += nanoseconds(stepInNs(random));
      manual.set(now);
      const Timestamped<float> added = reading(now - nanoseconds(ageInNs(random)), static_cast<float>(i));
      {
        const ko::ScopedClockSource scope(manual);
        one.record(added);
      }
      {
        const ko::ScopedClockSource scope(scripted);
        other.record(added);
      }
      ASSERT_EQ(values(other), values(one)) << "horizon " << horizonInMs << " ms, reading " << i;
    }
  }
}

// Threads

TEST(ShortTermMemoryThreads, FindTheMemoryAsItWasWhileTheyHoldItsMutex)
{
  ShortTermMemory<float> memory(milliseconds(7000));
  std::future<void> recorded;
  {
    const boost::lock_guard<boost::mutex> lock(memory.mutex());
    recorded = std::async(std::launch::async, [&] { memory.record(reading(ko::SystemClock::now(), 1.f)); });
    EXPECT_EQ(std::future_status::timeout, recorded.wait_for(std::chrono::milliseconds(20)));
    EXPECT_TRUE(memory.records().empty());
  }
  recorded.get();
  EXPECT_THAT(values(memory), ElementsAre(1.f));
}

TEST(ShortTermMemoryThreads, LoseNoReading)
{
  constexpr int threadCount = 4;
  constexpr int readingCount = 200;
  ko::ManualClock clock(start);
  ShortTermMemory<float> memory(milliseconds(7000));

  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([&, thread] {
      const ko::ScopedClockSource scope(clock);
      for (int i = 0; i < readingCount; ++i)
        memory.record(reading(start - nanoseconds(i * threadCount + thread), static_cast<float>(thread)));
    });
  for (std::thread& thread : threads)
    thread.join();

  const ko::ScopedClockSource scope(clock);
  EXPECT_EQ(static_cast<std::size_t>(threadCount * readingCount), memory.records().size());
  EXPECT_TRUE(std::is_sorted(memory.records().begin(), memory.records().end(), std::greater<Timestamped<float>>()));
  EXPECT_EQ(start, memory.youngest().time);
}

TEST(ShortTermMemoryThreads, RecordOnceWhatAllOfThemSaw)
{
  constexpr int threadCount = 4;
  constexpr int readingCount = 100;
  ko::ManualClock clock(start);
  ShortTermMemory<float> memory(milliseconds(7000));

  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread)
    threads.emplace_back([&] {
      const ko::ScopedClockSource scope(clock);
      for (int i = 0; i < readingCount; ++i)
        memory.record(reading(start - nanoseconds(i), static_cast<float>(i)));
    });
  for (std::thread& thread : threads)
    thread.join();

  ASSERT_EQ(static_cast<std::size_t>(readingCount), memory.records().size());
  std::vector<float> expected;
  for (int i = 0; i < readingCount; ++i)
    expected.push_back(static_cast<float>(i));
  EXPECT_EQ(expected, values(memory));
}

// Every kind of reading

template <typename T>
T sample()
{
  return T();
}

template <>
KV::ContextEmotion sample<KV::ContextEmotion>()
{
  return {1, 2.f};
}

template <typename T>
class ShortTermMemoryOfKind : public support::ClockTest
{
protected:
  void record(Time time) { memory.record(Timestamped<T>(time, sample<T>())); }

  std::vector<Time> times() const
  {
    std::vector<Time> found;
    for (const Timestamped<T>& record : memory.records())
      found.push_back(record.time);
    return found;
  }

  ShortTermMemory<T> memory{milliseconds(7000)};
};

using Kinds = ::testing::Types<KV::HeadPosture, float, bool, KV::Smile, KV::Gaze, KV::Expressions,
                               KV::ValueConfidence<bool>, KV::ValueConfidence<unsigned int>, KV::FacialPoints,
                               std::int32_t, KV::ContextEmotion, KV::RobotHeadPosture>;
TYPED_TEST_SUITE(ShortTermMemoryOfKind, Kinds, );

TYPED_TEST(ShortTermMemoryOfKind, SortsDiscardsAndForgets)
{
  this->record(start - milliseconds(1));
  this->record(start);
  this->record(start);
  this->record(start - milliseconds(7001));
  EXPECT_THAT(this->times(), ElementsAre(start, start - milliseconds(1)));

  this->clock.advance(milliseconds(7000));
  EXPECT_EQ(start, this->memory.youngest().time);
  EXPECT_THAT(this->times(), ElementsAre(start));

  this->clock.advance(milliseconds(1));
  EXPECT_EQ("The ShortTermMemory is empty.",
            support::textThrownBy<std::range_error>([this] { this->memory.youngest(); }));
}

}  // namespace
