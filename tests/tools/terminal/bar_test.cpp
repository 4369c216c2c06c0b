#include "terminal/bar.hpp"
#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct BarCase
{
  const char* name;
  double value;
  const char* text;
};

class Bar : public ::testing::TestWithParam<BarCase>
{};

TEST_P(Bar, FillsInProportionToTheValue)
{
  EXPECT_EQ(GetParam().text, KV::tools::bar(GetParam().value, 4));
}

INSTANTIATE_TEST_SUITE_P(
    InFourCells, Bar,
    ::testing::Values(BarCase{"NothingIsEmpty", 0., "····"}, BarCase{"AllIsFull", 1., "████"},
                      BarCase{"AHalfIsTwo", 0.5, "██··"}, BarCase{"AnEighthIsHalfACell", 0.125, "▌···"},
                      BarCase{"JustUnderASixteenthIsNothing", 0.0624, "····"},
                      BarCase{"ASixteenthIsRoundedUp", 0.0625, "▌···"},
                      BarCase{"SevenEighthsEndInAHalf", 0.875, "███▌"}, BarCase{"BelowTheRangeIsEmpty", -3., "····"},
                      BarCase{"AboveTheRangeIsFull", 1e30, "████"}, BarCase{"NanIsEmpty", nan, "····"}),
    support::RowName());

class CentredBar : public ::testing::TestWithParam<BarCase>
{};

TEST_P(CentredBar, GrowsFromItsCentre)
{
  EXPECT_EQ(GetParam().text, KV::tools::centredBar(GetParam().value, 4));
}

INSTANTIATE_TEST_SUITE_P(InFourCellsToEachSide, CentredBar,
                         ::testing::Values(BarCase{"ZeroIsTheLineAlone", 0., "····│····"},
                                           BarCase{"OneFillsTheRight", 1., "····│████"},
                                           BarCase{"MinusOneFillsTheLeft", -1., "████│····"},
                                           BarCase{"PositiveGrowsToTheRight", 0.375, "····│█▌··"},
                                           BarCase{"NegativeGrowsToTheLeft", -0.375, "··▐█│····"},
                                           BarCase{"NanIsTheLineAlone", nan, "····│····"}),
                         support::RowName());

}  // namespace
