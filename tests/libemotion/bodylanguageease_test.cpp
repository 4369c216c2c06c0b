#include "support/tablename.hpp"

#include <skeigiot/bodylanguageease.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <ios>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>

namespace
{

using KV::BodyLanguageEase;

std::string written(const BodyLanguageEase& ease)
{
  std::ostringstream stream;
  stream << ease;
  return stream.str();
}

TEST(BodyLanguageEase, IsZeroByDefault)
{
  const BodyLanguageEase ease;

  EXPECT_EQ(0.f, ease.level);
  EXPECT_EQ(0.f, ease.confidence);
}

TEST(BodyLanguageEase, KeepsLevelThenConfidenceAsGiven)
{
  const BodyLanguageEase ease(-7.5f, 3.25f);

  EXPECT_EQ(-7.5f, ease.level);
  EXPECT_EQ(3.25f, ease.confidence);
}

TEST(BodyLanguageEase, IsAPlainValue)
{
  EXPECT_TRUE(std::is_trivially_copyable_v<BodyLanguageEase>);
}

TEST(BodyLanguageEaseText, ShowsTheUntouchedState)
{
  EXPECT_EQ("Body language ease 0.0% with confidence of 0.0 (feeling almost comfortable).",
            written(BodyLanguageEase()));
}

TEST(BodyLanguageEaseText, ShowsTheLevelInPercentAndTheConfidencePlainly)
{
  EXPECT_EQ("Body language ease 12.3% with confidence of 0.8 (feeling almost comfortable).",
            written(BodyLanguageEase(0.1234f, 0.75f)));
}

struct FeelingCase
{
  const char* name;
  float level;
  const char* text;
};

class BodyLanguageFeeling : public ::testing::TestWithParam<FeelingCase>
{};

TEST_P(BodyLanguageFeeling, IsWrittenAsAWord)
{
  EXPECT_EQ(GetParam().text, written(BodyLanguageEase(GetParam().level, 0.5f)));
}

constexpr float infinity = std::numeric_limits<float>::infinity();
INSTANTIATE_TEST_SUITE_P(
    AtTheBoundaries, BodyLanguageFeeling,
    ::testing::Values(
        FeelingCase{"FarBelow", -infinity, "Body language ease -inf% with confidence of 0.5 (feeling akwards)."},
        FeelingCase{"JustUnderMinusOneHalf", std::nextafter(-0.5f, -1.f),
                    "Body language ease -50.0% with confidence of 0.5 (feeling akwards)."},
        FeelingCase{"MinusOneHalf", -0.5f, "Body language ease -50.0% with confidence of 0.5 (feeling uncomfortable)."},
        FeelingCase{"JustUnderMinusOneQuarter", std::nextafter(-0.25f, -1.f),
                    "Body language ease -25.0% with confidence of 0.5 (feeling uncomfortable)."},
        FeelingCase{"MinusOneQuarter", -0.25f,
                    "Body language ease -25.0% with confidence of 0.5 (feeling almost comfortable)."},
        FeelingCase{"JustOverMinusOneQuarter", std::nextafter(-0.25f, 0.f),
                    "Body language ease -25.0% with confidence of 0.5 (feeling almost comfortable)."},
        FeelingCase{"JustUnderOneQuarter", std::nextafter(0.25f, 0.f),
                    "Body language ease 25.0% with confidence of 0.5 (feeling almost comfortable)."},
        FeelingCase{"OneQuarter", 0.25f, "Body language ease 25.0% with confidence of 0.5 (feeling comfortable)."},
        FeelingCase{"OneHalf", 0.5f, "Body language ease 50.0% with confidence of 0.5 (feeling comfortable)."},
        FeelingCase{"Nan", std::numeric_limits<float>::quiet_NaN(),
                    "Body language ease nan% with confidence of 0.5 (feeling comfortable)."}),
    support::RowName());

TEST(BodyLanguageEaseText, LeavesFixedNotationAndOneDecimalOnTheStream)
{
  std::ostringstream stream;
  stream << std::scientific << std::setprecision(8);

  EXPECT_EQ(&stream, &(stream << BodyLanguageEase(0.25f, 0.5f)));

  EXPECT_EQ("Body language ease 25.0% with confidence of 0.5 (feeling comfortable).", stream.str());
  EXPECT_EQ(std::ios::fixed, stream.flags() & std::ios::floatfield);
  EXPECT_EQ(1, stream.precision());
  EXPECT_EQ(0, stream.width());
}

}  // namespace
