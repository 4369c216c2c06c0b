#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace
{

using support::driftToNeutral;
using support::Estimate;
using support::inSeconds;
using support::limitValence;
using support::loseAttention;
using support::milliseconds;
using support::neverHeard;
using support::softStep;
using support::start;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr std::int64_t neverSeenTicks = -1000000;

class UpdateByRememberedEmotions : public support::StateUpdateTest
{
protected:
  /// Runs one update, and expects the valence pulled as `expected` says and observed.
  void expectPulled(Estimate expected)
  {
    limitValence(expected);
    loseAttention(expected, neverHeard);
    EXPECT_THAT(update(), Not(HasSubstr("No valence observations")));
    EXPECT_EQ(expected, estimate());
  }

  static float weight(int ageInMs, float reference)
  {
    return softStep(inSeconds(milliseconds(ageInMs)), reference) * 0.65f;
  }

  std::int64_t keptTicks(KV::ObservationChannel channel) const
  {
    return state.lastObservationTimes[channel].time_since_epoch().count();
  }
};

TEST_F(UpdateByRememberedEmotions, ObservesNothingInEmptyMemories)
{
  EXPECT_THAT(update(), HasSubstr("No valence observations"));
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::AsrChannel));
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::TouchChannel));
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::ContextChannel));
}

TEST_F(UpdateByRememberedEmotions, DoesNotReadTheObservation)
{
  observation.asrEmotion = fresh(1.f);
  observation.touchEmotion = fresh(1);
  observation.contextEmotion = fresh(KV::ContextEmotion(1, 4.f));
  EXPECT_THAT(update(), HasSubstr("No valence observations"));
}

// Speech

struct AsrCase
{
  const char* name;
  float value;
  float target;
};
class UpdateByAsr : public UpdateByRememberedEmotions, public ::testing::WithParamInterface<AsrCase>
{};

TEST_P(UpdateByAsr, PullsTheValenceBySign)
{
  memories().asrEmotionMemory.record(aged(milliseconds(700), GetParam().value));
  Estimate expected = estimate();
  expected.pullValence(GetParam().target, weight(700, 4.f));
  expectPulled(expected);
}

INSTANTIATE_TEST_SUITE_P(BySign, UpdateByAsr,
                         ::testing::Values(AsrCase{"One", 1.f, 1.f}, AsrCase{"AsMuchForALittle", 0.001f, 1.f},
                                           AsrCase{"Zero", 0.f, 1.f}, AsrCase{"MinusZero", -0.f, 1.f},
                                           AsrCase{"JustBelowZero", std::nextafter(0.f, -1.f), -1.f},
                                           AsrCase{"MinusOne", -1.f, -1.f}, AsrCase{"MinusAHundred", -100.f, -1.f},
                                           AsrCase{"Nan", nan, 1.f}),
                         support::RowName());

TEST_F(UpdateByRememberedEmotions, PullsByEachSpeechNewestFirst)
{
  memories().asrEmotionMemory.record(aged(milliseconds(6500), 1.f));
  memories().asrEmotionMemory.record(aged(milliseconds(100), -1.f));
  memories().asrEmotionMemory.record(aged(milliseconds(4000), 1.f));
  Estimate expected = estimate();
  expected.pullValence(-1.f, weight(100, 4.f));
  expected.pullValence(1.f, weight(4000, 4.f));
  expected.pullValence(1.f, weight(6500, 4.f));
  expectPulled(expected);
  EXPECT_EQ(start - milliseconds(100), state.lastObservationTimes[KV::AsrChannel]);
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::TouchChannel));
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::ContextChannel));
}

// Touch

struct TouchCase
{
  const char* name;
  std::int32_t value;
  float target;
};
class UpdateByTouch : public UpdateByRememberedEmotions, public ::testing::WithParamInterface<TouchCase>
{};

TEST_P(UpdateByTouch, PullsTheValenceBySignAndByZeroDown)
{
  memories().touchEmotionMemory.record(aged(milliseconds(700), GetParam().value));
  Estimate expected = estimate();
  expected.pullValence(GetParam().target, weight(700, 4.f));
  expectPulled(expected);
}

INSTANTIATE_TEST_SUITE_P(BySign, UpdateByTouch,
                         ::testing::Values(TouchCase{"Two", 2, 1.f}, TouchCase{"One", 1, 1.f},
                                           TouchCase{"ZeroIsNegative", 0, -1.f}, TouchCase{"MinusOne", -1, -1.f}),
                         support::RowName());

TEST_F(UpdateByRememberedEmotions, PullsByEachTouchNewestFirst)
{
  memories().touchEmotionMemory.record(aged(milliseconds(4000), 0));
  memories().touchEmotionMemory.record(aged(milliseconds(100), 1));
  Estimate expected = estimate();
  expected.pullValence(1.f, weight(100, 4.f));
  expected.pullValence(-1.f, 0.5f * 0.65f);
  expectPulled(expected);
  EXPECT_EQ(start - milliseconds(100), state.lastObservationTimes[KV::TouchChannel]);
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::AsrChannel));
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::ContextChannel));
}

// Context

struct ContextCase
{
  const char* name;
  std::int32_t valence;
  float lifetime;
};
class UpdateByContext : public UpdateByRememberedEmotions, public ::testing::WithParamInterface<ContextCase>
{};

TEST_P(UpdateByContext, PullsTheValenceToItsOwnForItsOwnTime)
{
  memories().contextEmotionMemory.record(
      aged(milliseconds(700), KV::ContextEmotion(GetParam().valence, GetParam().lifetime)));
  Estimate expected = estimate();
  expected.pullValence(static_cast<float>(GetParam().valence), weight(700, GetParam().lifetime));
  expectPulled(expected);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, UpdateByContext,
                         ::testing::Values(ContextCase{"Positive", 1, 4.f}, ContextCase{"Neutral", 0, 4.f},
                                           ContextCase{"Negative", -1, 4.f}, ContextCase{"Short", 1, 0.5f},
                                           ContextCase{"Long", 1, 20.f}, ContextCase{"Endless", 1, 10000.f},
                                           ContextCase{"WithoutTime", 1, 0.f}, ContextCase{"NegativeTime", 1, -3.f},
                                           ContextCase{"NanTime", 1, nan}, ContextCase{"BeyondTheRange", 5, 4.f},
                                           ContextCase{"FarBelowTheRange", -7, 4.f}),
                         support::RowName());

TEST_F(UpdateByRememberedEmotions, PullsByEachContextNewestFirstForTwentySeconds)
{
  memories().contextEmotionMemory.record(aged(milliseconds(20000), KV::ContextEmotion(-1, 20.f)));
  memories().contextEmotionMemory.record(aged(milliseconds(100), KV::ContextEmotion(1, 0.2f)));
  Estimate expected = estimate();
  expected.pullValence(1.f, weight(100, 0.2f));
  expected.pullValence(-1.f, weight(20000, 20.f));
  expectPulled(expected);
  EXPECT_EQ(start - milliseconds(100), state.lastObservationTimes[KV::ContextChannel]);
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::AsrChannel));
  EXPECT_EQ(neverSeenTicks, keptTicks(KV::TouchChannel));
}

TEST_F(UpdateByRememberedEmotions, ForgetsAContextAfterTwentySeconds)
{
  memories().contextEmotionMemory.record(fresh(KV::ContextEmotion(1, 20.f)));
  clock.advance(milliseconds(20001));
  EXPECT_THAT(update(), HasSubstr("No valence observations"));
}

// Together

TEST_F(UpdateByRememberedEmotions, ActInTheOrderSpeechTouchContext)
{
  memories().asrEmotionMemory.record(aged(milliseconds(10), 1.f));
  memories().touchEmotionMemory.record(aged(milliseconds(20), -1));
  memories().contextEmotionMemory.record(aged(milliseconds(30), KV::ContextEmotion(0, 4.f)));
  Estimate expected = estimate();
  expected.pullValence(1.f, weight(10, 4.f));
  expected.pullValence(-1.f, weight(20, 4.f));
  expected.pullValence(0.f, weight(30, 4.f));
  expectPulled(expected);
}

TEST_F(UpdateByRememberedEmotions, ActAgainInEveryCycle)
{
  memories().asrEmotionMemory.record(fresh(-1.f));
  update();
  Estimate expected = estimate();
  expected.pullValence(-1.f, weight(0, 4.f));
  expectPulled(expected);
}

TEST_F(UpdateByRememberedEmotions, KeepTheTimeOfTheLastOneWhenTheyAreForgotten)
{
  memories().asrEmotionMemory.record(fresh(-1.f));
  update();
  clock.advance(milliseconds(7001));
  update();
  EXPECT_EQ(start, state.lastObservationTimes[KV::AsrChannel]);
}

}  // namespace
