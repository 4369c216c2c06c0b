#include "support/stateupdatetest.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

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
using ::testing::HasSubstr;
using ::testing::Not;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

struct Face
{
  KV::Smile smile;
  float calm = 0.f;
  float joy = 0.f;
  float anger = 0.f;
  float sorrow = 0.f;
};

KV::Expressions expressionsOf(const Face& face)
{
  // Confidences that would change the result if they counted.
  KV::Expressions expressions;
  expressions.calm = {face.calm, 0.9f};
  expressions.anger = {face.anger, 0.8f};
  expressions.joy = {face.joy, 0.7f};
  expressions.sorrow = {face.sorrow, 0.6f};
  expressions.laughter = {5.f, 0.5f};
  expressions.excitement = {6.f, 0.4f};
  expressions.surprise = {7.f, 0.3f};
  return expressions;
}

// The mood class that wins

struct FaceCase
{
  const char* name;
  Face face;
  float winner;
};
class UpdateByFace : public support::StateUpdateTestWithParam<FaceCase>
{};

TEST_P(UpdateByFace, PullsTheValenceToTheClassThatWins)
{
  state.smile = GetParam().face.smile;
  observation.expressions = fresh(expressionsOf(GetParam().face));
  Estimate expected = estimate();
  expected.pullValence(GetParam().winner, 0.65f);
  limitValence(expected);
  loseAttention(expected, neverHeard);

  update();

  EXPECT_EQ(expected, estimate());
}

TEST_P(UpdateByFace, TakesNoPartWhileThePersonSpeaks)
{
  state.smile = GetParam().face.smile;
  observation.expressions = fresh(expressionsOf(GetParam().face));
  memories().speakingMemory.record(fresh(true));
  Estimate expected = estimate();
  expected.pullValenceConfidence(0.f, 0.5f * softStep(0.f, 2.f));
  driftToNeutral(expected, 0.f);  // the expressions are of the present time
  loseAttention(expected, neverHeard);

  update();

  EXPECT_EQ(expected, estimate());
}

// Scores before the logistic step, of positive, neutral and negative:
//   -0.951 +2.388 smile -3.153 calm +6.850 joy -1.416 anger -0.395 sorrow
//   -0.862 +2.940 smile +5.473 calm -6.789 joy -1.500 anger -1.021 sorrow
//   -0.506 -5.808 smile -4.060 calm -3.215 joy +2.531 anger +1.664 sorrow
INSTANTIATE_TEST_SUITE_P(OfOneKind, UpdateByFace,
                         ::testing::Values(FaceCase{"Nothing", {}, -1.f}, FaceCase{"Smile", {{1.f, 1.f}}, 0.f},
                                           FaceCase{"Calm", {{}, 1.f}, 0.f}, FaceCase{"Joy", {{}, 0.f, 1.f}, 1.f},
                                           FaceCase{"Anger", {{}, 0.f, 0.f, 1.f}, -1.f},
                                           FaceCase{"Sorrow", {{}, 0.f, 0.f, 0.f, 1.f}, -1.f}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(OfSeveralKinds, UpdateByFace,
                         ::testing::Values(FaceCase{"SlightCalmIsNeutral", {{}, 0.2f}, 0.f},
                                           FaceCase{"SlightCalmWithAngerIsNegative", {{}, 0.2f, 0.f, 1.f}, -1.f},
                                           FaceCase{"SlightCalmWithSorrowIsNegative", {{}, 0.2f, 0.f, 0.f, 1.f}, -1.f},
                                           FaceCase{"AsMuchJoyAsCalmIsPositive", {{}, 0.6f, 0.6f, 0.f, 0.f}, 1.f},
                                           FaceCase{"HalfAsMuchJoyAsCalmIsNeutral", {{}, 0.8f, 0.4f, 0.f, 0.f}, 0.f},
                                           FaceCase{"JoyWithASmileIsPositive", {{1.f, 1.f}, 0.f, 0.5f}, 1.f}),
                         support::RowName());

// From a product of 0.0407 on neutral is above negative.
INSTANTIATE_TEST_SUITE_P(SmilingOnly, UpdateByFace,
                         ::testing::Values(FaceCase{"ASmileWithoutConfidenceIsNone", {{1.f, 0.f}}, -1.f},
                                           FaceCase{"AConfidenceWithoutSmileIsNone", {{0.f, 1.f}}, -1.f},
                                           FaceCase{"ValueTimesConfidenceTooLittle", {{0.2f, 0.2f}}, -1.f},
                                           FaceCase{"ValueTimesConfidenceEnough", {{0.2f, 0.21f}}, 0.f}),
                         support::RowName());

class UpdateByFaceCharacteristics : public support::StateUpdateTest
{
protected:
  /// Expects one update to lower the valence confidence by half, and to find no source of valence.
  void expectNoWinner()
  {
    Estimate expected = estimate();
    expected.pullValenceConfidence(0.f, 0.5f);
    driftToNeutral(expected, 0.f);
    loseAttention(expected, neverHeard);

    EXPECT_THAT(update(), HasSubstr("No valence observations\nforce: 0\n"));

    EXPECT_EQ(expected, estimate());
  }
};

TEST_F(UpdateByFaceCharacteristics, LowerTheConfidenceWhenTwoClassesTie)
{
  // Positive and neutral are both 1 to the last bit.
  state.smile = KV::Smile(20.f, 1.f);
  observation.expressions = fresh(KV::Expressions());
  expectNoWinner();
}

TEST_F(UpdateByFaceCharacteristics, LowerTheConfidenceForANan)
{
  observation.expressions = fresh(expressionsOf({{}, 0.f, nan}));
  expectNoWinner();
}

TEST_F(UpdateByFaceCharacteristics, CountTheNewSmileOfTheSameObservation)
{
  observation.expressions = fresh(KV::Expressions());
  observation.smile = fresh(KV::Smile(1.f, 1.f));
  Estimate expected = estimate();
  expected.pullValence(0.f, 0.65f);  // neutral; negative without the smile
  limitValence(expected);
  loseAttention(expected, neverHeard);

  update();

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateByFaceCharacteristics, AreClassifiedOncePerTimeStamp)
{
  observation.expressions = fresh(expressionsOf({{}, 0.f, 1.f}));
  update();
  Estimate expected = estimate();
  driftToNeutral(expected, 0.f);
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), HasSubstr("No valence observations"));

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateByFaceCharacteristics, AreClassifiedAgainWithANewTimeStamp)
{
  observation.expressions = fresh(expressionsOf({{}, 0.f, 1.f}));
  update();
  clock.advance(milliseconds(100));
  observation.expressions->time = support::start + milliseconds(100);

  EXPECT_THAT(update(), Not(HasSubstr("No valence observations")));
}

TEST_F(UpdateByFaceCharacteristics, ActAfterSpeechThatIsFourSecondsOld)
{
  observation.expressions = fresh(expressionsOf({{}, 0.f, 1.f}));
  memories().speakingMemory.record(aged(milliseconds(4000), true));
  EXPECT_THAT(update(), Not(HasSubstr("No valence observations")));
}

// Smile

class UpdateBySmile : public support::StateUpdateTest
{
protected:
  void speak() { memories().speakingMemory.record(aged(milliseconds(500), true)); }

  static void lowerBySpeaking(Estimate& expected)
  {
    expected.pullValenceConfidence(0.f, 0.5f * softStep(inSeconds(milliseconds(500)), 2.f));
  }
};

TEST_F(UpdateBySmile, PullsTheValenceWhileThePersonSpeaks)
{
  speak();
  observation.smile = fresh(KV::Smile(0.9f, 0.77f));
  Estimate expected = estimate();
  lowerBySpeaking(expected);
  expected.pullValence(0.9f, 0.77f * 0.65f);
  limitValence(expected);
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), Not(HasSubstr("No valence observations")));

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateBySmile, ReplacesTheExpressionsWhileThePersonSpeaks)
{
  speak();
  observation.smile = fresh(KV::Smile(0.9f, 0.77f));
  observation.expressions = fresh(expressionsOf({{}, 0.f, 0.f, 1.f}));
  Estimate expected = estimate();
  lowerBySpeaking(expected);
  expected.pullValence(0.9f, 0.77f * 0.65f);
  limitValence(expected);
  loseAttention(expected, neverHeard);

  update();

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateBySmile, CountsAsAnObservationEvenWithoutConfidence)
{
  speak();
  observation.smile = fresh(KV::Smile(1.f, 0.f));
  Estimate expected = estimate();
  lowerBySpeaking(expected);
  limitValence(expected);
  loseAttention(expected, neverHeard);

  update();

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateBySmile, ActsOncePerTimeStamp)
{
  speak();
  observation.smile = fresh(KV::Smile(1.f, 1.f));
  update();
  EXPECT_THAT(update(), HasSubstr("No valence observations"));
}

TEST_F(UpdateBySmile, MovesNothingOfASilentPersonButWhatSilenceDoes)
{
  observation.smile = fresh(KV::Smile(1.f, 1.f));
  Estimate expected = estimate();
  driftToNeutral(expected, 0.f);
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), HasSubstr("No valence observations\nforce: 0\n"));

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateBySmile, OfASilentPersonLeavesTheWordToTheSourcesThatFollow)
{
  observation.smile = fresh(KV::Smile(1.f, 1.f));
  memories().touchEmotionMemory.record(fresh(1));
  Estimate expected = estimate();
  expected.pullValence(1.f, softStep(0.f, 4.f) * 0.65f);
  limitValence(expected);
  loseAttention(expected, neverHeard);

  EXPECT_THAT(update(), Not(HasSubstr("No valence observations")));

  EXPECT_EQ(expected, estimate());
}

TEST_F(UpdateBySmile, MovesNothingWhileThePersonSpeaksWithoutANewOne)
{
  speak();
  state.smile = KV::Smile(1.f, 1.f);
  EXPECT_THAT(update(), HasSubstr("No valence observations"));
}

}  // namespace
