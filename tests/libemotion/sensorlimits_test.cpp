#include "personstateprivate.hpp"

#include "support/estimate.hpp"
#include "support/heldmutex.hpp"
#include "support/tablename.hpp"

#include <ko/human/attentionstate.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

using ko::human::AttentionState;
using KV::PersonStatePrivate;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

// Distance and height

struct LimitCase
{
  const char* name;
  float distance;
  float height;
  float byDistance;
  float byHeight;
};
class SensorLimit : public ::testing::TestWithParam<LimitCase>
{};

// 1e-5f: the ramps are steep, 10 per unit, and 1.45f is off by up to 6e-8
constexpr float tolerance = 1e-5f;

TEST_P(SensorLimit, HoldsTheAttentionByTheSmallerOfTheTwo)
{
  const PersonStatePrivate state;
  const float ceiling = state._handleOkaoAttentionLimitations(GetParam().distance, GetParam().height);
  EXPECT_NEAR(std::fmin(GetParam().byDistance, GetParam().byHeight), ceiling, tolerance);
}

TEST_P(SensorLimit, PullsTheValenceConfidenceByTheDistanceAndThenByTheHeight)
{
  PersonStatePrivate state;
  state.valence = {0.3f, 0.5f};
  state.unsmoothedValence = {-0.2f, 0.25f};
  state.attention = {0.5f, 0.7f};
  support::Estimate expected = support::estimateOf(state);
  expected.pullValenceConfidence(GetParam().byDistance, 0.175f);
  expected.pullValenceConfidence(GetParam().byHeight, 0.175f);

  state._handleOkaoValenceLimitations(GetParam().distance, GetParam().height);

  EXPECT_NEAR(expected.valenceConfidence, state.valence.confidence, tolerance);
  EXPECT_NEAR(expected.unsmoothedConfidence, state.unsmoothedValence.confidence, tolerance);
  EXPECT_EQ(0.3f, state.valence.value);
  EXPECT_EQ(-0.2f, state.unsmoothedValence.value);
  EXPECT_EQ(0.5f, state.attention.value);
  EXPECT_EQ(0.7f, state.attention.confidence);
}

// (1 - tanh(20 (x - center))) / 2: 0.982 and 0.018 a tenth before and behind, 0.881 and 0.119 a twentieth
INSTANTIATE_TEST_SUITE_P(AroundTheRamps, SensorLimit,
                         ::testing::Values(LimitCase{"Near", 0.f, 0.f, 1.f, 1.f},
                                           LimitCase{"AtTheDistance", 1.4f, 0.f, 0.5f, 1.f},
                                           LimitCase{"ATenthBeforeTheDistance", 1.3f, 0.f, 0.982013790f, 1.f},
                                           LimitCase{"ATwentiethBeforeTheDistance", 1.35f, 0.f, 0.880797078f, 1.f},
                                           LimitCase{"ATwentiethBehindTheDistance", 1.45f, 0.f, 0.119202922f, 1.f},
                                           LimitCase{"ATenthBehindTheDistance", 1.5f, 0.f, 0.017986210f, 1.f},
                                           LimitCase{"FarBehindTheDistance", 5.f, 0.f, 0.f, 1.f},
                                           LimitCase{"AtTheHeight", 0.f, 1.9f, 1.f, 0.5f},
                                           LimitCase{"ATenthBelowTheHeight", 0.f, 1.8f, 1.f, 0.982013790f},
                                           LimitCase{"ATwentiethBelowTheHeight", 0.f, 1.85f, 1.f, 0.880797078f},
                                           LimitCase{"ATwentiethAboveTheHeight", 0.f, 1.95f, 1.f, 0.119202922f},
                                           LimitCase{"ATenthAboveTheHeight", 0.f, 2.f, 1.f, 0.017986210f},
                                           LimitCase{"NearAndTall", 1.f, 2.5f, 0.999999887f, 0.f},
                                           LimitCase{"Both", 1.35f, 1.95f, 0.880797078f, 0.119202922f},
                                           LimitCase{"BothTheOtherWay", 1.45f, 1.85f, 0.119202922f, 0.880797078f},
                                           LimitCase{"NegativeDistance", -1.f, -1.f, 1.f, 1.f}),
                         support::RowName());

TEST(SensorLimits, TakeTheDistanceAloneForANanHeight)
{
  const PersonStatePrivate state;
  EXPECT_EQ(0.5f, state._handleOkaoAttentionLimitations(1.4f, nan));
}

TEST(SensorLimits, AreNanForANanDistanceWhateverTheHeight)
{
  const PersonStatePrivate state;
  EXPECT_TRUE(std::isnan(state._handleOkaoAttentionLimitations(nan, 1.9f)));
}

TEST(SensorLimits, ChangeNothingWhereTheyOnlyTellTheCeiling)
{
  PersonStatePrivate state;
  state.valence = {0.3f, 0.5f};
  state.attention = {0.5f, 0.7f};
  const support::Estimate before = support::estimateOf(state);

  state._handleOkaoAttentionLimitations(1.4f, 1.9f);

  EXPECT_EQ(before, support::estimateOf(state));
}

TEST(SensorLimits, MoveTheConfidenceUnderItsMutex)
{
  PersonStatePrivate state;
  EXPECT_TRUE(support::waitsFor(state.valenceConfidenceMutex, [&] { state._handleOkaoValenceLimitations(0.f, 0.f); }));
  EXPECT_TRUE(support::endsDespite(
      {&state.valenceMutex, &state.attentionMutex, &state.attentionConfidenceMutex, &state.headHeightMutex},
      [&] { state._handleOkaoValenceLimitations(0.f, 0.f); }));
}

TEST(SensorLimits, MayBeAskedFirstFromSeveralThreads)
{
  std::atomic<int> right{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&right] {
      PersonStatePrivate state;
      state._handleOkaoValenceLimitations(0.f, 0.f);
      if (state._handleOkaoAttentionLimitations(1.4f, 0.f) == 0.5f && state.valence.confidence > 0.3f)
        ++right;
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(4, right);
}

// Zones

TEST(AttentionZones, LieInThreeRowsFromUpToDownAndThreeColumnsFromLeftToRight)
{
  const std::vector<int> expected = {6, 2, 7, 4, 1, 5, 8, 3, 9};
  ASSERT_EQ(expected.size(), KV::attentionZones.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(expected[i], static_cast<int>(KV::attentionZones[i])) << i;
}

struct ZoneCase
{
  const char* name;
  float yaw;
  float pitch;
  int zone;
  float yawThreshold = 15.f;
  std::string_view method = "head";
};
class AttentionZone : public ::testing::TestWithParam<ZoneCase>
{};

TEST_P(AttentionZone, LiesWhereTheAnglesPoint)
{
  const ZoneCase& row = GetParam();
  EXPECT_EQ(row.zone, static_cast<int>(PersonStatePrivate::_computeAttentionZone(row.yaw, row.pitch, row.yawThreshold,
                                                                                 10.f, row.method)));
}

float above(float x)
{
  return std::nextafter(x, infinity);
}

float below(float x)
{
  return std::nextafter(x, -infinity);
}

INSTANTIATE_TEST_SUITE_P(ByTheHead, AttentionZone,
                         ::testing::Values(ZoneCase{"Straight", 0.f, 0.f, 1}, ZoneCase{"SixUp", 0.f, 6.f, 2},
                                           ZoneCase{"SixUpAside", 20.f, 6.f, 5}, ZoneCase{"TenUpAside", 20.f, 10.f, 7},
                                           ZoneCase{"ElevenDownLeft", -20.f, -11.f, 8}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(AtTheColumns, AttentionZone,
                         ::testing::Values(ZoneCase{"JustLeft", below(-15.f), 0.f, 4},
                                           ZoneCase{"CentreAtTheLeftEnd", -15.f, 0.f, 1},
                                           ZoneCase{"CentreJustInside", above(-15.f), 0.f, 1},
                                           ZoneCase{"CentreAtTheRightEnd", below(15.f), 0.f, 1},
                                           ZoneCase{"Right", 15.f, 0.f, 5}, ZoneCase{"JustRight", above(15.f), 0.f, 5},
                                           ZoneCase{"FarLeft", -170.f, 0.f, 4}, ZoneCase{"FarRight", 170.f, 0.f, 5}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(
    AtTheRows, AttentionZone,
    ::testing::Values(ZoneCase{"CentreUp", 0.f, 6.f, 2}, ZoneCase{"CentreJustNotUp", 0.f, below(6.f), 1},
                      ZoneCase{"CentreLevelAtTheLowerEnd", 0.f, -10.f, 1},
                      ZoneCase{"CentreJustDown", 0.f, below(-10.f), 3}, ZoneCase{"LeftUp", -20.f, 10.f, 6},
                      ZoneCase{"LeftJustNotUp", -20.f, below(10.f), 4}, ZoneCase{"LeftLevel", -20.f, -10.f, 4},
                      ZoneCase{"LeftJustDown", -20.f, below(-10.f), 8}, ZoneCase{"RightUp", 20.f, 10.f, 7},
                      ZoneCase{"RightJustNotUp", 20.f, below(10.f), 5}, ZoneCase{"RightLevel", 20.f, -10.f, 5},
                      ZoneCase{"RightJustDown", 20.f, below(-10.f), 9}, ZoneCase{"FarUp", 0.f, 90.f, 2},
                      ZoneCase{"FarDown", 0.f, -90.f, 3}),
    support::RowName());

INSTANTIATE_TEST_SUITE_P(ByTheGaze, AttentionZone,
                         ::testing::Values(ZoneCase{"Mirrored", 20.f, 0.f, 4, 12.f, "gaze"},
                                           ZoneCase{"MirroredTheOtherWay", -20.f, 0.f, 5, 12.f, "gaze"},
                                           ZoneCase{"PitchIsNotMirrored", 20.f, 10.f, 6, 12.f, "gaze"},
                                           ZoneCase{"CentreAtTheLeftEnd", 12.f, 0.f, 1, 12.f, "gaze"},
                                           ZoneCase{"JustLeft", above(12.f), 0.f, 4, 12.f, "gaze"},
                                           ZoneCase{"Right", -12.f, 0.f, 5, 12.f, "gaze"},
                                           ZoneCase{"CentreAtTheRightEnd", above(-12.f), 0.f, 1, 12.f, "gaze"}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(ByAnyOtherWord, AttentionZone,
                         ::testing::Values(ZoneCase{"Capital", 20.f, 0.f, 5, 12.f, "Gaze"},
                                           ZoneCase{"Longer", 20.f, 0.f, 5, 12.f, "gaze "},
                                           ZoneCase{"Shorter", 20.f, 0.f, 5, 12.f, "gaz"},
                                           ZoneCase{"Empty", 20.f, 0.f, 5, 12.f, ""}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(
    PastTheTable, AttentionZone,
    ::testing::Values(ZoneCase{"AThousandThresholdsRight", 15000.f, 0.f, 5},
                      ZoneCase{"JustBelowAThousandThresholds", below(15000.f), 0.f, 5},
                      ZoneCase{"InfinitelyRight", infinity, 0.f, 5}, ZoneCase{"InfinitelyLeft", -infinity, 0.f, 4},
                      ZoneCase{"AThousandThresholdsUp", 0.f, 10000.f, 2}, ZoneCase{"InfinitelyUp", 0.f, infinity, 2},
                      ZoneCase{"InfinitelyDown", 0.f, -infinity, 3}, ZoneCase{"NanYawIsRight", nan, 0.f, 5},
                      ZoneCase{"NanYawIsRightForTheGazeToo", nan, 0.f, 5, 12.f, "gaze"},
                      ZoneCase{"NanYawTakesTheRowOfTheSide", nan, 6.f, 5}, ZoneCase{"NanPitchIsUp", 0.f, nan, 2},
                      ZoneCase{"BothNan", nan, nan, 7}),
    support::RowName());

}  // namespace
