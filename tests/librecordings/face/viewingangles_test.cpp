#include "face/viewingangles.hpp"

#include <gtest/gtest.h>

namespace
{
constexpr float tolerance = 1e-4f;  // [deg] single precision at some tens of degrees

TEST(ViewingAngles, PutAFaceOnTheOpticalAxisAtZero)
{
  const auto bearing = KV::recordings::bearingOf({0.0, 0.0, 800.0});
  EXPECT_DOUBLE_EQ(0.0, bearing.azimuth);
  EXPECT_DOUBLE_EQ(0.0, bearing.elevation);
}

TEST(ViewingAngles, CountToTheRightAndDownInTheImage)
{
  EXPECT_NEAR(45.0, KV::recordings::bearingOf({500.0, 0.0, 500.0}).azimuth, 1e-9);
  EXPECT_NEAR(-45.0, KV::recordings::bearingOf({-500.0, 0.0, 500.0}).azimuth, 1e-9);
  EXPECT_NEAR(45.0, KV::recordings::bearingOf({0.0, 500.0, 500.0}).elevation, 1e-9);
}

TEST(ViewingAngles, DoNotDependOnTheUnit)
{
  const auto millimetres = KV::recordings::bearingOf({300.0, -200.0, 900.0});
  const auto metres = KV::recordings::bearingOf({0.3, -0.2, 0.9});
  EXPECT_NEAR(millimetres.azimuth, metres.azimuth, 1e-9);
  EXPECT_NEAR(millimetres.elevation, metres.elevation, 1e-9);
}

TEST(ViewingAngles, GiveTheDistanceInTheUnitOfThePosition)
{
  EXPECT_DOUBLE_EQ(13.0, KV::recordings::FacePosition({3.0, 4.0, 12.0}).distance());
}

// A person at the right edge of the image who looks into the camera has turned to their own right, and looks there:
// head yaw +30, gaze yaw -30 from the optical axis.
TEST(ViewingAngles, FaceTheCameraFromTheSide)
{
  const KV::recordings::Bearing bearing{30.0, 0.0};
  EXPECT_NEAR(0.f, KV::recordings::relativeToLineOfSight(KV::HeadPosture(30.f, 0.f, 0.f), bearing).yaw(), tolerance);
  EXPECT_NEAR(0.f, KV::recordings::relativeToLineOfSight(KV::Gaze(-30.f, 0.f), bearing).yaw, tolerance);
}

// A person below the camera who looks into it looks up.
TEST(ViewingAngles, FaceTheCameraFromBelow)
{
  const KV::recordings::Bearing bearing{0.0, 20.0};
  EXPECT_NEAR(0.f, KV::recordings::relativeToLineOfSight(KV::HeadPosture(0.f, 20.f, 0.f), bearing).pitch(), tolerance);
  EXPECT_NEAR(0.f, KV::recordings::relativeToLineOfSight(KV::Gaze(0.f, 20.f), bearing).pitch, tolerance);
}

TEST(ViewingAngles, LeaveTheRollAlone)
{
  EXPECT_FLOAT_EQ(5.f, KV::recordings::relativeToLineOfSight(KV::HeadPosture(1.f, 2.f, 5.f), {30.0, 20.0}).roll());
}

TEST(ViewingAngles, ExchangeLeftAndRightOfAMirrorImage)
{
  const auto posture = KV::recordings::unmirrored(KV::HeadPosture(10.f, 20.f, 30.f));
  EXPECT_FLOAT_EQ(-10.f, posture.yaw());
  EXPECT_FLOAT_EQ(20.f, posture.pitch());
  EXPECT_FLOAT_EQ(-30.f, posture.roll());
  const auto gaze = KV::recordings::unmirrored(KV::Gaze(10.f, 20.f));
  EXPECT_FLOAT_EQ(-10.f, gaze.yaw);
  EXPECT_FLOAT_EQ(20.f, gaze.pitch);
}

}  // namespace
