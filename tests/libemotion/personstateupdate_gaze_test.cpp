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
using support::gazeMagnitude;
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

class UpdateByGaze : public support::StateUpdateTest
{
protected:
  void remember(milliseconds age, float yaw, float pitch)
  {
    memories().gazeMemory.record(aged(age, KV::Gaze(yaw, pitch)));
  }
};

TEST_F(UpdateByGaze, TakesNoPartWithoutAGaze)
{
  observation.gaze = fresh(KV::Gaze(1.f, 2.f));  // not in the memory
  EXPECT_THAT(update(), Not(HasSubstr("Final value of gaze")));
  EXPECT_EQ(-10.f, state.attentionAngles[1]);
}

TEST_F(UpdateByGaze, ActsJustBeforeOneSecond)
{
  remember(milliseconds(999), 0.f, 0.f);
  EXPECT_THAT(update(), HasSubstr("Final value of gaze: 0 | 0 | "));
  EXPECT_EQ(start - milliseconds(999), state.lastObservationTimes[KV::GazeChannel]);
}

TEST_F(UpdateByGaze, TakesNoPartFromOneSecondOnAndDoesNotKeepItsTime)
{
  remember(milliseconds(1000), 0.f, 0.f);
  Estimate expected = estimate();
  driftToNeutral(expected, neverHeard);
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), Not(HasSubstr("Final value of gaze")));

  EXPECT_EQ(expected, estimate());
  EXPECT_EQ(-1000000, state.lastObservationTimes[KV::GazeChannel].time_since_epoch().count());
  EXPECT_EQ(-10.f, state.attentionAngles[1]);
}

TEST_F(UpdateByGaze, KeepsTheTimeOfTheYoungest)
{
  remember(milliseconds(300), 0.f, 0.f);
  remember(milliseconds(100), 0.f, 0.f);
  remember(milliseconds(200), 0.f, 0.f);
  update();
  EXPECT_EQ(start - milliseconds(100), state.lastObservationTimes[KV::GazeChannel]);
  EXPECT_EQ(-1000000, state.lastObservationTimes[KV::HeadPostureChannel].time_since_epoch().count());
}

TEST_F(UpdateByGaze, DecidesTheAttentionWithoutAHead)
{
  remember(weighsOne, 12.f, 16.f);
  Estimate expected = estimate();
  driftToNeutral(expected, neverHeard);
  attend(expected, 0.5f);
  state.attentionEstimates[0] = 1.f;

  update();

  EXPECT_EQ(20.f, state.attentionAngles[1]);
  EXPECT_EQ(0.5f, state.attentionEstimates[1]);
  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateByGaze, EstimatesTheAttentionByTheMeanAngles)
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
  const float magnitude = gazeMagnitude(yawSum / weightSum, pitchSum / weightSum);
  EXPECT_EQ(magnitude, state.attentionAngles[1]);
  EXPECT_EQ(fallingStep(magnitude, 20.f), state.attentionEstimates[1]);
  EXPECT_EQ(-10.f, state.attentionAngles[0]);
  EXPECT_EQ(0.f, state.attentionEstimates[0]);
}

TEST_F(UpdateByGaze, ReportsTheMeanAnglesAndTheEstimate)
{
  remember(weighsOne, 12.f, 16.f);
  EXPECT_THAT(update(), HasSubstr("\nFinal value of gaze: 12 | 16 | 0.5\n"));
}

struct DeadBandCase
{
  const char* name;
  float former;
  bool renewed;
};
class UpdateGazeDeadBand : public support::StateUpdateTestWithParam<DeadBandCase>
{};

TEST_P(UpdateGazeDeadBand, KeepsTheEstimateWhileTheAngleHardlyMoves)
{
  memories().gazeMemory.record(aged(weighsOne, KV::Gaze(0.f, 0.f)));
  state.attentionAngles[1] = GetParam().former;
  state.attentionEstimates[1] = 0.123f;
  update();

  EXPECT_EQ(GetParam().renewed ? fallingStep(0.f, 20.f) : 0.123f, state.attentionEstimates[1]);
  EXPECT_EQ(0.f, state.attentionAngles[1]);
}

INSTANTIATE_TEST_SUITE_P(AroundZero, UpdateGazeDeadBand,
                         ::testing::Values(DeadBandCase{"Same", 0.f, false},
                                           DeadBandCase{"JustInside", std::nextafter(0.3f, 0.f), false},
                                           DeadBandCase{"AtTheEnd", 0.3f, true},
                                           DeadBandCase{"JustInsideBelow", std::nextafter(-0.3f, 0.f), false},
                                           DeadBandCase{"AtTheEndBelow", -0.3f, true}, DeadBandCase{"New", -10.f, true},
                                           DeadBandCase{"Nan", nan, false}),
                         support::RowName());

TEST_F(UpdateByGaze, PullsTheAttentionNoFurtherThanToZero)
{
  remember(weighsOne, 80.f, 0.f);  // four times the reference: the estimate is about -0.495
  update();

  EXPECT_NEAR(-0.495f, state.attentionEstimates[1], 1e-6f);  // single precision
  EXPECT_EQ(0.f, state.attention.value);
}

}  // namespace
