#include "actionunits.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <ostream>

namespace
{
constexpr float fullScale = 5.f;
constexpr float confidence = 0.9f;

// All used action units, 0 but for these.
tools::ActionUnits faceWith(const std::map<int, double>& intensities)
{
  tools::ActionUnits units;
  for (std::size_t i = 0; i < tools::usedActionUnits.size(); ++i)
  {
    const auto found = intensities.find(tools::usedActionUnits.at(i));
    units.set(i, found == intensities.end() ? 0.0 : found->second, fullScale);
  }
  return units;
}

KV::Expressions expressionsWith(const std::map<int, double>& intensities)
{
  return tools::expressionsOf(faceWith(intensities), confidence).value();
}

TEST(ActionUnits, ArePartsOfTheFullScale)
{
  EXPECT_FLOAT_EQ(0.5f, faceWith({{12, 2.5}}).mean({12}));
  EXPECT_FLOAT_EQ(1.f, faceWith({{12, 5.0}}).mean({12}));
}

TEST(ActionUnits, StayWithinZeroAndOne)
{
  EXPECT_FLOAT_EQ(1.f, faceWith({{12, 5.5}}).mean({12}));
  EXPECT_FLOAT_EQ(0.f, faceWith({{12, -0.1}}).mean({12}));
}

TEST(ActionUnits, AreCappedOneByOneBeforeTheMean)
{
  EXPECT_FLOAT_EQ(0.75f, faceWith({{6, 2.5}, {12, 50.0}}).mean({6, 12}));
}

TEST(ActionUnits, OfWhichOneIsUnknownHaveNoMean)
{
  EXPECT_TRUE(std::isnan(tools::ActionUnits().mean({12})));
  EXPECT_TRUE(std::isnan(faceWith({{6, std::numeric_limits<double>::quiet_NaN()}}).mean({6, 12})));
}

TEST(ActionUnits, TellASmileByTheLipCorners)
{
  const auto smile = tools::smileOf(faceWith({{12, 2.0}}), confidence);
  ASSERT_TRUE(smile);
  EXPECT_FLOAT_EQ(0.4f, smile->value);
  EXPECT_FLOAT_EQ(confidence, smile->confidence);
  EXPECT_FALSE(tools::smileOf(tools::ActionUnits(), confidence));
}

struct ExpressionCase
{
  const char* name;
  KV::ValueConfidence<float> KV::Expressions::*expression;
  std::map<int, double> units;
  float strength;
};

void PrintTo(const ExpressionCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class Expression : public ::testing::TestWithParam<ExpressionCase>
{};

TEST_P(Expression, IsTheMeanOfItsActionUnits)
{
  const auto expression = expressionsWith(GetParam().units).*GetParam().expression;
  EXPECT_FLOAT_EQ(GetParam().strength, expression.value);
  EXPECT_FLOAT_EQ(confidence, expression.confidence);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Expression,
    ::testing::Values(
        ExpressionCase{"Joy", &KV::Expressions::joy, {{6, 2.0}, {12, 3.0}}, 0.5f},
        ExpressionCase{"Sorrow", &KV::Expressions::sorrow, {{1, 1.0}, {4, 2.0}, {15, 3.0}}, 0.4f},
        ExpressionCase{"Surprise", &KV::Expressions::surprise, {{1, 1.0}, {2, 2.0}, {5, 3.0}, {26, 4.0}}, 0.5f},
        ExpressionCase{"Anger", &KV::Expressions::anger, {{4, 1.0}, {5, 2.0}, {7, 3.0}, {23, 4.0}}, 0.5f},
        ExpressionCase{"Laughter", &KV::Expressions::laughter, {{6, 5.0}, {12, 5.0}, {25, 3.0}, {26, 2.0}}, 0.5f}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Expressions, CallASmileWithAClosedMouthNoLaughter)
{
  EXPECT_FLOAT_EQ(0.f, expressionsWith({{6, 5.0}, {12, 5.0}}).laughter.value);
}

TEST(Expressions, CallAnOpenMouthWithoutASmileNoLaughter)
{
  EXPECT_FLOAT_EQ(0.f, expressionsWith({{25, 5.0}, {26, 5.0}}).laughter.value);
}

TEST(Expressions, AreCalmAsFarAsNoOtherShows)
{
  EXPECT_FLOAT_EQ(1.f, expressionsWith({}).calm.value);
  EXPECT_FLOAT_EQ(confidence, expressionsWith({}).calm.confidence);
  EXPECT_FLOAT_EQ(0.5f, expressionsWith({{6, 2.0}, {12, 3.0}}).calm.value);
}

TEST(Expressions, SayNothingOfExcitement)
{
  const auto excitement = expressionsWith({{6, 5.0}, {12, 5.0}, {1, 5.0}, {2, 5.0}}).excitement;
  EXPECT_FLOAT_EQ(0.f, excitement.value);
  EXPECT_FLOAT_EQ(0.f, excitement.confidence);
}

TEST(Expressions, OfWhichAnActionUnitIsUnknownHaveConfidenceZero)
{
  tools::ActionUnits units;
  for (std::size_t i = 0; i < tools::usedActionUnits.size(); ++i)
    if (tools::usedActionUnits.at(i) == 6 || tools::usedActionUnits.at(i) == 12)
      units.set(i, 5.0, fullScale);
  const auto expressions = tools::expressionsOf(units, confidence);
  ASSERT_TRUE(expressions);
  EXPECT_FLOAT_EQ(1.f, expressions->joy.value);
  EXPECT_FLOAT_EQ(confidence, expressions->joy.confidence);
  for (const auto& unknown :
       {expressions->sorrow, expressions->surprise, expressions->anger, expressions->laughter, expressions->calm})
  {
    EXPECT_FLOAT_EQ(0.f, unknown.value);
    EXPECT_FLOAT_EQ(0.f, unknown.confidence);
  }
}

TEST(Expressions, AreMissingIfNoneIsKnown)
{
  EXPECT_FALSE(tools::expressionsOf(tools::ActionUnits(), confidence));
}

}  // namespace
