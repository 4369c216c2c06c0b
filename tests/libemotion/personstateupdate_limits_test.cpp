#include "support/heldmutex.hpp"
#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace
{

using support::Estimate;
using support::milliseconds;
using support::sensorRamp;
using support::softStep;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// Distance and height

/// The observation, and the expected arguments of the sensor's limits.
struct FaceCase
{
  const char* name;
  boost::optional<float> distance;
  boost::optional<float> height;
  float usedDistance;
  float usedHeight;
};
class UpdateLimits : public support::StateUpdateTestWithParam<FaceCase>
{
protected:
  UpdateLimits()
  {
    state.headHeight = 1.93f;
    memories().distanceMemory.record(fresh(1.39f));  // is not read
    if (GetParam().distance)
      observation.distance = fresh(*GetParam().distance);
    if (GetParam().height)
      observation.headHeight = fresh(*GetParam().height);
  }

  void touch() { memories().touchEmotionMemory.record(fresh(1)); }
  void look() { memories().gazeMemory.record(fresh(KV::Gaze())); }
};

TEST_P(UpdateLimits, LowerTheValenceConfidenceByDistanceAndThenHeight)
{
  touch();
  Estimate expected = estimate();
  support::limitValence(expected, GetParam().usedDistance, GetParam().usedHeight);
  update();

  EXPECT_EQ(expected.valenceConfidence, state.valence.confidence);
  EXPECT_EQ(expected.unsmoothedConfidence, state.unsmoothedValence.confidence);
  EXPECT_EQ(GetParam().usedHeight, state.headHeight);
}

TEST_P(UpdateLimits, HoldTheAttentionConfidenceByTheSmallerOfTheTwo)
{
  look();
  const float byDistance = sensorRamp(GetParam().usedDistance, 1.4f);
  const float byHeight = sensorRamp(GetParam().usedHeight, 1.9f);
  const float ceiling = byHeight < byDistance ? byHeight : byDistance;
  Estimate expected = estimate();
  expected.pullAttentionConfidence(0.8f * ceiling + 0.2f * 1.f, 0.7f);
  update();

  EXPECT_EQ(expected.attentionConfidence, state.attention.confidence);
  EXPECT_EQ(GetParam().usedHeight, state.headHeight);
}

INSTANTIATE_TEST_SUITE_P(ByDistanceAndHeight, UpdateLimits,
                         ::testing::Values(FaceCase{"NothingNew", boost::none, boost::none, 0.f, 1.93f},
                                           FaceCase{"Distance", 1.42f, boost::none, 1.42f, 1.93f},
                                           FaceCase{"Height", boost::none, 1.87f, 0.f, 1.87f},
                                           FaceCase{"Both", 1.37f, 1.91f, 1.37f, 1.91f},
                                           FaceCase{"FarAndSmall", 3.f, 1.2f, 3.f, 1.2f}),
                         support::RowName());

class UpdateLimit : public support::StateUpdateTest
{};

TEST_F(UpdateLimit, IsNotThatOfAnEarlierDistance)
{
  observation.distance = fresh(3.f);
  memories().touchEmotionMemory.record(fresh(1));
  update();
  observation.distance = boost::none;
  Estimate expected = estimate();
  support::limitValence(expected, 0.f, 0.f);
  update();
  EXPECT_EQ(expected.valenceConfidence, state.valence.confidence);
}

TEST_F(UpdateLimit, LosesTheConfidencesOfANanDistance)
{
  observation.distance = fresh(nan);
  memories().touchEmotionMemory.record(fresh(1));
  memories().gazeMemory.record(fresh(KV::Gaze()));
  update();

  Estimate expected;  // the NaN leaves 0, from which the height pulls
  expected.pullValenceConfidence(1.f, 0.175f);
  EXPECT_EQ(expected.valenceConfidence, state.valence.confidence);
  EXPECT_EQ(0.f, state.attention.confidence);
}

TEST_F(UpdateLimit, KeepsTheHeadHeightUnderItsMutex)
{
  observation.headHeight = fresh(1.5f);
  memories().touchEmotionMemory.record(fresh(1));
  EXPECT_TRUE(support::waitsFor(state.headHeightMutex, [this] { updateOnThisThread(); }));
  EXPECT_EQ(1.5f, state.headHeight);
}

TEST_F(UpdateLimit, TakesNoMutexForAHeadHeightThatIsNotThere)
{
  memories().touchEmotionMemory.record(fresh(1));
  EXPECT_TRUE(support::endsDespite({&state.headHeightMutex}, [this] { updateOnThisThread(); }));
}

// The robot's head

struct RobotPose
{
  int ageInMs;
  float yaw;
  float pitch;
};

/// The robot's poses, newest first, with the steps of yaw and pitch whose weights count.
struct RobotCase
{
  const char* name;
  std::vector<RobotPose> poses;
  std::vector<float> yawSteps;
  std::vector<float> pitchSteps;
};
class UpdateByRobotHead : public support::StateUpdateTestWithParam<RobotCase>
{
protected:
  /// Returns the mean weight of the steps in the order in which they are made, or 1 without any.
  static float movementFactor(const std::vector<float>& yawSteps, const std::vector<float>& pitchSteps)
  {
    float sum = 0.f;
    const auto count = static_cast<float>(yawSteps.size() + pitchSteps.size());
    for (std::size_t i = 0; i < std::max(yawSteps.size(), pitchSteps.size()); ++i)
    {
      if (i < yawSteps.size())
        sum += softStep(yawSteps[i], 7.f);
      if (i < pitchSteps.size())
        sum += softStep(pitchSteps[i], 3.5f);
    }
    return count > 0.f ? sum / count : 1.f;
  }
};

TEST_P(UpdateByRobotHead, LowersTheAttentionConfidenceByItsSteps)
{
  for (const RobotPose& pose : GetParam().poses)
    memories().robotHeadPostureMemory.record(
        aged(milliseconds(pose.ageInMs), KV::RobotHeadPosture(pose.yaw, pose.pitch)));
  memories().gazeMemory.record(fresh(KV::Gaze()));
  Estimate expected = estimate();
  expected.pullAttentionConfidence(0.8f * 1.f + 0.2f * movementFactor(GetParam().yawSteps, GetParam().pitchSteps),
                                   0.7f);
  update();

  EXPECT_EQ(expected.attentionConfidence, state.attention.confidence);
}

INSTANTIATE_TEST_SUITE_P(
    ByItsPoses, UpdateByRobotHead,
    ::testing::Values(
        RobotCase{"Unknown", {}, {}, {}}, RobotCase{"OnePose", {{0, 30.f, 20.f}}, {}, {}},
        RobotCase{"AtRest", {{0, 30.f, 20.f}, {100, 30.f, 20.f}, {200, 30.f, 20.f}}, {}, {}},
        RobotCase{"SmallStepsDoNotCount", {{0, 2.f, 1.f}, {100, 0.f, 0.f}}, {}, {}},
        RobotCase{"AYawStep", {{0, 7.f, 0.f}, {100, 0.f, 0.f}}, {7.f}, {}},
        RobotCase{"AYawStepBack", {{0, 0.f, 0.f}, {100, 7.f, 0.f}}, {7.f}, {}},
        RobotCase{"APitchStep", {{0, 0.f, 3.f}, {100, 0.f, 0.f}}, {}, {3.f}},
        RobotCase{"APitchStepBack", {{0, 0.f, -3.f}, {100, 0.f, 0.f}}, {}, {3.f}},
        RobotCase{"BothAngles", {{0, 5.f, 3.f}, {100, 0.f, 0.f}}, {5.f}, {3.f}},
        RobotCase{"FromEachToTheNext", {{0, 20.f, 9.f}, {100, 12.f, 5.f}, {200, 6.f, 2.f}}, {8.f, 6.f}, {4.f, 3.f}},
        RobotCase{"MeanOfThoseThatCount", {{0, 9.f, 0.f}, {100, 0.f, 0.f}, {200, 4.f, 0.f}}, {9.f, 4.f}, {}},
        RobotCase{"LargeStepsCountLeast", {{0, 90.f, 60.f}, {100, 0.f, 0.f}}, {90.f}, {60.f}},
        RobotCase{"JustBeforeOneSecond", {{0, 7.f, 0.f}, {999, 0.f, 0.f}}, {7.f}, {}},
        RobotCase{"OneSecondAgoIsTooOld", {{0, 7.f, 0.f}, {1000, 0.f, 0.f}}, {}, {}},
        RobotCase{"TooOldThroughout", {{1000, 7.f, 0.f}, {1100, 0.f, 0.f}}, {}, {}},
        RobotCase{"InTheFuture", {{-100, 7.f, 0.f}, {0, 0.f, 0.f}}, {7.f}, {}},
        RobotCase{"ANanCounts", {{0, nan, 0.f}, {100, 0.f, 0.f}}, {nan, nan}, {}}),
    support::RowName());

TEST_F(UpdateLimit, IsNotLoweredByARobotStepThatWeighsNineteenTwentieths)
{
  // Weights run down through each float at about 0.95, several steps long each: the first that is not above it.
  float step = 2.9f;
  while (softStep(step, 7.f) > 0.95f)
    step = std::nextafter(step, 7.f);
  ASSERT_EQ(0.95f, softStep(step, 7.f));
  memories().gazeMemory.record(fresh(KV::Gaze()));
  memories().robotHeadPostureMemory.record(fresh(KV::RobotHeadPosture(step, 0.f)));
  memories().robotHeadPostureMemory.record(aged(milliseconds(100), KV::RobotHeadPosture()));
  Estimate expected = estimate();
  expected.pullAttentionConfidence(1.f, 0.7f);
  update();
  EXPECT_EQ(expected.attentionConfidence, state.attention.confidence);
}

TEST_F(UpdateLimit, IsLoweredByARobotStepThatWeighsLess)
{
  float step = 2.9f;
  while (softStep(step, 7.f) >= 0.95f)
    step = std::nextafter(step, 7.f);
  memories().gazeMemory.record(fresh(KV::Gaze()));
  memories().robotHeadPostureMemory.record(fresh(KV::RobotHeadPosture(step, 0.f)));
  memories().robotHeadPostureMemory.record(aged(milliseconds(100), KV::RobotHeadPosture()));
  Estimate expected = estimate();
  expected.pullAttentionConfidence(0.8f + 0.2f * softStep(step, 7.f), 0.7f);
  update();
  EXPECT_EQ(expected.attentionConfidence, state.attention.confidence);
  EXPECT_LT(state.attention.confidence, 0.908f);
}

TEST_F(UpdateLimit, PrunesTheRobotsHeadWhenAttentionIsObserved)
{
  memories().robotHeadPostureMemory.record(fresh(KV::RobotHeadPosture()));
  clock.advance(milliseconds(7001));
  memories().gazeMemory.record(fresh(KV::Gaze()));
  update();
  EXPECT_TRUE(memories().robotHeadPostureMemory.records().empty());
}

}  // namespace
