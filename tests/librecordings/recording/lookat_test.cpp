#include "face/pose.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/lookat.hpp>

#include <boost/chrono/duration.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace
{
using namespace KV::recordings;
using TimePoint = ko::SystemClock::time_point;

constexpr float tolerance = 1e-3f;  // [deg]

FaceAdapter lookingAt(const std::string& text)
{
  ReadingOptions options;
  options.lookAt = parseLookAt(text);
  return FaceAdapter(options);
}

// A head turned to its own right by this angle, with the gaze in the same direction, a metre in front and to the right.
Face turned(float yaw, float pitch = 0.f)
{
  Face face;
  face.pose.position = FacePosition{1., 0., 1.};
  face.pose.headPosture = KV::HeadPosture(yaw, pitch, 0.f);
  face.pose.gaze = KV::Gaze(-yaw, pitch);
  return face;
}

TimePoint at(double seconds)
{
  return TimePoint(boost::chrono::nanoseconds(static_cast<std::int64_t>(seconds * 1e9)));
}

TEST(LookAt, IsReadFromAText)
{
  EXPECT_EQ(LookAt::Kind::Camera, parseLookAt("camera").kind);
  EXPECT_EQ(LookAt::Kind::Axis, parseLookAt("axis").kind);
  EXPECT_EQ(LookAt::Kind::Learned, parseLookAt("learned").kind);
  const LookAt point = parseLookAt("0.5,-0.25,0");
  EXPECT_EQ(LookAt::Kind::Point, point.kind);
  EXPECT_DOUBLE_EQ(0.5, point.point.right);
  EXPECT_DOUBLE_EQ(-0.25, point.point.down);
  EXPECT_DOUBLE_EQ(0., point.point.forward);
}

TEST(LookAt, IsNotReadFromOtherTexts)
{
  for (const char* const text : {"", "robot", "1,2", "1,2,3,4", "1,2,x", "1,2,nan", "1,2,2000", "1 2 3", "camera "})
    EXPECT_THROW(parseLookAt(text), std::invalid_argument) << text;
}

TEST(LookAt, CountsFromTheLineToTheCamera)
{
  const auto readings = lookingAt("camera").read(turned(45.f));
  EXPECT_NEAR(0.f, readings.headPosture->yaw(), tolerance);
  EXPECT_NEAR(0.f, readings.gaze->yaw, tolerance);
}

TEST(LookAt, CountsFromTheAxisWhereverThePersonIs)
{
  EXPECT_NEAR(45.f, lookingAt("axis").read(turned(45.f)).headPosture->yaw(), tolerance);
  EXPECT_NEAR(0.f, lookingAt("axis").read(turned(0.f)).headPosture->yaw(), tolerance);
}

TEST(LookAt, CountsFromTheLineToThePointOfTheRobot)
{
  // The robot is in front of the person, who looks straight ahead.
  EXPECT_NEAR(0.f, lookingAt("1,0,0").read(turned(0.f)).headPosture->yaw(), tolerance);
  EXPECT_NEAR(0.f, lookingAt("1,0,0").read(turned(0.f)).gaze->yaw, tolerance);
  // Its head is as far above the eyes as it is away: a person who looks at it looks up.
  EXPECT_NEAR(0.f, lookingAt("1,-1,0").read(turned(0.f, 45.f)).headPosture->pitch(), tolerance);
}

TEST(LookAt, TakesThePointInTheUnitOfThePosition)
{
  Face face = turned(0.f);
  face.pose.position = FacePosition{1000., 0., 1000.};
  face.pose.positionUnitsPerMetre = 1000.;
  EXPECT_NEAR(0.f, lookingAt("1,0,0").read(face).headPosture->yaw(), tolerance);
}

TEST(LookAt, LearnsWhereTheHeadRestsFromTheFirstFaceOn)
{
  const FaceAdapter adapter = lookingAt("learned");
  RestingFace rest;
  const auto first = adapter.read(turned(30.f), at(0.), rest);
  EXPECT_NEAR(0.f, first.headPosture->yaw(), tolerance);
  EXPECT_NEAR(0.f, first.gaze->yaw, tolerance) << "the gaze is moved with the head";
  const auto glance = adapter.read(turned(60.f), at(0.1), rest);
  EXPECT_NEAR(30.f - 0.6f, glance.headPosture->yaw(), tolerance) << "rest follows by 6 degrees a second";
}

TEST(LookAt, FollowsTheRestingHeadInAGapForHalfASecondOnly)
{
  const FaceAdapter adapter = lookingAt("learned");
  RestingFace rest;
  adapter.read(turned(0.f), at(0.), rest);
  EXPECT_NEAR(60.f - 3.f, adapter.read(turned(60.f), at(100.), rest).headPosture->yaw(), tolerance);
}

TEST(LookAt, MovesTheAxisOfABagByFiveDegreesAtMost)
{
  const FaceAdapter adapter((ReadingOptions()));
  RestingFace rest;
  Face face = turned(20.f);
  face.frontEnd = FrontEnd::Ros4Hri;
  float yaw = adapter.read(face, at(0.), rest).headPosture->yaw();
  EXPECT_NEAR(20.f, yaw, tolerance);
  for (int i = 1; i <= 200; ++i)
    yaw = adapter.read(face, at(0.1 * i), rest).headPosture->yaw();
  EXPECT_NEAR(15.f, yaw, tolerance);
}

TEST(LookAt, DoesNotMoveTheAxisIfItWasAskedForOrNothingIsLearned)
{
  ReadingOptions asked;
  asked.lookAt.kind = LookAt::Kind::Axis;
  ReadingOptions unlearned;
  unlearned.rest.kind = Rest::Kind::None;
  for (const ReadingOptions& options : {asked, unlearned})
  {
    const FaceAdapter adapter(options);
    RestingFace rest;
    Face face = turned(20.f);
    face.frontEnd = FrontEnd::Ros4Hri;
    float yaw = 0.f;
    for (int i = 0; i <= 100; ++i)
      yaw = adapter.read(face, at(0.1 * i), rest).headPosture->yaw();
    EXPECT_NEAR(20.f, yaw, tolerance);
  }
}

TEST(LookAt, IsDescribedForEachOfItsKinds)
{
  const auto described = [](const char* text, bool positionIsKnown = true) {
    ReadingOptions options;
    options.lookAt = parseLookAt(text);
    return describeOrigin(options, FrontEnd::OpenFace, positionIsKnown);
  };
  EXPECT_EQ("counted from where the head rests", described("learned"));
  EXPECT_EQ("counted from where the head rests", described("learned", false));
  EXPECT_EQ("counted from the optical axis of the camera", described("axis"));
  EXPECT_EQ("counted from the line of sight to the camera", described("camera"));
  EXPECT_EQ("counted from the optical axis of the camera", described("camera", false));
  EXPECT_EQ(
      "counted from the line of sight to the robot, from the camera 0.5 m to the right, -0.25 m down, 0 m forward",
      described("0.5,-0.25,0"));
  EXPECT_EQ("counted from the optical axis of the camera", described("0.5,-0.25,0", false));
}

}  // namespace
