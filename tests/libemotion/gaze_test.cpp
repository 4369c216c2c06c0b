#include <skeigiot/gaze.hpp>

#include <gtest/gtest.h>

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

}  // namespace
