#include <skeigiot/verdict.hpp>

#include "personstateprivate.hpp"

#include "support/restoredboundaries.hpp"
#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::PersonState;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// Valences with their confidences, and the word for them.
struct VerdictCase
{
  const char* name;
  std::vector<std::pair<float, float>> states;
  const char* word;
};
class VerdictWord : public ::testing::TestWithParam<VerdictCase>
{};

TEST_P(VerdictWord, SumsTheStatesUp)
{
  KV::Verdict verdict;
  for (const auto& [valence, confidence] : GetParam().states)
    verdict.add(PersonState(valence, confidence, 1.f, 1.f));
  EXPECT_EQ(GetParam().word, verdict.word());
}

INSTANTIATE_TEST_SUITE_P(OfNoState, VerdictWord, ::testing::Values(VerdictCase{"IsNeutral", {}, "neutral"}),
                         support::RowName());

// A confidence of 0.5 weighs without rounding.
INSTANTIATE_TEST_SUITE_P(
    OfOneState, VerdictWord,
    ::testing::Values(VerdictCase{"WellAbove", {{1.f, 0.5f}}, "positive"},
                      VerdictCase{"JustAboveThePositiveBoundary", {{std::nextafter(0.2f, 1.f), 0.5f}}, "positive"},
                      VerdictCase{"AtThePositiveBoundary", {{0.2f, 0.5f}}, "neutral"},
                      VerdictCase{"Zero", {{0.f, 0.5f}}, "neutral"},
                      VerdictCase{"AtTheNegativeBoundary", {{-0.2f, 0.5f}}, "neutral"},
                      VerdictCase{"JustBelowTheNegativeBoundary", {{std::nextafter(-0.2f, -1.f), 0.5f}}, "negative"},
                      VerdictCase{"WellBelow", {{-1.f, 0.5f}}, "negative"},
                      VerdictCase{"JustConfidentEnough", {{1.f, 0.4f}}, "positive"},
                      VerdictCase{"JustNotConfidentEnough", {{1.f, std::nextafter(0.4f, 0.f)}}, "unknown"},
                      VerdictCase{"WithoutConfidence", {{1.f, 0.f}}, "unknown"},
                      VerdictCase{"NanValenceCountsAsZero", {{nan, 1.f}}, "neutral"},
                      VerdictCase{"NanConfidenceCountsAsZero", {{1.f, nan}}, "unknown"}),
    support::RowName());

INSTANTIATE_TEST_SUITE_P(
    OfSeveralStates, VerdictWord,
    ::testing::Values(VerdictCase{"MeanConfidenceTooLow", {{1.f, 0.5f}, {1.f, 0.25f}}, "unknown"},
                      VerdictCase{"MeanConfidenceHighEnough", {{1.f, 0.625f}, {1.f, 0.25f}}, "positive"},
                      VerdictCase{"ConfidencesAreNotSummed", {{1.f, 0.25f}, {1.f, 0.25f}, {1.f, 0.25f}}, "unknown"},
                      VerdictCase{"TheMoreConfidentOnesWeighMore", {{1.f, 1.f}, {-1.f, 0.25f}}, "positive"},
                      VerdictCase{"TheLessConfidentOnesWeighLess", {{1.f, 0.25f}, {-1.f, 1.f}}, "negative"},
                      VerdictCase{"TheyCancelOut", {{1.f, 0.5f}, {-1.f, 0.5f}}, "neutral"},
                      VerdictCase{"OneWithoutConfidenceWeighsNothing", {{0.5f, 1.f}, {-1.f, 0.f}}, "positive"},
                      VerdictCase{"DividedByConfidenceAndNotByCount", {{0.25f, 0.5f}, {0.25f, 0.5f}}, "positive"},
                      VerdictCase{"NotTheSum", {{0.125f, 1.f}, {0.125f, 1.f}, {0.125f, 1.f}}, "neutral"},
                      VerdictCase{"NotTheLast", {{-1.f, 1.f}, {-1.f, 1.f}, {1.f, 1.f}}, "negative"}),
    support::RowName());

TEST(Verdict, GoesByTheBoundariesAsTheyAreWhenAsked)
{
  const support::RestoredBoundaries restored;
  KV::Verdict verdict;
  verdict.add(PersonState(0.5f, 0.5f, 0.f, 0.f));
  EXPECT_EQ("positive", verdict.word());

  PersonState::setBinaryBoundaryPositive(0.75f);
  EXPECT_EQ("neutral", verdict.word());
  PersonState::setBinaryBoundaryNegative(0.625f);
  EXPECT_EQ("negative", verdict.word());
  PersonState::setBinaryBoundaryConfidence(0.75f);
  EXPECT_EQ("unknown", verdict.word());
}

TEST(Verdict, AsksThePositiveBoundaryBeforeTheNegativeOne)
{
  const support::RestoredBoundaries restored;
  PersonState::setBinaryBoundaryNegative(0.75f);
  KV::Verdict verdict;
  verdict.add(PersonState(0.5f, 0.5f, 0.f, 0.f));
  EXPECT_EQ("positive", verdict.word());
}

TEST(Verdict, TakesEachStateAsItIsWhenAdded)
{
  PersonState state(1.f, 1.f, 0.f, 0.f);
  KV::Verdict verdict;
  verdict.add(state);
  state._setValence(-1.f);
  EXPECT_EQ("positive", verdict.word());
}

TEST(Verdict, MayBeAskedOnTheWay)
{
  KV::Verdict verdict;
  EXPECT_EQ("neutral", verdict.word());
  verdict.add(PersonState(1.f, 1.f, 0.f, 0.f));
  EXPECT_EQ("positive", verdict.word());
  verdict.add(PersonState(-1.f, 1.f, 0.f, 0.f));
  EXPECT_EQ("neutral", verdict.word());
  verdict.add(PersonState(-1.f, 1.f, 0.f, 0.f));
  EXPECT_EQ("negative", verdict.word());
}

}  // namespace
