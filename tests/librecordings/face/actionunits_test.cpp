#include "face/actionunits.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace
{
constexpr float fullScale = 5.f;
constexpr float confidence = 0.9f;
constexpr float unknown = std::numeric_limits<float>::quiet_NaN();

const KV::recordings::ScoreReadings& readings()
{
  static const KV::recordings::ScoreReadings readings(KV::recordings::actionUnitTable());
  return readings;
}

// The action units of the table, `others` except for these.
std::vector<float> faceWith(const std::map<std::string, double>& intensities, float others = 0.f)
{
  std::vector<float> scores;
  for (const std::string& unit : readings().names())
  {
    const auto found = intensities.find(unit);
    scores.push_back(found == intensities.end() ? others : KV::recordings::actionUnitScore(found->second, fullScale));
  }
  return scores;
}

KV::Expressions expressionsWith(const std::map<std::string, double>& intensities)
{
  return readings().expressions(faceWith(intensities), confidence).value();
}

TEST(ActionUnits, ArePartsOfTheFullScale)
{
  EXPECT_FLOAT_EQ(0.5f, KV::recordings::actionUnitScore(2.5, 5.f));
  EXPECT_FLOAT_EQ(1.f, KV::recordings::actionUnitScore(5.0, 5.f));
  EXPECT_FLOAT_EQ(0.8f, KV::recordings::actionUnitScore(2.4, 3.f));
}

TEST(ActionUnits, StayWithinZeroAndOne)
{
  EXPECT_FLOAT_EQ(1.f, KV::recordings::actionUnitScore(5.5, 5.f));
  EXPECT_FLOAT_EQ(0.f, KV::recordings::actionUnitScore(-0.1, 5.f));
}

TEST(ActionUnits, AreUnknownIfTheIntensityIs)
{
  EXPECT_TRUE(std::isnan(KV::recordings::actionUnitScore(std::nan(""), 5.f)));
}

TEST(ActionUnits, AreNamedWithTwoDigits)
{
  EXPECT_TRUE(KV::recordings::isActionUnitName("AU06"));
  for (const char* const other : {"AU6", "AU006", "au06", "AU0x", "AU06_r", ""})
    EXPECT_FALSE(KV::recordings::isActionUnitName(other)) << other;
}

TEST(ActionUnits, AreCappedOneByOneBeforeTheSum)
{
  EXPECT_FLOAT_EQ(1.f - 0.375f, expressionsWith({{"AU04", 2.5}, {"AU12", 50.0}}).joy.value);
}

TEST(ActionUnits, DetectASmileByTheLipCorners)
{
  const auto smile = readings().smile(faceWith({{"AU12", 2.0}}), confidence);
  ASSERT_TRUE(smile);
  EXPECT_FLOAT_EQ(0.4f, smile->value);
  EXPECT_FLOAT_EQ(confidence, smile->confidence);
  EXPECT_FALSE(readings().smile(faceWith({}, unknown), confidence));
}

TEST(ActionUnits, DetectNoSmileUnderLoweredBrows)
{
  EXPECT_FLOAT_EQ(0.f, readings().smile(faceWith({{"AU12", 1.0}, {"AU04", 2.5}}), confidence)->value);
}

struct ExpressionCase
{
  const char* name;
  KV::ValueConfidence<float> KV::Expressions::*expression;
  std::map<std::string, double> units;
  float strength;
};

void PrintTo(const ExpressionCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class Expression : public ::testing::TestWithParam<ExpressionCase>
{};

TEST_P(Expression, IsTheSumOfItsActionUnits)
{
  const auto expression = expressionsWith(GetParam().units).*GetParam().expression;
  EXPECT_FLOAT_EQ(GetParam().strength, expression.value);
  EXPECT_FLOAT_EQ(confidence, expression.confidence);
}

INSTANTIATE_TEST_SUITE_P(
    Of, Expression,
    ::testing::Values(
        ExpressionCase{"Joy", &KV::Expressions::joy, {{"AU04", 1.0}, {"AU12", 3.0}}, 0.6f - 0.15f},
        ExpressionCase{"Sorrow",
                       &KV::Expressions::sorrow,
                       {{"AU01", 1.0}, {"AU04", 1.0}, {"AU06", 0.5}, {"AU12", 0.25}, {"AU15", 3.0}},
                       0.2f + 0.2f - 0.15f},
        ExpressionCase{
            "Surprise", &KV::Expressions::surprise, {{"AU01", 1.0}, {"AU02", 2.0}, {"AU05", 3.0}, {"AU26", 4.0}}, 0.5f},
        ExpressionCase{"Anger",
                       &KV::Expressions::anger,
                       {{"AU04", 1.0}, {"AU06", 0.5}, {"AU09", 1.0}, {"AU10", 0.5}, {"AU12", 1.0}},
                       0.5f - 0.3f},
        ExpressionCase{"Laughter", &KV::Expressions::laughter, {{"AU12", 5.0}, {"AU25", 3.0}, {"AU26", 2.0}}, 0.5f}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Expressions, CallASmileWithAClosedMouthNoLaughter)
{
  EXPECT_FLOAT_EQ(0.f, expressionsWith({{"AU06", 5.0}, {"AU12", 5.0}}).laughter.value);
}

TEST(Expressions, CallAnOpenMouthWithoutASmileNoLaughter)
{
  EXPECT_FLOAT_EQ(0.f, expressionsWith({{"AU25", 5.0}, {"AU26", 5.0}}).laughter.value);
}

TEST(Expressions, AreCalmAsFarAsNoOtherShows)
{
  EXPECT_FLOAT_EQ(1.f, expressionsWith({}).calm.value);
  EXPECT_FLOAT_EQ(confidence, expressionsWith({}).calm.confidence);
  EXPECT_FLOAT_EQ(1.f - 0.6f, expressionsWith({{"AU12", 3.0}}).calm.value);
}

TEST(Expressions, ShareOneWholeWithCalm)
{
  // Anger and sorrow are 1 each.
  const KV::Expressions frown = expressionsWith({{"AU04", 5.0}});
  EXPECT_FLOAT_EQ(0.5f, frown.anger.value);
  EXPECT_FLOAT_EQ(0.5f, frown.sorrow.value);
  EXPECT_FLOAT_EQ(0.f, frown.calm.value);
}

TEST(Expressions, AreLessCalmBySurpriseByHalf)
{
  const KV::Expressions open = expressionsWith({{"AU02", 5.0}, {"AU05", 5.0}, {"AU26", 5.0}});
  EXPECT_FLOAT_EQ(0.75f, open.surprise.value);
  EXPECT_FLOAT_EQ(1.f - 0.375f, open.calm.value);
}

TEST(Expressions, SayNothingOfExcitement)
{
  const auto excitement = expressionsWith({{"AU06", 5.0}, {"AU12", 5.0}, {"AU01", 5.0}, {"AU02", 5.0}}).excitement;
  EXPECT_FLOAT_EQ(0.f, excitement.value);
  EXPECT_FLOAT_EQ(0.f, excitement.confidence);
}

TEST(Expressions, OfWhichAnActionUnitIsUnknownHaveConfidenceZero)
{
  const auto expressions = readings().expressions(faceWith({{"AU06", 5.0}, {"AU12", 5.0}}, unknown), confidence);
  ASSERT_TRUE(expressions);
  EXPECT_FLOAT_EQ(1.f, expressions->joy.value) << "what takes off is left out where it is unknown";
  EXPECT_FLOAT_EQ(confidence, expressions->joy.confidence);
  for (const auto& other : {expressions->sorrow, expressions->surprise, expressions->anger, expressions->laughter})
  {
    EXPECT_FLOAT_EQ(0.f, other.value);
    EXPECT_FLOAT_EQ(0.f, other.confidence);
  }
}

TEST(Expressions, AreCalmByAllKnownScores)
{
  const auto atRest = readings().expressions(faceWith({{"AU06", 0.0}, {"AU12", 0.5}}, unknown), confidence);
  ASSERT_TRUE(atRest);
  EXPECT_FLOAT_EQ(1.f - 0.1f, atRest->calm.value);
  EXPECT_FLOAT_EQ(confidence, atRest->calm.confidence);
}

TEST(Expressions, AreMissingIfNoneIsKnown)
{
  EXPECT_FALSE(readings().expressions(faceWith({}, unknown), confidence));
}

}  // namespace
