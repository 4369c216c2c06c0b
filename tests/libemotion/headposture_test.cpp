#include "support/tablename.hpp"

#include <skeigiot/headposture.hpp>

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

using KV::HeadPosture;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

void expectAngles(float yaw, float pitch, float roll, const HeadPosture& posture)
{
  EXPECT_EQ(yaw, posture.yaw());
  EXPECT_EQ(pitch, posture.pitch());
  EXPECT_EQ(roll, posture.roll());
}

std::string written(const HeadPosture& posture)
{
  std::ostringstream stream;
  stream << posture;
  return stream.str();
}

TEST(HeadPosture, IsStraightByDefault)
{
  expectAngles(0.f, 0.f, 0.f, HeadPosture());
}

TEST(HeadPosture, KeepsYawPitchAndRollAsGiven)
{
  expectAngles(-400.5f, 12.25f, 1e9f, HeadPosture(-400.5f, 12.25f, 1e9f));
}

TEST(HeadPosture, SetsEachAngleAlone)
{
  HeadPosture posture(1.f, 2.f, 3.f);

  posture.setYaw(-7.f);
  expectAngles(-7.f, 2.f, 3.f, posture);
  posture.setPitch(-8.f);
  expectAngles(-7.f, -8.f, 3.f, posture);
  posture.setRoll(-9.f);
  expectAngles(-7.f, -8.f, -9.f, posture);
}

TEST(HeadPosture, SetsAllAnglesAtOnce)
{
  HeadPosture posture(1.f, 2.f, 3.f);

  posture.setHeadPosture(4.f, 5.f, 6.f);

  expectAngles(4.f, 5.f, 6.f, posture);
}

TEST(HeadPosture, BoundsTheDirectionsAtSixDegrees)
{
  EXPECT_EQ(6.f, HeadPosture::upBoundary);
  EXPECT_EQ(-6.f, HeadPosture::downBoundary);
  EXPECT_EQ(-6.f, HeadPosture::leftBoundary);
  EXPECT_EQ(6.f, HeadPosture::rightBoundary);
}

TEST(HeadPosture, HasBoundariesWithAnAddress)
{
  const float* const boundaries[] = {&HeadPosture::upBoundary, &HeadPosture::downBoundary, &HeadPosture::leftBoundary,
                                     &HeadPosture::rightBoundary};

  EXPECT_EQ(6.f, *boundaries[0]);
  EXPECT_EQ(-6.f, *boundaries[1]);
  EXPECT_EQ(-6.f, *boundaries[2]);
  EXPECT_EQ(6.f, *boundaries[3]);
}

TEST(HeadPosture, IsAPlainValue)
{
  EXPECT_TRUE(std::is_trivially_copyable_v<HeadPosture>);
}

struct PitchCase
{
  const char* name;
  float pitch;
  bool up;
  bool down;
  const char* word;  ///< in its field of 14 characters
};

class HeadPosturePitch : public ::testing::TestWithParam<PitchCase>
{};

TEST_P(HeadPosturePitch, DistinguishesUpFromDown)
{
  const HeadPosture posture(0.f, GetParam().pitch, 0.f);

  EXPECT_EQ(GetParam().up, posture.isUp());
  EXPECT_EQ(GetParam().down, posture.isDown());
}

TEST_P(HeadPosturePitch, DoesNotTurnTheHead)
{
  const HeadPosture posture(0.f, GetParam().pitch, GetParam().pitch);

  EXPECT_FALSE(posture.isLeft());
  EXPECT_FALSE(posture.isRight());
}

TEST_P(HeadPosturePitch, IsWrittenAsAWord)
{
  const std::string text = written(HeadPosture(0.f, GetParam().pitch, 0.f));
  const std::string expectedEnd = std::string(") ") + GetParam().word + " Straight yaw";

  EXPECT_EQ(expectedEnd, text.substr(text.rfind(')')));
}

INSTANTIATE_TEST_SUITE_P(
    AtTheBoundaries, HeadPosturePitch,
    ::testing::Values(PitchCase{"ExactlySixIsUp", 6.f, true, false, "            Up"},
                      PitchCase{"JustOverSixIsUp", std::nextafter(6.f, 7.f), true, false, "            Up"},
                      PitchCase{"JustUnderSixIsNeither", std::nextafter(6.f, 0.f), false, false, "Straight pitch"},
                      PitchCase{"ZeroIsNeither", 0.f, false, false, "Straight pitch"},
                      PitchCase{"JustOverMinusSixIsNeither", std::nextafter(-6.f, 0.f), false, false, "Straight pitch"},
                      PitchCase{"ExactlyMinusSixIsDown", -6.f, false, true, "          Down"},
                      PitchCase{"JustUnderMinusSixIsDown", std::nextafter(-6.f, -7.f), false, true, "          Down"},
                      PitchCase{"InfinityIsUp", infinity, true, false, "            Up"},
                      PitchCase{"MinusInfinityIsDown", -infinity, false, true, "          Down"},
                      PitchCase{"NanIsNeither", nan, false, false, "Straight pitch"}),
    support::RowName());

struct YawCase
{
  const char* name;
  float yaw;
  bool left;
  bool right;
  const char* word;  ///< in its field of 12 characters
};

class HeadPostureYaw : public ::testing::TestWithParam<YawCase>
{};

TEST_P(HeadPostureYaw, DistinguishesLeftFromRight)
{
  const HeadPosture posture(GetParam().yaw, 0.f, 0.f);

  EXPECT_EQ(GetParam().left, posture.isLeft());
  EXPECT_EQ(GetParam().right, posture.isRight());
}

TEST_P(HeadPostureYaw, DoesNotPitchTheHead)
{
  const HeadPosture posture(GetParam().yaw, 0.f, GetParam().yaw);

  EXPECT_FALSE(posture.isUp());
  EXPECT_FALSE(posture.isDown());
}

TEST_P(HeadPostureYaw, IsWrittenAsAWord)
{
  const std::string text = written(HeadPosture(GetParam().yaw, 0.f, 0.f));
  const std::string expectedEnd = std::string(") Straight pitch ") + GetParam().word;

  EXPECT_EQ(expectedEnd, text.substr(text.rfind(')')));
}

INSTANTIATE_TEST_SUITE_P(
    AtTheBoundaries, HeadPostureYaw,
    ::testing::Values(YawCase{"ExactlySixIsRight", 6.f, false, true, "       Right"},
                      YawCase{"JustOverSixIsRight", std::nextafter(6.f, 7.f), false, true, "       Right"},
                      YawCase{"JustUnderSixIsNeither", std::nextafter(6.f, 0.f), false, false, "Straight yaw"},
                      YawCase{"ZeroIsNeither", 0.f, false, false, "Straight yaw"},
                      YawCase{"JustOverMinusSixIsNeither", std::nextafter(-6.f, 0.f), false, false, "Straight yaw"},
                      YawCase{"ExactlyMinusSixIsLeft", -6.f, true, false, "        Left"},
                      YawCase{"JustUnderMinusSixIsLeft", std::nextafter(-6.f, -7.f), true, false, "        Left"},
                      YawCase{"InfinityIsRight", infinity, false, true, "       Right"},
                      YawCase{"MinusInfinityIsLeft", -infinity, true, false, "        Left"},
                      YawCase{"NanIsNeither", nan, false, false, "Straight yaw"}),
    support::RowName());

TEST(HeadPosture, CanBeUpAndLeftAtOnce)
{
  const HeadPosture posture(-6.f, 6.f, 0.f);

  EXPECT_TRUE(posture.isUp());
  EXPECT_TRUE(posture.isLeft());
  EXPECT_FALSE(posture.isDown());
  EXPECT_FALSE(posture.isRight());
}

TEST(HeadPostureText, FillsTheFieldsOfAStraightHead)
{
  EXPECT_EQ("θ(  0.0°) φ(  0.0°) ψ(  0.0°) Straight pitch Straight yaw", written(HeadPosture()));
}

TEST(HeadPostureText, WritesYawPitchAndRollWithOneDecimal)
{
  EXPECT_EQ("θ(-12.3°) φ(  4.6°) ψ(  0.1°) Straight pitch         Left", written(HeadPosture(-12.34f, 4.56f, 0.05f)));
}

TEST(HeadPostureText, PutsTwelveBlanksBeforeUp)
{
  EXPECT_EQ("θ(  0.0°) φ( 10.0°) ψ(  0.0°)             Up Straight yaw", written(HeadPosture(0.f, 10.f, 0.f)));
}

TEST(HeadPostureText, LetsLongAnglesExceedTheirField)
{
  EXPECT_EQ("θ(-123.4°) φ(1000.0°) ψ(-100.0°)             Up         Left",
            written(HeadPosture(-123.4f, 1000.f, -100.f)));
}

TEST(HeadPostureText, WritesNanInItsField)
{
  EXPECT_EQ("θ(  nan°) φ(  nan°) ψ(  nan°) Straight pitch Straight yaw", written(HeadPosture(nan, nan, nan)));
}

TEST(HeadPostureText, LeavesFixedNotationAndOneDecimalOnTheStream)
{
  std::ostringstream stream;
  stream << std::scientific << std::setprecision(8);

  stream << HeadPosture();

  EXPECT_EQ(std::ios::fixed, stream.flags() & std::ios::floatfield);
  EXPECT_EQ(1, stream.precision());
  EXPECT_EQ(0, stream.width());
}

TEST(HeadPostureText, ReturnsTheStream)
{
  std::ostringstream stream;

  EXPECT_EQ(&stream, &(stream << HeadPosture()));
}

}  // namespace
