#include "bodylanguagestateprivate.hpp"

#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using support::attend;
using support::driftToNeutral;
using support::Estimate;
using support::fallingStep;
using support::headMagnitude;
using support::inSeconds;
using support::loseAttention;
using support::milliseconds;
using support::neverHeard;
using support::softStep;
using support::start;
using support::weighsOne;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

class UpdateByHead : public support::StateUpdateTest
{
protected:
  void remember(milliseconds age, float yaw, float pitch)
  {
    memories().headPostureMemory.record(aged(age, KV::HeadPosture(yaw, pitch, 90.f)));
  }

  void feel(float ease) { state.bodyLanguageState._p->ease = KV::BodyLanguageEase(ease, 0.9f); }
};

// Age

TEST_F(UpdateByHead, TakesNoPartWithoutAHead)
{
  Estimate expected = estimate();
  driftToNeutral(expected, neverHeard);
  loseAttention(expected, neverHeard);
  feel(0.5f);

  EXPECT_THAT(update(), Not(HasSubstr("Final value of head")));

  EXPECT_EQ(expected, estimate());
  EXPECT_EQ(-1000000, state.lastObservationTimes[KV::HeadPostureChannel].time_since_epoch().count());
  EXPECT_EQ(-10.f, state.attentionAngles[0]);
}

TEST_F(UpdateByHead, ActsJustBeforeOneSecond)
{
  remember(milliseconds(999), 0.f, 0.f);
  EXPECT_THAT(update(), HasSubstr("Final value of head: 0 | 0 | "));
}

TEST_F(UpdateByHead, TakesNoPartFromOneSecondOnButKeepsItsTime)
{
  remember(milliseconds(1000), 12.f, 0.f);
  Estimate expected = estimate();
  driftToNeutral(expected, neverHeard);
  loseAttention(expected, softStep(1.f, 2.5f));
  feel(0.5f);

  EXPECT_THAT(update(), Not(HasSubstr("Final value of head")));

  EXPECT_EQ(expected, estimate());
  EXPECT_EQ(start - milliseconds(1000), state.lastObservationTimes[KV::HeadPostureChannel]);
  EXPECT_EQ(-10.f, state.attentionAngles[0]);
}

TEST_F(UpdateByHead, KeepsTheTimeOfTheYoungest)
{
  remember(milliseconds(300), 0.f, 0.f);
  remember(milliseconds(100), 0.f, 0.f);
  remember(milliseconds(200), 0.f, 0.f);
  update();
  EXPECT_EQ(start - milliseconds(100), state.lastObservationTimes[KV::HeadPostureChannel]);
}

// Body language

TEST_F(UpdateByHead, PullsTheValenceByTheBodyLanguageWithoutBeingASourceOfValence)
{
  feel(-0.375f);
  remember(milliseconds(0), 0.f, 0.f);
  Estimate expected = estimate();
  expected.pullValence(-0.375f, 0.065f);
  driftToNeutral(expected, neverHeard);

  EXPECT_THAT(update(), HasSubstr("No valence observations"));

  EXPECT_EQ(expected.valence, state.valence.value);
  EXPECT_EQ(expected.unsmoothedValence, state.unsmoothedValence.value);
  EXPECT_EQ(expected.valenceConfidence, state.valence.confidence);
}

TEST_F(UpdateByHead, AsksTheBodyLanguageAndDoesNotUpdateIt)
{
  feel(0.25f);
  remember(milliseconds(0), 0.f, 45.f);  // up, which would be -0.5
  update();
  EXPECT_EQ(0.25f, state.bodyLanguageState._p->ease.level);
}

// Attention estimate

TEST_F(UpdateByHead, EstimatesTheAttentionByTheMeanAngles)
{
  remember(milliseconds(900), -31.f, 17.f);
  remember(milliseconds(5000), 55.f, -44.f);
  remember(milliseconds(120), 7.7f, 3.3f);
  update();

  const float w0 = softStep(inSeconds(milliseconds(120)), 1.f);
  const float w1 = softStep(inSeconds(milliseconds(900)), 1.f);
  const float w2 = softStep(inSeconds(milliseconds(5000)), 1.f);
  float yawSum = w0 * 7.7f;
  yawSum += w1 * -31.f;
  yawSum += w2 * 55.f;
  float pitchSum = w0 * 3.3f;
  pitchSum += w1 * 17.f;
  pitchSum += w2 * -44.f;
  float weightSum = w0;
  weightSum += w1;
  weightSum += w2;
  const float magnitude = headMagnitude(yawSum / weightSum, pitchSum / weightSum);
  EXPECT_EQ(magnitude, state.attentionAngles[0]);
  EXPECT_EQ(fallingStep(magnitude, 15.f), state.attentionEstimates[0]);
  EXPECT_EQ(-10.f, state.attentionAngles[1]);
  EXPECT_EQ(0.f, state.attentionEstimates[1]);
}

TEST_F(UpdateByHead, IsHalfAttentiveAtFifteenDegrees)
{
  remember(weighsOne, 0.f, 45.f);
  update();
  EXPECT_EQ(15.f, state.attentionAngles[0]);
  EXPECT_EQ(0.5f, state.attentionEstimates[0]);
}

TEST_F(UpdateByHead, ReportsTheMeanAnglesAndTheEstimate)
{
  remember(weighsOne, 1.25f, 45.f);
  state.attentionEstimates[0] = 0.625f;
  state.attentionAngles[0] = headMagnitude(1.25f, 45.f);
  EXPECT_THAT(update(), HasSubstr("\nFinal value of head: 1.25 | 45 | 0.625\n"));
}

struct DeadBandCase
{
  const char* name;
  float former;
  bool renewed;
};
class UpdateHeadDeadBand : public support::StateUpdateTestWithParam<DeadBandCase>
{};

TEST_P(UpdateHeadDeadBand, KeepsTheEstimateWhileTheAngleHardlyMoves)
{
  memories().headPostureMemory.record(aged(weighsOne, KV::HeadPosture(0.f, 45.f, 0.f)));
  state.attentionAngles[0] = GetParam().former;
  state.attentionEstimates[0] = 0.123f;
  update();

  EXPECT_EQ(GetParam().renewed ? 0.5f : 0.123f, state.attentionEstimates[0]);
  EXPECT_EQ(15.f, state.attentionAngles[0]);
}

INSTANTIATE_TEST_SUITE_P(AroundFifteenDegrees, UpdateHeadDeadBand,
                         ::testing::Values(DeadBandCase{"Same", 15.f, false},
                                           DeadBandCase{"ALittleLess", 14.71f, false},
                                           DeadBandCase{"ALittleMore", 15.29f, false},
                                           DeadBandCase{"MuchLess", 14.69f, true},
                                           DeadBandCase{"MuchMore", 15.31f, true}, DeadBandCase{"New", -10.f, true},
                                           DeadBandCase{"Nan", nan, false}),
                         support::RowName());

class UpdateHeadDeadBandEnd : public support::StateUpdateTest
{
protected:
  /// Returns the estimate when a head at that angle is followed by a straight head, whose angle is 0.
  float estimateAfter(float former)
  {
    memories().headPostureMemory.record(fresh(KV::HeadPosture(0.f, 0.f, 0.f)));
    state.attentionAngles[0] = former;
    state.attentionEstimates[0] = 0.123f;
    update();
    return state.attentionEstimates[0];
  }
};

TEST_F(UpdateHeadDeadBandEnd, IsAtThreeTenths)
{
  EXPECT_EQ(fallingStep(0.f, 15.f), estimateAfter(0.3f));
  EXPECT_EQ(0.123f, estimateAfter(std::nextafter(0.3f, 0.f)));
  EXPECT_EQ(fallingStep(0.f, 15.f), estimateAfter(-0.3f));
  EXPECT_EQ(0.123f, estimateAfter(std::nextafter(-0.3f, 0.f)));
}

TEST_F(UpdateByHead, NeverRenewsTheEstimateInASlowDrift)
{
  remember(milliseconds(0), 0.f, 0.f);
  update();
  const float before = state.attentionEstimates[0];
  for (int cycle = 1; cycle <= 10; ++cycle)
  {
    clock.advance(milliseconds(7001));
    remember(weighsOne, 0.f, 3.f * 0.29f * static_cast<float>(cycle));
    update();
    EXPECT_NEAR(0.29f * static_cast<float>(cycle), state.attentionAngles[0], 1e-6f);  // single precision
    EXPECT_EQ(before, state.attentionEstimates[0]);
    clock.advance(milliseconds(5000));  // after the reading that was in the future
  }
}

TEST_F(UpdateByHead, KeepsTheEstimateButTheNanForAHeadThatIsNan)
{
  remember(milliseconds(0), nan, 0.f);
  state.attentionEstimates[0] = 0.123f;
  update();

  EXPECT_EQ(0.123f, state.attentionEstimates[0]);
  EXPECT_TRUE(std::isnan(state.attentionAngles[0]));
}

// The head's share in the attention

struct ShareCase
{
  const char* name;
  float yaw;
  float share;
};
class UpdateHeadShare : public support::StateUpdateTestWithParam<ShareCase>
{
protected:
  /// Updates with a head that attends fully by its kept estimate, and a gaze that does not at all.
  void updateWithHeadAgainstGaze(float yaw)
  {
    memories().headPostureMemory.record(aged(weighsOne, KV::HeadPosture(yaw, 0.f, 0.f)));
    state.attentionAngles[0] = headMagnitude(yaw, 0.f);
    state.attentionEstimates = {1.f, 0.f};
    update();
  }
};

TEST_P(UpdateHeadShare, FollowsFromTheYaw)
{
  Estimate expected = estimate();
  driftToNeutral(expected, neverHeard);
  attend(expected, GetParam().share);

  updateWithHeadAgainstGaze(GetParam().yaw);

  EXPECT_EQ(expected.attention, state.attention.value);
  EXPECT_EQ(expected.attentionConfidence, state.attention.confidence);
}

INSTANTIATE_TEST_SUITE_P(AtTheYaws, UpdateHeadShare,
                         ::testing::Values(ShareCase{"None", 0.f, 0.f}, ShareCase{"Five", 5.f, 0.f},
                                           ShareCase{"MinusFive", -5.f, 0.f},
                                           ShareCase{"JustBelowTen", std::nextafter(10.f, 0.f), 0.f},
                                           ShareCase{"Ten", 10.f, 1.f - fallingStep(10.f, 30.f)},
                                           ShareCase{"MinusTen", -10.f, 1.f - fallingStep(10.f, 30.f)},
                                           ShareCase{"Twenty", 20.f, 1.f - fallingStep(20.f, 30.f)},
                                           ShareCase{"Thirty", 30.f, 0.5f}, ShareCase{"MinusThirty", -30.f, 0.5f},
                                           ShareCase{"ThirtyFive", 35.f, 1.f - fallingStep(35.f, 30.f)},
                                           ShareCase{"JustAboveThirtyFive", std::nextafter(35.f, 36.f), 1.f},
                                           ShareCase{"Forty", 40.f, 1.f}, ShareCase{"MinusForty", -40.f, 1.f}),
                         support::RowName());

class UpdateHeadShareJump : public support::StateUpdateTest
{
protected:
  /// Returns the attention that a full head and an absent gaze cause, starting from 0.
  float attentionAt(float yaw)
  {
    clock.advance(milliseconds(20000));
    memories().headPostureMemory.record(aged(weighsOne, KV::HeadPosture(yaw, 0.f, 0.f)));
    state.attention.value = 0.f;
    state.attentionAngles[0] = headMagnitude(yaw, 0.f);
    state.attentionEstimates = {1.f, 0.f};
    update();
    return state.attention.value;
  }
};

TEST_F(UpdateHeadShareJump, IsOneAtTenAndThirtyFiveDegrees)
{
  constexpr float rounding = 1e-6f;  // single precision, a few operations
  EXPECT_EQ(0.f, attentionAt(std::nextafter(10.f, 0.f)));
  EXPECT_NEAR(0.65f * 0.098169943f, attentionAt(10.f), rounding);
  EXPECT_NEAR(0.65f * 0.632328695f, attentionAt(35.f), rounding);
  EXPECT_NEAR(0.65f, attentionAt(std::nextafter(35.f, 36.f)), rounding);
}

TEST_F(UpdateByHead, LeavesTheAttentionToTheGazeForANanYaw)
{
  remember(milliseconds(0), nan, 0.f);
  state.attentionEstimates = {1.f, 0.25f};
  Estimate expected = estimate();
  expected.pullAttention(0.25f, 0.65f);
  update();

  EXPECT_EQ(expected.attention, state.attention.value);
}

}  // namespace
