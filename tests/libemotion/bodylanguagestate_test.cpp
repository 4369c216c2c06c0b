#include "support/clocktest.hpp"
#include "support/scriptedclock.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/bodylanguagestate.hpp>
#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>

#include "bodylanguagestateprivate.hpp"
#include "personmemoryprivate.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::BodyLanguageEase;
using KV::BodyLanguageState;
using KV::BodyLanguageStatePrivate;
using KV::HeadPosture;
using KV::Timestamped;
using support::milliseconds;
using support::start;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

const HeadPosture up(0.f, 10.f, 0.f);
const HeadPosture down(0.f, -10.f, 0.f);
const HeadPosture left(-10.f, 0.f, 0.f);
const HeadPosture right(10.f, 0.f, 0.f);
const HeadPosture level(0.f, 0.f, 0.f);

void expectEase(float expectedLevel, float confidence, const BodyLanguageEase& ease)
{
  EXPECT_EQ(expectedLevel, ease.level);
  EXPECT_EQ(confidence, ease.confidence);
}

// The score of one posture

struct PostureCase
{
  const char* name;
  HeadPosture posture;
  float score;
};

void PrintTo(const PostureCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class BodyLanguagePosture : public ::testing::TestWithParam<PostureCase>
{};

TEST_P(BodyLanguagePosture, IsScored)
{
  EXPECT_EQ(GetParam().score, BodyLanguageStatePrivate::estimateFromHeadPosture(GetParam().posture));
}

INSTANTIATE_TEST_SUITE_P(Each, BodyLanguagePosture,
                         ::testing::Values(PostureCase{"Level", {0.f, 0.f, 90.f}, 0.f},
                                           PostureCase{"Up", {0.f, 6.f, 0.f}, -0.5f},
                                           PostureCase{"NotQuiteUp", {0.f, std::nextafter(6.f, 0.f), 0.f}, 0.f},
                                           PostureCase{"Down", {0.f, -6.f, 0.f}, 0.5f},
                                           PostureCase{"NotQuiteDown", {0.f, std::nextafter(-6.f, 0.f), 0.f}, 0.f},
                                           PostureCase{"Left", {-6.f, 0.f, 0.f}, -0.5f},
                                           PostureCase{"NotQuiteLeft", {std::nextafter(-6.f, 0.f), 0.f, 0.f}, 0.f},
                                           PostureCase{"Right", {6.f, 0.f, 0.f}, 0.5f},
                                           PostureCase{"NotQuiteRight", {std::nextafter(6.f, 0.f), 0.f, 0.f}, 0.f},
                                           PostureCase{"UpAndRightCountsAsUp", {6.f, 6.f, 0.f}, -0.5f},
                                           PostureCase{"UpAndLeftCountsAsUp", {-6.f, 6.f, 0.f}, -0.5f},
                                           PostureCase{"DownAndLeftCountsAsDown", {-6.f, -6.f, 0.f}, 0.5f},
                                           PostureCase{"DownAndRightCountsAsDown", {6.f, -6.f, 0.f}, 0.5f},
                                           PostureCase{"NanIsLevel", {nan, nan, nan}, 0.f},
                                           PostureCase{"NanYawLeavesThePitch", {nan, 6.f, 0.f}, -0.5f},
                                           PostureCase{"NanPitchLeavesTheYaw", {6.f, nan, 0.f}, 0.5f}),
                         support::RowName());

// The estimate

class BodyLanguageEstimate : public support::ClockTest
{
protected:
  /// Remembers the postures, the first as the newest, a millisecond apart.
  void remember(const std::vector<HeadPosture>& postures)
  {
    int ageInMs = 0;
    for (const HeadPosture& posture : postures)
      memory.record(Timestamped<HeadPosture>(start - milliseconds(ageInMs++), posture));
  }

  BodyLanguageStatePrivate state;
  KV::ShortTermMemory<HeadPosture> memory{milliseconds(7000)};
};

TEST_F(BodyLanguageEstimate, StartsAtZeroWithoutConfidence)
{
  expectEase(0.f, 0.f, state.ease);
}

TEST_F(BodyLanguageEstimate, StaysWithoutAPosture)
{
  state.ease = BodyLanguageEase(0.3f, 0.5f);

  state._update(memory);

  expectEase(0.3f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, StaysWhenEveryPostureIsTooOld)
{
  remember({up});
  state.ease = BodyLanguageEase(0.3f, 0.25f);
  clock.advance(milliseconds(7001));

  state._update(memory);

  expectEase(0.3f, 0.25f, state.ease);
  EXPECT_TRUE(memory.records().empty());
}

TEST_F(BodyLanguageEstimate, IsTheScoreOfASinglePosture)
{
  remember({down});

  state._update(memory);

  expectEase(0.5f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, IsTheMeanOfAllPostures)
{
  remember({up, level});
  state._update(memory);
  expectEase(-0.25f, 0.5f, state.ease);

  remember({level, level, level, right});
  state._update(memory);
  expectEase(0.f / 4.f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, DividesByTheNumberOfPostures)
{
  remember({right, level, level});

  state._update(memory);

  expectEase(0.5f / 3.f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, IsTheLowestWhenEveryPostureIsUp)
{
  remember({up, left, up});

  state._update(memory);

  expectEase(-0.5f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, ReplacesTheFormerOne)
{
  state.ease = BodyLanguageEase(0.9f, 0.9f);
  remember({level});

  state._update(memory);

  expectEase(0.f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, CountsAPostureAsOldAsTheHorizonAndNoOlderOne)
{
  remember({up, down});
  clock.advance(milliseconds(7000));  // the second is 7001 ms old

  state._update(memory);

  expectEase(-0.5f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, ReleasesTheMutexOfTheMemory)
{
  remember({up});

  state._update(memory);

  ASSERT_TRUE(memory.mutex().try_lock());
  memory.mutex().unlock();
}

TEST_F(BodyLanguageEstimate, ForgetsUnderTheMutexOfTheMemory)
{
  remember({up, down});
  bool everFree = false;
  support::ScriptedClock watching([&](int) {
    const bool isFree = memory.mutex().try_lock();
    if (isFree)
      memory.mutex().unlock();
    everFree = everFree || isFree;
    return start;
  });
  const ko::ScopedClockSource watchingScope(watching);

  state._update(memory);

  EXPECT_EQ(4, watching.readings());
  EXPECT_FALSE(everFree);
}

/// Two forgetting passes over two postures read the clock four times; from reading `turn` on it shows `late`.
support::ScriptedClock::Script turningLateAt(int turn, ko::SystemClock::time_point late)
{
  return [turn, late](int number) { return number < turn ? start : late; };
}

TEST_F(BodyLanguageEstimate, DividesByTheNumberLeftWhenOneExpiresMeanwhile)
{
  remember({level, up});
  support::ScriptedClock late(turningLateAt(2, start + milliseconds(7000)));
  const ko::ScopedClockSource lateScope(late);

  state._update(memory);

  EXPECT_EQ(4, late.readings());
  EXPECT_EQ(1u, memory.records().size());
  expectEase(-0.5f / 1.f, 0.5f, state.ease);
}

TEST_F(BodyLanguageEstimate, StaysWhenAllExpireMeanwhile)
{
  remember({up, up});
  state.ease = BodyLanguageEase(0.3f, 0.25f);
  support::ScriptedClock late(turningLateAt(2, start + milliseconds(7001)));
  const ko::ScopedClockSource lateScope(late);

  state._update(memory);

  EXPECT_TRUE(memory.records().empty());
  expectEase(0.3f, 0.25f, state.ease);
}

TEST_F(BodyLanguageEstimate, SumsWithoutReadingTheClock)
{
  remember({up, up, up});
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);

  state._update(memory);

  EXPECT_EQ(6, counting.readings()) << "once per posture before the sum, once after it";
}

// The handle

class BodyLanguageStateTest : public support::ClockTest
{
protected:
  static KV::PersonMemory memoryOf(const HeadPosture& posture)
  {
    KV::PersonMemory memory;
    KV::PersonObservation observation;
    observation.headPosture = Timestamped<HeadPosture>(start, posture);
    memory.add(observation);
    return memory;
  }

  static BodyLanguageEase easeOf(const BodyLanguageState& state)
  {
    return state.bodyLanguageState(KV::BodyLanguageEaseDescription);
  }
};

TEST_F(BodyLanguageStateTest, NumbersItsOnlyDescription)
{
  EXPECT_EQ(0, KV::BodyLanguageEaseDescription);
}

TEST_F(BodyLanguageStateTest, StartsAtZeroWithoutConfidence)
{
  expectEase(0.f, 0.f, easeOf(BodyLanguageState()));
}

TEST_F(BodyLanguageStateTest, IsUpdatedFromTheHeadPosturesOfAPerson)
{
  BodyLanguageState state;

  state.update(memoryOf(right));

  expectEase(0.5f, 0.5f, easeOf(state));
}

TEST_F(BodyLanguageStateTest, StaysWithoutARememberedPosture)
{
  BodyLanguageState state;
  state._p->ease = BodyLanguageEase(0.3f, 0.5f);

  state.update(KV::PersonMemory());

  expectEase(0.3f, 0.5f, easeOf(state));
}

TEST_F(BodyLanguageStateTest, ReturnsTheEaseByValue)
{
  const BodyLanguageState state;
  BodyLanguageEase copy = easeOf(state);

  copy.level = 1.f;

  EXPECT_EQ(1.f, copy.level);
  EXPECT_EQ(0.f, easeOf(state).level);
}

TEST_F(BodyLanguageStateTest, SharesItsRecordWithACopy)
{
  BodyLanguageState original;
  BodyLanguageState copy = original;

  copy.update(memoryOf(down));

  EXPECT_EQ(original._p, copy._p);
  expectEase(0.5f, 0.5f, easeOf(original));
}

TEST_F(BodyLanguageStateTest, HasARecordOfItsOwnWhenMade)
{
  BodyLanguageState one;
  const BodyLanguageState other;

  one.update(memoryOf(down));

  EXPECT_NE(one._p, other._p);
  expectEase(0.f, 0.f, easeOf(other));
}

TEST_F(BodyLanguageStateTest, IsNothingButThePointerToItsRecord)
{
  EXPECT_EQ(sizeof(boost::shared_ptr<BodyLanguageStatePrivate>), sizeof(BodyLanguageState));
}

TEST_F(BodyLanguageStateTest, RefusesAnyOtherDescription)
{
  BodyLanguageState state;
  state.update(memoryOf(down));

  for (const int description : {-1, 1, 2, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
    EXPECT_EQ("This descriptor is not valid.", support::textThrownBy<std::invalid_argument>([&] {
                state.bodyLanguageState(static_cast<KV::BodyLanguageDescription>(description));
              }))
        << description;
  expectEase(0.5f, 0.5f, easeOf(state));
}

TEST_F(BodyLanguageStateTest, IsWrittenAsItsEase)
{
  BodyLanguageState state;
  state._p->ease = BodyLanguageEase(-0.25f, 0.5f);
  std::ostringstream stream;

  EXPECT_EQ(&stream, &(stream << state));

  EXPECT_EQ("Body language ease -25.0% with confidence of 0.5 (feeling almost comfortable).", stream.str());
}

TEST_F(BodyLanguageStateTest, IsWrittenAsAlmostComfortableAtFirst)
{
  std::ostringstream stream;

  stream << BodyLanguageState();

  EXPECT_EQ("Body language ease 0.0% with confidence of 0.0 (feeling almost comfortable).", stream.str());
}

}  // namespace
