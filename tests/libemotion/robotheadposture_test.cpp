#include <skeigiot/robotheadposture.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

namespace
{

TEST(RobotHeadPosture, IsStraightByDefault)
{
  const KV::RobotHeadPosture posture;

  EXPECT_EQ(0.f, posture.yaw);
  EXPECT_EQ(0.f, posture.pitch);
}

TEST(RobotHeadPosture, KeepsYawThenPitchAsGiven)
{
  const KV::RobotHeadPosture posture(720.5f, -12.25f);

  EXPECT_EQ(720.5f, posture.yaw);
  EXPECT_EQ(-12.25f, posture.pitch);
}

TEST(RobotHeadPosture, KeepsANan)
{
  const KV::RobotHeadPosture posture(std::nanf(""), 1.f);

  EXPECT_TRUE(std::isnan(posture.yaw));
  EXPECT_EQ(1.f, posture.pitch);
}

TEST(RobotHeadPosture, IsAPlainValue)
{
  EXPECT_TRUE(std::is_trivially_copyable_v<KV::RobotHeadPosture>);
}

}  // namespace
