#include "support/tablename.hpp"

#include <skeigiot/session/wording.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

using KV::session::Duration;

struct ClockCase
{
  const char* name;
  std::int64_t milliseconds;
  int decimals;
  const char* text;
};

class ClockText : public ::testing::TestWithParam<ClockCase>
{};

TEST_P(ClockText, ShowsMinutesAndSeconds)
{
  EXPECT_EQ(GetParam().text,
            KV::session::clockText(Duration(GetParam().milliseconds * 1'000'000), GetParam().decimals));
}

INSTANTIATE_TEST_SUITE_P(Times, ClockText,
                         ::testing::Values(ClockCase{"TheStart", 0, 1, "0:00.0"},
                                           ClockCase{"LeadingZerosOfSeconds", 5'300, 1, "0:05.3"},
                                           ClockCase{"RoundingCarriesIntoTheMinute", 59'960, 1, "1:00.0"},
                                           ClockCase{"JustBelowTheHalfIsRoundedDown", 59'949, 1, "0:59.9"},
                                           ClockCase{"ManyMinutes", 59 * 60'000 + 59'000, 1, "59:59.0"},
                                           ClockCase{"FromAnHourOnHours", 3'600'000, 1, "1:00:00.0"},
                                           ClockCase{"HoursMinutesSeconds", 3'723'400, 1, "1:02:03.4"},
                                           ClockCase{"WithoutDecimals", 61'400, 0, "1:01"},
                                           ClockCase{"LeadingZerosOfDecimals", 1'005, 3, "0:01.005"}),
                         support::RowName());

TEST(LongestTime, IsShownAsItIs)
{
  EXPECT_EQ("2562047:47:16.9", KV::session::clockText(Duration(std::numeric_limits<std::int64_t>::max()), 1));
  EXPECT_EQ("2562047:47:16.854775807", KV::session::clockText(Duration(std::numeric_limits<std::int64_t>::max()), 9));
}

struct NumberCase
{
  const char* name;
  double value;
  const char* text;
};

class SignedNumber : public ::testing::TestWithParam<NumberCase>
{};

TEST_P(SignedNumber, HasASignUnlessItIsShownAsZero)
{
  EXPECT_EQ(GetParam().text, KV::session::signedNumber(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(Numbers, SignedNumber,
                         ::testing::Values(NumberCase{"Positive", 0.414, "+0.41"}, NumberCase{"Negative", -1., "-1.00"},
                                           NumberCase{"Zero", 0., " 0.00"}, NumberCase{"MinusZero", -0., " 0.00"},
                                           NumberCase{"NearlyZeroFromBelow", -0.004, " 0.00"},
                                           NumberCase{"SmallestShown", -0.006, "-0.01"},
                                           NumberCase{"Nan", std::numeric_limits<double>::quiet_NaN(), "  nan"}),
                         support::RowName());

class Percentage : public ::testing::TestWithParam<NumberCase>
{};

TEST_P(Percentage, NeverClaimsAllOrNothingThatIsNot)
{
  EXPECT_EQ(GetParam().text, KV::session::percentage(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(Shares, Percentage,
                         ::testing::Values(NumberCase{"Nothing", 0., "0 %"}, NumberCase{"NearlyNothing", 0.001, "<1 %"},
                                           NumberCase{"Some", 0.424, "42 %"}, NumberCase{"NearlyAll", 0.999, ">99 %"},
                                           NumberCase{"All", 1., "100 %"}),
                         support::RowName());

TEST(Counted, PutsTheNounIntoThePluralUnlessThereIsOne)
{
  EXPECT_EQ("0 updates", KV::session::counted(0, "update"));
  EXPECT_EQ("1 update", KV::session::counted(1, "update"));
  EXPECT_EQ("2 updates", KV::session::counted(2, "update"));
}

}  // namespace
