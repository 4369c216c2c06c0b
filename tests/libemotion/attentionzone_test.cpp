#include "personstateprivate.hpp"

#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <string_view>
#include <vector>

namespace
{

using KV::PersonStatePrivate;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(AttentionZones, LieInThreeRowsFromUpToDownAndThreeColumnsFromLeftToRight)
{
  const std::vector<int> expected = {6, 2, 7, 4, 1, 5, 8, 3, 9};
  ASSERT_EQ(expected.size(), KV::attentionZones.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_EQ(expected[i], static_cast<int>(KV::attentionZones[i])) << i;
}

struct ZoneCase
{
  const char* name;
  float yaw;
  float pitch;
  int zone;
  float yawThreshold = 15.f;
  std::string_view method = "head";
};
class AttentionZone : public ::testing::TestWithParam<ZoneCase>
{};

TEST_P(AttentionZone, LiesWhereTheAnglesPoint)
{
  const ZoneCase& row = GetParam();
  EXPECT_EQ(row.zone, static_cast<int>(PersonStatePrivate::_computeAttentionZone(row.yaw, row.pitch, row.yawThreshold,
                                                                                 10.f, row.method)));
}

float above(float x)
{
  return std::nextafter(x, infinity);
}

float below(float x)
{
  return std::nextafter(x, -infinity);
}

INSTANTIATE_TEST_SUITE_P(ByTheHead, AttentionZone,
                         ::testing::Values(ZoneCase{"Straight", 0.f, 0.f, 1}, ZoneCase{"SixUp", 0.f, 6.f, 2},
                                           ZoneCase{"SixUpAside", 20.f, 6.f, 5}, ZoneCase{"TenUpAside", 20.f, 10.f, 7},
                                           ZoneCase{"ElevenDownLeft", -20.f, -11.f, 8}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(AtTheColumns, AttentionZone,
                         ::testing::Values(ZoneCase{"JustLeft", below(-15.f), 0.f, 4},
                                           ZoneCase{"CentreAtTheLeftEnd", -15.f, 0.f, 1},
                                           ZoneCase{"CentreJustInside", above(-15.f), 0.f, 1},
                                           ZoneCase{"CentreAtTheRightEnd", below(15.f), 0.f, 1},
                                           ZoneCase{"Right", 15.f, 0.f, 5}, ZoneCase{"JustRight", above(15.f), 0.f, 5},
                                           ZoneCase{"FarLeft", -170.f, 0.f, 4}, ZoneCase{"FarRight", 170.f, 0.f, 5}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(
    AtTheRows, AttentionZone,
    ::testing::Values(ZoneCase{"CentreUp", 0.f, 6.f, 2}, ZoneCase{"CentreJustNotUp", 0.f, below(6.f), 1},
                      ZoneCase{"CentreLevelAtTheLowerEnd", 0.f, -10.f, 1},
                      ZoneCase{"CentreJustDown", 0.f, below(-10.f), 3}, ZoneCase{"LeftUp", -20.f, 10.f, 6},
                      ZoneCase{"LeftJustNotUp", -20.f, below(10.f), 4}, ZoneCase{"LeftLevel", -20.f, -10.f, 4},
                      ZoneCase{"LeftJustDown", -20.f, below(-10.f), 8}, ZoneCase{"RightUp", 20.f, 10.f, 7},
                      ZoneCase{"RightJustNotUp", 20.f, below(10.f), 5}, ZoneCase{"RightLevel", 20.f, -10.f, 5},
                      ZoneCase{"RightJustDown", 20.f, below(-10.f), 9}, ZoneCase{"FarUp", 0.f, 90.f, 2},
                      ZoneCase{"FarDown", 0.f, -90.f, 3}),
    support::RowName());

INSTANTIATE_TEST_SUITE_P(ByTheGaze, AttentionZone,
                         ::testing::Values(ZoneCase{"Mirrored", 20.f, 0.f, 4, 12.f, "gaze"},
                                           ZoneCase{"MirroredTheOtherWay", -20.f, 0.f, 5, 12.f, "gaze"},
                                           ZoneCase{"PitchIsNotMirrored", 20.f, 10.f, 6, 12.f, "gaze"},
                                           ZoneCase{"CentreAtTheLeftEnd", 12.f, 0.f, 1, 12.f, "gaze"},
                                           ZoneCase{"JustLeft", above(12.f), 0.f, 4, 12.f, "gaze"},
                                           ZoneCase{"Right", -12.f, 0.f, 5, 12.f, "gaze"},
                                           ZoneCase{"CentreAtTheRightEnd", above(-12.f), 0.f, 1, 12.f, "gaze"}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(ByAnyOtherWord, AttentionZone,
                         ::testing::Values(ZoneCase{"Capital", 20.f, 0.f, 5, 12.f, "Gaze"},
                                           ZoneCase{"Longer", 20.f, 0.f, 5, 12.f, "gaze "},
                                           ZoneCase{"Shorter", 20.f, 0.f, 5, 12.f, "gaz"},
                                           ZoneCase{"Empty", 20.f, 0.f, 5, 12.f, ""}),
                         support::RowName());

INSTANTIATE_TEST_SUITE_P(
    PastTheTable, AttentionZone,
    ::testing::Values(ZoneCase{"AThousandThresholdsRight", 15000.f, 0.f, 5},
                      ZoneCase{"JustBelowAThousandThresholds", below(15000.f), 0.f, 5},
                      ZoneCase{"InfinitelyRight", infinity, 0.f, 5}, ZoneCase{"InfinitelyLeft", -infinity, 0.f, 4},
                      ZoneCase{"AThousandThresholdsUp", 0.f, 10000.f, 2}, ZoneCase{"InfinitelyUp", 0.f, infinity, 2},
                      ZoneCase{"InfinitelyDown", 0.f, -infinity, 3}, ZoneCase{"NanYawIsRight", nan, 0.f, 5},
                      ZoneCase{"NanYawIsRightForTheGazeToo", nan, 0.f, 5, 12.f, "gaze"},
                      ZoneCase{"NanYawTakesTheRowOfTheSide", nan, 6.f, 5}, ZoneCase{"NanPitchIsUp", 0.f, nan, 2},
                      ZoneCase{"BothNan", nan, nan, 7}),
    support::RowName());

}  // namespace
