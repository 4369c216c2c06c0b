#include <skeigiot/gaze.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

namespace
{

TEST(Gaze, LooksStraightAheadByDefault)
{
  const KV::Gaze gaze;

  EXPECT_EQ(0.f, gaze.yaw);
  EXPECT_EQ(0.f, gaze.pitch);
}

TEST(Gaze, KeepsYawThenPitchAsGiven)
{
  const KV::Gaze gaze(-400.5f, 12.25f);

  EXPECT_EQ(-400.5f, gaze.yaw);
  EXPECT_EQ(12.25f, gaze.pitch);
}

TEST(Gaze, KeepsANan)
{
  const KV::Gaze gaze(std::nanf(""), -std::nanf(""));

  EXPECT_TRUE(std::isnan(gaze.yaw));
  EXPECT_TRUE(std::isnan(gaze.pitch));
}

TEST(Gaze, IsAPlainValue)
{
  EXPECT_TRUE(std::is_trivially_copyable_v<KV::Gaze>);
}

}  // namespace
