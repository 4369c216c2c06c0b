#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/classification/linregmoodscore.hpp>
#include <skeigiot/classification/moodclass.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

using KV::classification::Coefficient;
using KV::classification::LinregMoodScore;
using KV::classification::MoodClass;

constexpr float infinity = std::numeric_limits<float>::infinity();

/// The score of the features for a class that is not used.
float scoreOf(const LinregMoodScore& score, const std::vector<float>& features)
{
  return score.calculateScore(MoodClass("any", 0, score), features);
}

TEST(LinregMoodScore, WeighsEveryFeatureByOneWhenGivenTheirNumber)
{
  EXPECT_EQ(1.5f, scoreOf(LinregMoodScore(4, 2.f), {1.f, 1.f, 1.f, 1.f}));
  EXPECT_EQ(4.f, scoreOf(LinregMoodScore(2, 0.f), {3.f, 5.f}));
}

TEST(LinregMoodScore, WeighsTheFeaturesInTheirOrder)
{
  EXPECT_EQ((1.f * 2.f - 3.f * 4.f + 0.5f * 8.f + 6.f) / 3.f,
            scoreOf(LinregMoodScore(Coefficient({1.f, -3.f, 0.5f}, 6.f)), {2.f, 4.f, 8.f}));
}

TEST(LinregMoodScore, SumsInSinglePrecisionFromTheFirstFeature)
{
  const LinregMoodScore score(3, 0.f);

  EXPECT_EQ(0.f, scoreOf(score, {16777216.f, 1.f, -16777216.f}));
  EXPECT_EQ(1.f / 3.f, scoreOf(score, {16777216.f, -16777216.f, 1.f}));
}

TEST(LinregMoodScore, AddsTheInterceptAfterTheSum)
{
  EXPECT_EQ(0.5f, scoreOf(LinregMoodScore(2, 1.f), {16777216.f, -16777216.f}));
}

TEST(LinregMoodScore, DividesTheInterceptToo)
{
  EXPECT_EQ(2.f, scoreOf(LinregMoodScore(5, 10.f), {0.f, 0.f, 0.f, 0.f, 0.f}));
}

TEST(LinregMoodScore, DividesByZeroWithoutFeatures)
{
  EXPECT_EQ(infinity, scoreOf(LinregMoodScore(0, 1.f), {}));
  EXPECT_EQ(-infinity, scoreOf(LinregMoodScore(0, -1.f), {}));
  EXPECT_TRUE(std::isnan(scoreOf(LinregMoodScore(0, 0.f), {})));
}

TEST(LinregMoodScore, LetsNanAndInfinityThrough)
{
  EXPECT_TRUE(std::isnan(scoreOf(LinregMoodScore(2, 0.f), {1.f, std::nanf("")})));
  EXPECT_EQ(infinity, scoreOf(LinregMoodScore(2, 0.f), {1.f, infinity}));
  EXPECT_EQ(-infinity, scoreOf(LinregMoodScore(2, 0.f), {1.f, -infinity}));
}

TEST(LinregMoodScore, RefusesAnotherNumberOfFeatures)
{
  for (const std::vector<float>& features : {std::vector<float>(4, 1.f), std::vector<float>(6, 1.f), {}})
    EXPECT_EQ("Z vector size does not match the feature size",
              support::textThrownBy<std::runtime_error>([&] { scoreOf(LinregMoodScore(5, 1.f), features); }))
        << features.size() << " features";
}

TEST(LinregMoodScore, RefusesFeaturesWhenItHasNoWeights)
{
  EXPECT_EQ("Z vector size does not match the feature size",
            support::textThrownBy<std::runtime_error>([] { scoreOf(LinregMoodScore(0, 1.f), {1.f}); }));
}

TEST(LinregMoodScore, CannotHaveLessThanNoWeights)
{
  EXPECT_THROW(LinregMoodScore(-1, 0.f), std::length_error);
  EXPECT_THROW(LinregMoodScore(std::numeric_limits<int>::min(), 0.f), std::length_error);
}

TEST(LinregMoodScore, KeepsACopyOfTheCoefficient)
{
  Coefficient coefficient({1.f}, 1.f);
  const LinregMoodScore score(coefficient);

  coefficient.weights = {5.f, 5.f};
  coefficient.intercept = 5.f;

  EXPECT_EQ(3.f, scoreOf(score, {2.f}));
}

TEST(LinregMoodScore, DoesNotReadTheClass)
{
  const LinregMoodScore score(1, 1.f);
  MoodClass odd("odd", -99, score);
  odd.score = std::nanf("");

  EXPECT_EQ(3.f, score.calculateScore(odd, {2.f}));
}

std::vector<float> narrowed(const std::vector<double>& numbers)
{
  std::vector<float> result;
  for (const double number : numbers)
    result.push_back(static_cast<float>(number));
  return result;
}

TEST(LinregMoodScoreCoefficients, OfThePositiveClassAreTheFittedOnes)
{
  const Coefficient& set = LinregMoodScore::COEFFICIENT_POS();

  EXPECT_EQ(narrowed({0.347842195293, -0.426107582215, 0.530306722283, -0.298138523784, -0.253809017785}), set.weights);
  EXPECT_EQ(0.35163465f, set.intercept);
}

TEST(LinregMoodScoreCoefficients, OfTheNeutralClassAreTheFittedOnes)
{
  const Coefficient& set = LinregMoodScore::COEFFICIENT_NEU();

  EXPECT_EQ(narrowed({0.0808290898056, 0.891293775228, -0.491957517638, -0.425402390317, -0.111974310571}),
            set.weights);
  EXPECT_EQ(0.3218228f, set.intercept);
}

TEST(LinregMoodScoreCoefficients, OfTheNegativeClassAreTheFittedOnes)
{
  const Coefficient& set = LinregMoodScore::COEFFICIENT_NEG();

  EXPECT_EQ(narrowed({-0.561094814733, -0.328849006716, 0.0550064449134, 0.777949578444, 0.281221762619}), set.weights);
  EXPECT_EQ(0.3727249f, set.intercept);
}

TEST(LinregMoodScoreCoefficients, AreOneObjectForAllCallersAndThreads)
{
  const Coefficient* fromThread = nullptr;
  std::thread other([&fromThread] { fromThread = &LinregMoodScore::COEFFICIENT_POS(); });
  other.join();

  EXPECT_EQ(fromThread, &LinregMoodScore::COEFFICIENT_POS());
  EXPECT_EQ(&LinregMoodScore::COEFFICIENT_NEU(), &LinregMoodScore::COEFFICIENT_NEU());
  EXPECT_EQ(&LinregMoodScore::COEFFICIENT_NEG(), &LinregMoodScore::COEFFICIENT_NEG());
}

}  // namespace
