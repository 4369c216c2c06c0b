#include "ros4hri/ros4hristeps.hpp"

#include "support/thrown.hpp"

#include <boost/chrono/duration.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace
{

using boost::chrono::milliseconds;
using KV::recordings::RobotHead;
using KV::recordings::RosbagCycles;
using KV::recordings::RosbagPersons;
using KV::recordings::RosJointStates;
using KV::recordings::RosMessageError;
using KV::recordings::RosSoftBiometrics;
using KV::recordings::RosTransform;
using KV::recordings::Step;

constexpr RosbagCycles::TimePoint beginning{boost::chrono::seconds(1577836800)};
const double pi = std::acos(-1.);

/// Returns a frame that is turned about the z axis of its parent, counterclockwise.
RosTransform frame(const std::string& parent, const std::string& child, double degrees = 0.)
{
  const double half = degrees * pi / 360.;
  return {parent, child, {0., 0., 1.}, {0., 0., std::sin(half), std::cos(half)}};
}

/// A camera that looks along the x axis of its parent, as an optical frame does.
RosTransform opticalFrame(const std::string& parent)
{
  return {parent, "camera_optical", {}, {-0.5, 0.5, -0.5, 0.5}};
}

class RobotMessages : public ::testing::Test
{
protected:
  explicit RobotMessages(RobotHead head = {}) : cycles({}, persons, false, std::move(head)) {}

  void advanceTo(int time) { cycles.advance(beginning + milliseconds(time)); }

  void face(const std::string& id) { cycles.transform({frame("camera_optical", "face_" + id)}); }

  /// Returns the steps of all cycles, also of the last one.
  std::vector<Step> steps()
  {
    cycles.finish();
    std::vector<Step> all;
    while (auto step = cycles.take())
      all.push_back(*step);
    return all;
  }

  RosbagPersons persons;
  RosbagCycles cycles;
};

TEST_F(RobotMessages, GiveAgeAndGenderWithTheNextFrameOfTheFace)
{
  advanceTo(0);
  face("ab");
  advanceTo(100);
  cycles.softBiometrics("ab", {33, 0.5f, RosSoftBiometrics::female, 0.75f});
  advanceTo(120);
  face("ab");
  const std::vector<Step> all = steps();
  ASSERT_EQ(2U, all.size());
  EXPECT_FALSE(all[0].observation.age);
  ASSERT_TRUE(all[1].observation.age);
  EXPECT_EQ(33U, all[1].observation.age->value.value);
  EXPECT_EQ(0.5f, all[1].observation.age->value.confidence);
  EXPECT_EQ(beginning + milliseconds(100), all[1].observation.age->time) << "when it came in";
  ASSERT_TRUE(all[1].observation.gender);
  EXPECT_TRUE(all[1].observation.gender->value.value) << "female";
  EXPECT_EQ(0.75f, all[1].observation.gender->value.confidence);
}

TEST_F(RobotMessages, SayWhenOneAboutAFaceCameInLast)
{
  EXPECT_FALSE(cycles.lastReceived());
  advanceTo(0);
  face("ab");
  EXPECT_EQ(beginning, cycles.lastReceived().value());
  advanceTo(100);
  cycles.softBiometrics("ab", {33, 0.5f, RosSoftBiometrics::female, 0.75f});
  EXPECT_EQ(beginning + milliseconds(100), cycles.lastReceived().value());
  advanceTo(200);
  cycles.trackedFaces({});
  EXPECT_EQ(beginning + milliseconds(200), cycles.lastReceived().value());
}

TEST_F(RobotMessages, LeaveOutAgeAndGenderWithoutConfidence)
{
  advanceTo(0);
  cycles.softBiometrics("ab", {33, 0.f, RosSoftBiometrics::female, 0.f});
  EXPECT_THAT(steps(), ::testing::IsEmpty()) << "it says nothing, so it is no sign of the face";

  advanceTo(1000);
  cycles.softBiometrics("ab", {33, 0.5f, 0, 0.9f});
  cycles.softBiometrics("cd", {0, 0.f, RosSoftBiometrics::male, 0.9f});
  const std::vector<Step> all = steps();
  ASSERT_EQ(2U, all.size());
  EXPECT_TRUE(all[0].observation.age);
  EXPECT_FALSE(all[0].observation.gender) << "neither female nor male";
  EXPECT_FALSE(all[1].observation.age);
  ASSERT_TRUE(all[1].observation.gender);
  EXPECT_FALSE(all[1].observation.gender->value.value) << "male";
}

TEST_F(RobotMessages, GiveAPersonWithTwoFacesOneStep)
{
  persons.addFace("anna", "ab");
  persons.addFace("anna", "cd");
  advanceTo(0);
  cycles.transform({frame("camera_optical", "face_ab"), frame("camera_optical", "face_cd")});
  const std::vector<Step> all = steps();
  ASSERT_EQ(1U, all.size());
  EXPECT_EQ("anna", all[0].personName);
}

TEST_F(RobotMessages, GiveTheVoiceWithTheNextFrameOfTheFace)
{
  persons.addFace("anna", "ab");
  persons.addVoice("anna", "v1");
  persons.addVoice("berta", "v2");
  advanceTo(0);
  face("ab");
  advanceTo(50);
  cycles.speaking("v1", true);
  cycles.speaking("v2", true);
  cycles.speaking("nobody's", true);
  advanceTo(100);
  face("ab");
  const std::vector<Step> all = steps();
  ASSERT_EQ(3U, all.size());
  EXPECT_FALSE(all[0].observation.speaking);
  EXPECT_EQ("berta", all[1].personName) << "a person without a face is there by voice alone";
  EXPECT_EQ(beginning + milliseconds(50), all[1].time);
  EXPECT_EQ("anna", all[2].personName);
  ASSERT_TRUE(all[2].observation.speaking);
  EXPECT_EQ(beginning + milliseconds(50), all[2].observation.speaking->time);
}

TEST_F(RobotMessages, RefuseMoreFramesThanTheyKeep)
{
  advanceTo(0);
  std::vector<RosTransform> frames;
  for (std::size_t i = 0; i <= KV::recordings::TransformTree::mostFrames; ++i)
    frames.push_back(frame("base_link", "frame" + std::to_string(i)));
  EXPECT_EQ("there are more than " + std::to_string(KV::recordings::TransformTree::mostFrames) + " frames",
            support::textThrownBy<RosMessageError>([&] { cycles.transform(frames); }));
}

TEST_F(RobotMessages, HaveNoAnglesOfTheHeadWithoutKnowingItsJoints)
{
  advanceTo(0);
  cycles.joints({{"", "head_yaw"}, {1., 1.}});
  face("ab");
  const std::vector<Step> all = steps();
  ASSERT_EQ(1U, all.size());
  EXPECT_FALSE(all[0].observation.robotHeadPosture);
}

class MessagesOfJoints : public RobotMessages
{
protected:
  MessagesOfJoints() : RobotMessages(RobotHead{{"head_yaw", "head_pitch"}, ""}) {}
};

TEST_F(MessagesOfJoints, GiveTheAnglesOfTheHeadInDegreesOnceToEachPerson)
{
  advanceTo(0);
  cycles.joints({{"wheel", "head_pitch", "head_yaw"}, {9., -pi / 6., pi / 2.}});
  advanceTo(10);
  face("ab");
  face("cd");
  advanceTo(200);
  face("ab");
  const std::vector<Step> all = steps();
  ASSERT_EQ(3U, all.size());
  for (std::size_t i = 0; i < 2; ++i)
  {
    ASSERT_TRUE(all[i].observation.robotHeadPosture) << i;
    EXPECT_EQ(beginning, all[i].observation.robotHeadPosture->time);
    EXPECT_FLOAT_EQ(90.f, all[i].observation.robotHeadPosture->value.yaw);
    EXPECT_FLOAT_EQ(-30.f, all[i].observation.robotHeadPosture->value.pitch);
  }
  EXPECT_FALSE(all[2].observation.robotHeadPosture) << "the same angles as before";
}

TEST_F(MessagesOfJoints, KeepTheAngleOfAJointThatAMessageDoesNotHave)
{
  advanceTo(0);
  cycles.joints({{"head_yaw", "head_pitch"}, {pi / 2., pi / 6.}});
  cycles.joints({{"head_yaw", "head_pitch"}, {pi / 4.}});
  cycles.joints({{"head_pitch"}, {std::numeric_limits<double>::quiet_NaN()}});
  face("ab");
  const std::vector<Step> all = steps();
  ASSERT_EQ(1U, all.size());
  ASSERT_TRUE(all[0].observation.robotHeadPosture);
  EXPECT_FLOAT_EQ(45.f, all[0].observation.robotHeadPosture->value.yaw);
  EXPECT_FLOAT_EQ(30.f, all[0].observation.robotHeadPosture->value.pitch);
}

TEST_F(MessagesOfJoints, GiveTheAnglesOfTheHeadToThoseWhoAreHeard)
{
  persons.addVoice("anna", "v1");
  advanceTo(0);
  cycles.joints({{"head_yaw"}, {pi / 4.}});
  cycles.speaking("v1", true);
  const std::vector<Step> all = steps();
  ASSERT_EQ(1U, all.size());
  ASSERT_TRUE(all[0].observation.robotHeadPosture);
  EXPECT_FLOAT_EQ(45.f, all[0].observation.robotHeadPosture->value.yaw);
}

class FramesOfTheBody : public RobotMessages
{
protected:
  FramesOfTheBody() : RobotMessages(RobotHead{{}, "base_link"}) {}
};

TEST_F(FramesOfTheBody, GiveTheAnglesOfTheCamera)
{
  advanceTo(0);
  cycles.transform({frame("base_link", "head", 30.), opticalFrame("head")});
  face("ab");
  advanceTo(200);
  cycles.transform({frame("base_link", "head", -60.)});
  face("ab");
  const std::vector<Step> all = steps();
  ASSERT_EQ(2U, all.size());
  ASSERT_TRUE(all[0].observation.robotHeadPosture);
  EXPECT_NEAR(30.f, all[0].observation.robotHeadPosture->value.yaw, 1e-4f);
  EXPECT_NEAR(0.f, all[0].observation.robotHeadPosture->value.pitch, 1e-4f);
  ASSERT_TRUE(all[1].observation.robotHeadPosture);
  EXPECT_NEAR(-60.f, all[1].observation.robotHeadPosture->value.yaw, 1e-4f);
}

TEST_F(FramesOfTheBody, GiveNoAnglesToThoseWhoAreHeardWhileNobodyIsSeen)
{
  persons.addVoice("anna", "v1");
  advanceTo(0);
  cycles.transform({frame("base_link", "head", 30.), opticalFrame("head")});
  cycles.speaking("v1", true);
  const std::vector<Step> all = steps();
  ASSERT_EQ(1U, all.size());
  EXPECT_TRUE(all[0].observation.speaking->value);
  EXPECT_FALSE(all[0].observation.robotHeadPosture);
}

TEST_F(FramesOfTheBody, GiveNoAnglesIfTheCameraIsNotPartOfTheBody)
{
  advanceTo(0);
  face("ab");
  const std::vector<Step> all = steps();
  ASSERT_EQ(1U, all.size());
  EXPECT_FALSE(all[0].observation.robotHeadPosture);
}

}  // namespace
