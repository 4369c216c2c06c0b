#include "personstateprivate.hpp"

#include "support/estimate.hpp"
#include "support/heldmutex.hpp"
#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

namespace
{

using KV::PersonStatePrivate;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

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

TEST(SensorLimits, ChangeNothingWhereTheyOnlyReturnTheCeiling)
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

}  // namespace
