#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/classification/linregmoodscore.hpp>
#include <skeigiot/classification/logregmoodscore.hpp>
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
using KV::classification::LogregMoodScore;
using KV::classification::MoodClass;

constexpr float infinity = std::numeric_limits<float>::infinity();

/// The score of the features for a class that is not used.
float scoreOf(const LogregMoodScore& score, const std::vector<float>& features)
{
  return score.calculateScore(MoodClass("any", 0, score), features);
}

/// The score of a single feature of weight 1 without an intercept.
float logistic(float x)
{
  return scoreOf(LogregMoodScore(1, 0.f), {x});
}

TEST(LogregMoodScore, IsOneHalfForAllFeaturesOfWeightZero)
{
  const LogregMoodScore score(Coefficient({0.f, 0.f, 0.f, 0.f, 0.f}, 0.f));

  EXPECT_EQ(0.5f, scoreOf(score, {1.f, -2.f, 3.f, -400.f, 5e30f}));
  EXPECT_EQ(0.5f, scoreOf(score, {0.f, 0.f, 0.f, 0.f, 0.f}));
}

struct LogisticCase
{
  const char* name;
  float x;
  float score;
};

class LogregMoodScoreCurve : public ::testing::TestWithParam<LogisticCase>
{};

TEST_P(LogregMoodScoreCurve, RisesFromZeroToOne)
{
  EXPECT_EQ(GetParam().score, logistic(GetParam().x));
}

INSTANTIATE_TEST_SUITE_P(
    Points, LogregMoodScoreCurve,
    ::testing::Values(LogisticCase{"Zero", 0.f, 0.5f}, LogisticCase{"One", 1.f, 1.f / (std::exp(-1.f) + 1.f)},
                      LogisticCase{"MinusOne", -1.f, 1.f / (std::exp(1.f) + 1.f)},
                      LogisticCase{"MinusTwo", -2.f, 1.f / (std::exp(2.f) + 1.f)},
                      LogisticCase{"FarUpIsRoundedToOne", 200.f, 1.f}, LogisticCase{"FarDownIsZero", -200.f, 0.f},
                      LogisticCase{"Infinity", infinity, 1.f}, LogisticCase{"MinusInfinity", -infinity, 0.f}),
    support::RowName());

TEST(LogregMoodScore, IsThreeQuartersAtTheLogarithmOfThree)
{
  EXPECT_NEAR(0.75f, logistic(std::log(3.f)), 1e-6f);  // single precision, three operations
  EXPECT_NEAR(0.25f, logistic(-std::log(3.f)), 1e-6f);
}

TEST(LogregMoodScore, WeighsEveryFeatureByOneWhenGivenTheirNumber)
{
  EXPECT_EQ(1.f / (std::exp(-0.75f) + 1.f), scoreOf(LogregMoodScore(2, 0.25f), {1.f, -0.5f}));
}

TEST(LogregMoodScore, WeighsTheFeaturesInTheirOrder)
{
  EXPECT_EQ(1.f / (std::exp(-1.5f) + 1.f),
            scoreOf(LogregMoodScore(Coefficient({1.f, -2.f, 0.5f}, 0.5f)), {2.f, 1.5f, 4.f}));
}

TEST(LogregMoodScore, SumsInSinglePrecisionFromTheFirstFeature)
{
  const LogregMoodScore score(3, 0.f);

  EXPECT_EQ(0.5f, scoreOf(score, {16777216.f, 1.f, -16777216.f}));
  EXPECT_EQ(1.f / (std::exp(-1.f) + 1.f), scoreOf(score, {16777216.f, -16777216.f, 1.f}));
}

TEST(LogregMoodScore, AddsTheInterceptAfterTheSum)
{
  EXPECT_EQ(1.f / (std::exp(-1.f) + 1.f), scoreOf(LogregMoodScore(2, 1.f), {16777216.f, -16777216.f}));
}

TEST(LogregMoodScore, IsTheLogisticOfTheInterceptWithoutFeatures)
{
  EXPECT_EQ(1.f / (std::exp(-2.f) + 1.f), scoreOf(LogregMoodScore(0, 2.f), {}));
}

TEST(LogregMoodScore, LetsNanThrough)
{
  EXPECT_TRUE(std::isnan(logistic(std::nanf(""))));
}

TEST(LogregMoodScore, RefusesAnotherNumberOfFeatures)
{
  for (const std::vector<float>& features : {std::vector<float>(4, 1.f), std::vector<float>(6, 1.f), {}})
    EXPECT_EQ("Z vector size does not match the feature size",
              support::textThrownBy<std::runtime_error>([&] { scoreOf(LogregMoodScore(5, 1.f), features); }))
        << features.size() << " features";
}

TEST(LogregMoodScore, CannotHaveLessThanNoWeights)
{
  EXPECT_THROW(LogregMoodScore(-1, 0.f), std::length_error);
  EXPECT_THROW(LogregMoodScore(std::numeric_limits<int>::min(), 0.f), std::length_error);
}

TEST(LogregMoodScore, ReplacesWeightsAndIntercept)
{
  LogregMoodScore score(3, 9.f);

  score.setWeights({2.f, -1.f}, 0.5f);

  EXPECT_EQ(1.f / (std::exp(-1.5f) + 1.f), scoreOf(score, {1.f, 1.f}));
  EXPECT_THROW(scoreOf(score, {1.f, 1.f, 1.f}), std::runtime_error);
}

TEST(LogregMoodScore, KeepsCopiesOfWhatItIsGiven)
{
  Coefficient coefficient({1.f}, 0.f);
  LogregMoodScore constructed(coefficient);
  LogregMoodScore set(0, 0.f);
  set.setWeights(coefficient.weights, 0.f);

  coefficient.weights = {5.f, 5.f};
  coefficient.intercept = 5.f;

  EXPECT_EQ(0.5f, scoreOf(constructed, {0.f}));
  EXPECT_EQ(0.5f, scoreOf(set, {0.f}));
}

TEST(LogregMoodScore, DoesNotReadTheClass)
{
  const LogregMoodScore score(1, 0.f);
  MoodClass odd("odd", -99, score);
  odd.score = std::nanf("");

  EXPECT_EQ(0.5f, score.calculateScore(odd, {0.f}));
}

std::vector<float> narrowed(const std::vector<double>& numbers)
{
  std::vector<float> result;
  for (const double number : numbers)
    result.push_back(static_cast<float>(number));
  return result;
}

TEST(LogregMoodScoreCoefficients, OfThePositiveClassAreTheFittedOnes)
{
  const Coefficient& set = LogregMoodScore::COEFFICIENT_POS();

  EXPECT_EQ(narrowed({2.38828954219, -3.15291359475, 6.85025791269, -1.41616331546, -0.395405045619}), set.weights);
  EXPECT_EQ(-0.9510546f, set.intercept);
}

TEST(LogregMoodScoreCoefficients, OfTheNeutralClassAreTheFittedOnes)
{
  const Coefficient& set = LogregMoodScore::COEFFICIENT_NEU();

  EXPECT_EQ(narrowed({2.939970882, 5.47256141157, -6.78930233561, -1.49980029085, -1.0211854597}), set.weights);
  EXPECT_EQ(-0.86178476f, set.intercept);
}

TEST(LogregMoodScoreCoefficients, OfTheNegativeClassAreTheFittedOnes)
{
  const Coefficient& set = LogregMoodScore::COEFFICIENT_NEG();

  EXPECT_EQ(narrowed({-5.80814485571, -4.06000541074, -3.21490518458, 2.53144329703, 1.6637735194}), set.weights);
  EXPECT_EQ(-0.50614434f, set.intercept);
}

TEST(LogregMoodScoreCoefficients, AreOneObjectForAllCallersAndThreads)
{
  const Coefficient* fromThread = nullptr;
  std::thread other([&fromThread] { fromThread = &LogregMoodScore::COEFFICIENT_POS(); });
  other.join();

  EXPECT_EQ(fromThread, &LogregMoodScore::COEFFICIENT_POS());
  EXPECT_EQ(&LogregMoodScore::COEFFICIENT_NEU(), &LogregMoodScore::COEFFICIENT_NEU());
  EXPECT_EQ(&LogregMoodScore::COEFFICIENT_NEG(), &LogregMoodScore::COEFFICIENT_NEG());
}

TEST(LogregMoodScoreCoefficients, AreNotThoseOfTheLinearScore)
{
  using KV::classification::LinregMoodScore;

  EXPECT_NE(&LinregMoodScore::COEFFICIENT_POS(), &LogregMoodScore::COEFFICIENT_POS());
  EXPECT_NE(LinregMoodScore::COEFFICIENT_POS().weights, LogregMoodScore::COEFFICIENT_POS().weights);
}

TEST(LogregMoodScore, MayBeUsedByManyThreadsAtOnce)
{
  constexpr int threadCount = 4;
  const LogregMoodScore score(LogregMoodScore::COEFFICIENT_NEU());
  const std::vector<float> features{0.1f, 0.2f, 0.3f, 0.4f, 0.5f};
  std::vector<float> results(threadCount);

  std::vector<std::thread> threads;
  for (float& result : results)
    threads.emplace_back([&] {
      for (int i = 0; i < 100; ++i)
        result = scoreOf(score, features);
    });
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(std::vector<float>(threadCount, scoreOf(score, features)), results);
}

}  // namespace
