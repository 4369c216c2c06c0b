#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace
{

using support::driftToNeutral;
using support::Estimate;
using support::facialPoints;
using support::inSeconds;
using support::limitValence;
using support::loseAttention;
using support::milliseconds;
using support::neverHeard;
using support::softStep;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

// Facial points

class UpdateByFacialPoints : public support::StateUpdateTest
{
protected:
  void remember(milliseconds age, float confidence)
  {
    memories().facialPointsMemory.record(aged(age, facialPoints(confidence)));
  }

  /// Expects one update to pull the valence confidence towards `target`, and otherwise only the effect of silence.
  void expectPulledTowards(float target)
  {
    Estimate expected = estimate();
    expected.pullValenceConfidence(target, 0.7f);
    driftToNeutral(expected, neverHeard);
    loseAttention(expected, neverHeard);
    update();
    EXPECT_EQ(expected, estimate());
  }
};

TEST_F(UpdateByFacialPoints, ReportsNoFacialPointsAndLeavesTheConfidenceToTheLaterSources)
{
  Estimate expected = estimate();
  driftToNeutral(expected, neverHeard);
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), StartsWith("State updated with:\n\t - NO FACIAL POINTS IN MEMORY\nNo valence observations\n"));

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateByFacialPoints, PullsTowardsTheirConfidenceTimesTheWeightOfTheYoungest)
{
  remember(milliseconds(3000 - 400), 0.75f);

  const float weight = softStep(inSeconds(milliseconds(2600)), 3.f);
  expectPulledTowards(((weight * 0.75f) / weight) * weight);
}

TEST_F(UpdateByFacialPoints, CountsHalfAtThreeSeconds)
{
  remember(milliseconds(3000), 0.75f);
  update();

  // 1e-6f: single precision; the age 3.0000002 is past the half by 8e-8
  const float pulled = 0.8f + 0.7f * (0.5f * 0.75f - 0.8f);
  EXPECT_NEAR(pulled * 0.3f, state.valence.confidence, 1e-6f);
}

TEST_F(UpdateByFacialPoints, MeansAllOfThemByAgeNewestFirst)
{
  remember(milliseconds(6900), 1.f);
  remember(milliseconds(123), 0.25f);
  remember(milliseconds(2500), 0.875f);

  const float w0 = softStep(inSeconds(milliseconds(123)), 3.f);
  const float w1 = softStep(inSeconds(milliseconds(2500)), 3.f);
  const float w2 = softStep(inSeconds(milliseconds(6900)), 3.f);
  float confidenceSum = w0 * 0.25f;
  confidenceSum += w1 * 0.875f;
  confidenceSum += w2 * 1.f;
  float weightSum = w0;
  weightSum += w1;
  weightSum += w2;
  expectPulledTowards((confidenceSum / weightSum) * w0);
}

TEST_F(UpdateByFacialPoints, ReportsConfidenceAndWeight)
{
  remember(milliseconds(-5000), 0.75f);
  EXPECT_THAT(update(), StartsWith("State updated with:\n\t - Confidence: 0.75 with weight 1\nNo valence"));
}

TEST_F(UpdateByFacialPoints, TruncatesTheirAgeToWholeMilliseconds)
{
  memories().facialPointsMemory.record(
      {support::start - milliseconds(2600) - support::nanoseconds(999999), facialPoints(0.75f)});

  const float weight = softStep(inSeconds(milliseconds(2600)), 3.f);
  expectPulledTowards(((weight * 0.75f) / weight) * weight);
}

TEST_F(UpdateByFacialPoints, ForgetsThoseOlderThanTheirHorizon)
{
  remember(milliseconds(0), 0.75f);
  clock.advance(milliseconds(7001));
  EXPECT_THAT(update(), HasSubstr("NO FACIAL POINTS"));
}

TEST_F(UpdateByFacialPoints, KeepsThoseExactlyAsOldAsTheirHorizon)
{
  remember(milliseconds(0), 0.75f);
  clock.advance(milliseconds(7000));
  EXPECT_THAT(update(), Not(HasSubstr("NO FACIAL POINTS")));
}

TEST_F(UpdateByFacialPoints, HoldsANegativeConfidenceAtZero)
{
  remember(milliseconds(-5000), -0.5f);
  const std::string trace = update();
  EXPECT_THAT(trace, HasSubstr("\t - Confidence: 0 with weight 1\n"));
}

TEST_F(UpdateByFacialPoints, DropsTheValenceConfidenceToZeroForANanConfidence)
{
  remember(milliseconds(0), nan);
  memories().touchEmotionMemory.record(fresh(1));
  Estimate expected = estimate();
  expected.valenceConfidence = 0.f;
  expected.unsmoothedConfidence = 0.f;
  limitValence(expected);

  EXPECT_THAT(update(), HasSubstr("\t - Confidence: nan with weight 0.997661\n"));

  EXPECT_EQ(expected.valenceConfidence, state.valence.confidence);
  EXPECT_EQ(expected.unsmoothedConfidence, state.unsmoothedValence.confidence);
}

// Speaking

/// The speaking memory, newest first, and the age of the reading that counts.
struct SpeakingCase
{
  const char* name;
  std::vector<std::pair<int, bool>> ageAndFlag;
  int countingAge;  // -1: no reading counts
};
class UpdateBySpeaking : public support::StateUpdateTestWithParam<SpeakingCase>
{};

constexpr int none = -1;

TEST_P(UpdateBySpeaking, LowersTheConfidenceByTheFirstReadingThatCounts)
{
  for (const auto& [age, flag] : GetParam().ageAndFlag)
    memories().speakingMemory.record(aged(milliseconds(age), flag));
  Estimate expected = estimate();
  if (GetParam().countingAge != none)
    expected.pullValenceConfidence(0.f, 0.5f * softStep(inSeconds(milliseconds(GetParam().countingAge)), 2.f));
  driftToNeutral(expected, neverHeard);
  loseAttention(expected, neverHeard);

  update();

  EXPECT_EQ(expected, estimate());
}

TEST_P(UpdateBySpeaking, KeepsTheExpressionsFromActing)
{
  for (const auto& [age, flag] : GetParam().ageAndFlag)
    memories().speakingMemory.record(aged(milliseconds(age), flag));
  observation.expressions = fresh(KV::Expressions());

  const bool expressionsActed = update().find("No valence observations") == std::string::npos;

  EXPECT_EQ(GetParam().countingAge == none, expressionsActed);
}

INSTANTIATE_TEST_SUITE_P(
    InTheMemory, UpdateBySpeaking,
    ::testing::Values(SpeakingCase{"Now", {{0, true}}, 0}, SpeakingCase{"HalfASecondAgo", {{500, true}}, 500},
                      SpeakingCase{"TwoSecondsAgo", {{2000, true}}, 2000},
                      SpeakingCase{"JustBeforeFourSeconds", {{3999, true}}, 3999},
                      SpeakingCase{"FourSecondsAgoIsTooOld", {{4000, true}}, none},
                      SpeakingCase{"FiveSecondsAgoIsTooOld", {{5000, true}}, none},
                      SpeakingCase{"InTheFuture", {{-500, true}}, -500}, SpeakingCase{"Silent", {{0, false}}, none},
                      SpeakingCase{"SilentAfterSpeaking", {{0, false}, {700, true}}, 700},
                      SpeakingCase{"OnlyTheNewestCounts", {{300, true}, {1500, true}, {2500, true}}, 300},
                      SpeakingCase{"SilentAfterSpeakingLongAgo", {{0, false}, {4500, true}}, none}),
    support::RowName());

class UpdateBySpeech : public support::StateUpdateTest
{};

TEST_F(UpdateBySpeech, LosesAboutHalfTheConfidenceToSpeechHalfASecondAgo)
{
  memories().speakingMemory.record(aged(milliseconds(500), true));
  update();

  // 0.5 x 0.98305 is the weight, and 0.3 the rest after silence; 1e-6f: single precision
  EXPECT_NEAR(0.8f * (1.f - 0.491526287f) * 0.3f, state.valence.confidence, 1e-6f);
}

TEST_F(UpdateBySpeech, ActsAfterTheFacialPoints)
{
  memories().speakingMemory.record(fresh(true));
  memories().facialPointsMemory.record(aged(milliseconds(-5000), facialPoints(1.f)));
  Estimate expected = estimate();
  expected.pullValenceConfidence(1.f, 0.7f);
  expected.pullValenceConfidence(0.f, 0.5f * softStep(0.f, 2.f));
  driftToNeutral(expected, neverHeard);
  loseAttention(expected, neverHeard);

  update();

  EXPECT_EQ(expected, estimate());
}

}  // namespace
