#include "support/groupinglocale.hpp"
#include "support/tablename.hpp"
#include "support/thrown.hpp"

#include <skeigiot/facialpoints.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>

namespace
{

using KV::FacialPoints;
using KV::PointDescription;

constexpr int pointCount = 12;

PointDescription point(int number)
{
  return static_cast<PointDescription>(number);
}

FacialPoints::Point withConfidence(float confidence)
{
  return FacialPoints::Point({0.f, 0.f}, confidence);
}

void expectPoint(float x, float y, float confidence, const FacialPoints::Point& actual)
{
  EXPECT_EQ(x, actual.value.first);
  EXPECT_EQ(y, actual.value.second);
  EXPECT_EQ(confidence, actual.confidence);
}

TEST(PointDescription, NumbersTwelvePoints)
{
  const std::array<PointDescription, pointCount> points = {
      KV::FacialPoint0, KV::FacialPoint1, KV::FacialPoint2, KV::FacialPoint3, KV::FacialPoint4,  KV::FacialPoint5,
      KV::FacialPoint6, KV::FacialPoint7, KV::FacialPoint8, KV::FacialPoint9, KV::FacialPoint10, KV::FacialPoint11};

  for (std::size_t i = 0; i < points.size(); ++i)
    EXPECT_EQ(static_cast<int>(i), points[i]);
}

TEST(FacialPoints, AreAllZeroByDefault)
{
  const FacialPoints points;

  for (int i = 0; i < pointCount; ++i)
    expectPoint(0.f, 0.f, 0.f, points.facialPoint(point(i)));
}

TEST(FacialPoints, HaveNoGlobalConfidenceByDefault)
{
  EXPECT_EQ(0.f, FacialPoints().globalConfidence());
}

TEST(FacialPoints, KeepEachPointAsGiven)
{
  FacialPoints points;
  for (int i = 0; i < pointCount; ++i)
    points.setFacialPoint(point(i), {{100.f + static_cast<float>(i), -static_cast<float>(i)}, static_cast<float>(i)});

  for (int i = 0; i < pointCount; ++i)
    expectPoint(100.f + static_cast<float>(i), -static_cast<float>(i), static_cast<float>(i),
                points.facialPoint(point(i)));
}

TEST(FacialPoints, ReturnACopyOfAPoint)
{
  FacialPoints points;
  points.setFacialPoint(KV::FacialPoint3, {{1.f, 2.f}, 0.5f});

  FacialPoints::Point copy = points.facialPoint(KV::FacialPoint3);
  copy.confidence = 1.f;

  EXPECT_EQ(1.f, copy.confidence);
  expectPoint(1.f, 2.f, 0.5f, points.facialPoint(KV::FacialPoint3));
}

TEST(FacialPoints, ReplaceAPointThatIsSetAgain)
{
  FacialPoints points;
  points.setFacialPoint(KV::FacialPoint7, {{1.f, 2.f}, 0.5f});

  points.setFacialPoint(KV::FacialPoint7, {{3.f, 4.f}, 0.25f});

  expectPoint(3.f, 4.f, 0.25f, points.facialPoint(KV::FacialPoint7));
  EXPECT_EQ(0.25f / 12.f, points.globalConfidence());
}

TEST(FacialPoints, AreCopiedByValue)
{
  FacialPoints original;
  original.setFacialPoint(KV::FacialPoint2, {{1.f, 2.f}, 0.5f});
  FacialPoints copy = original;

  copy.setFacialPoint(KV::FacialPoint2, {{9.f, 9.f}, 0.9f});

  expectPoint(1.f, 2.f, 0.5f, original.facialPoint(KV::FacialPoint2));
}

TEST(FacialPoints, ShareTheConfidenceOfOnePointAmongTwelve)
{
  FacialPoints points;
  points.setFacialPoint(KV::FacialPoint4, withConfidence(0.6f));

  EXPECT_EQ(0.6f / 12.f, points.globalConfidence());
  EXPECT_FLOAT_EQ(0.05f, points.globalConfidence());
}

TEST(FacialPoints, CountEveryPointAlike)
{
  for (int i = 0; i < pointCount; ++i)
  {
    FacialPoints points;
    points.setFacialPoint(point(i), withConfidence(0.75f));
    EXPECT_EQ(0.0625f, points.globalConfidence()) << "point " << i;
  }
}

TEST(FacialPoints, AreFullyConfidentWhenEveryPointIs)
{
  FacialPoints points;
  for (int i = 0; i < pointCount; ++i)
    points.setFacialPoint(point(i), withConfidence(1.f));

  EXPECT_EQ(1.f, points.globalConfidence());
}

TEST(FacialPoints, DoNotClampTheGlobalConfidence)
{
  FacialPoints points;
  points.setFacialPoint(KV::FacialPoint0, withConfidence(-24.f));
  EXPECT_EQ(-2.f, points.globalConfidence());

  points.setFacialPoint(KV::FacialPoint0, withConfidence(60.f));
  EXPECT_EQ(5.f, points.globalConfidence());

  points.setFacialPoint(KV::FacialPoint0, withConfidence(std::nanf("")));
  EXPECT_TRUE(std::isnan(points.globalConfidence()));
}

/// The points in the order of the record's layout.
constexpr std::array<int, pointCount> layout = {0, 3, 4, 1, 5, 6, 2, 7, 8, 11, 9, 10};

/// Sums confidences of +-2^24 and 1, which single precision keeps or loses depending on the order.
float sumOf(int first, int second, int third)
{
  constexpr float big = 16777216.f;
  FacialPoints points;
  points.setFacialPoint(point(first), withConfidence(big));
  points.setFacialPoint(point(second), withConfidence(1.f));
  points.setFacialPoint(point(third), withConfidence(-big));
  return points.globalConfidence() * 12.f;
}

TEST(FacialPoints, SumNeighboursInTheOrderOfLayout)
{
  for (std::size_t i = 0; i + 2 < layout.size(); ++i)
  {
    EXPECT_EQ(0.f, sumOf(layout[i], layout[i + 1], layout[i + 2])) << "the 1 is lost beside 2^24, slot " << i;
    EXPECT_EQ(1.f, sumOf(layout[i], layout[i + 2], layout[i + 1])) << "the 1 comes after both, slot " << i;
  }
}

TEST(FacialPoints, SumFromTheFirstOfTheLayoutToTheLast)
{
  EXPECT_EQ(0.f, sumOf(layout[1], layout[0], layout[2])) << "the 1 comes before both, and is lost";
}

struct RefusedPoint
{
  const char* name;
  int number;
  const char* message;
};

class FacialPointsRefusal : public ::testing::TestWithParam<RefusedPoint>
{};

TEST_P(FacialPointsRefusal, ThrowsFromTheGetter)
{
  const FacialPoints points;

  EXPECT_EQ(GetParam().message,
            support::textThrownBy<std::invalid_argument>([&] { points.facialPoint(point(GetParam().number)); }));
}

TEST_P(FacialPointsRefusal, ThrowsFromTheSetterInTheWordsOfTheGetter)
{
  FacialPoints points;

  EXPECT_EQ(GetParam().message, support::textThrownBy<std::invalid_argument>(
                                    [&] { points.setFacialPoint(point(GetParam().number), withConfidence(1.f)); }));
}

TEST_P(FacialPointsRefusal, StoresNothing)
{
  FacialPoints points;

  EXPECT_THROW(points.setFacialPoint(point(GetParam().number), {{1.f, 1.f}, 1.f}), std::invalid_argument);

  EXPECT_EQ(0.f, points.globalConfidence());
  for (int i = 0; i < pointCount; ++i)
    expectPoint(0.f, 0.f, 0.f, points.facialPoint(point(i)));
}

TEST_P(FacialPointsRefusal, WritesTheNumberPlainlyUnderAnyLocale)
{
  const support::GroupingLocale german;
  const FacialPoints points;

  EXPECT_EQ(GetParam().message,
            support::textThrownBy<std::invalid_argument>([&] { points.facialPoint(point(GetParam().number)); }));
}

INSTANTIATE_TEST_SUITE_P(
    OutsideTheTwelve, FacialPointsRefusal,
    ::testing::Values(RefusedPoint{"JustBelow", -1, "Error while getting point -1, wrong argument.\n"},
                      RefusedPoint{"JustAbove", 12, "Error while getting point 12, wrong argument.\n"},
                      RefusedPoint{"FarBelow", std::numeric_limits<int>::min(),
                                   "Error while getting point -2147483648, wrong argument.\n"},
                      RefusedPoint{"FarAbove", std::numeric_limits<int>::max(),
                                   "Error while getting point 2147483647, wrong argument.\n"}),
    support::RowName());

}  // namespace
