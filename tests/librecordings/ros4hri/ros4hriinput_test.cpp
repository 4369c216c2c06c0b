#include "librecordings/rosbag2/bagwriter.hpp"

#include <skeigiot/recordings/ros4hriinput.hpp>
#include <skeigiot/recordings/roscontent.hpp>

#include <gtest/gtest.h>

#include <boost/chrono/duration.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using boost::chrono::milliseconds;
using KV::recordings::Ros4hriInput;
using KV::recordings::Step;

/// Messages that come in one after the other, and the steps that they make.
class LiveMessages : public ::testing::Test
{
protected:
  void take(const std::string& topic, const std::string& cdr)
  {
    std::vector<char> data(cdr.begin(), cdr.end());
    input.take(topic, now, data);
  }

  std::string errorOf(const std::string& topic, const std::string& cdr)
  {
    try
    {
      take(topic, cdr);
    }
    catch (const std::runtime_error& error)
    {
      return error.what();
    }
    return "";
  }

  void see(const std::string& face) { take("/tf", support::tfMessage({support::faceFrame(face, {0., 0., 1.5})})); }

  std::vector<Step> steps()
  {
    std::vector<Step> taken;
    while (auto step = input.next())
      taken.push_back(*step);
    return taken;
  }

  /// Lets so many milliseconds pass, and returns the steps that are complete then.
  std::vector<Step> after(int passed)
  {
    now += milliseconds(passed);
    input.advance(now);
    return steps();
  }

  Ros4hriInput::TimePoint now{boost::chrono::seconds(1'700'000'000)};
  Ros4hriInput input{KV::recordings::ReadingOptions()};
};

TEST_F(LiveMessages, HaveTheTypesOfRos4hri)
{
  EXPECT_EQ("tf2_msgs/msg/TFMessage", Ros4hriInput::typeOf("/tf_static"));
  EXPECT_EQ("hri_msgs/msg/Expression", Ros4hriInput::typeOf("/humans/faces/a/expression"));
  EXPECT_EQ("std_msgs/msg/String", Ros4hriInput::typeOf("/humans/persons/a/voice_id"));
  EXPECT_EQ("std_msgs/msg/String", Ros4hriInput::typeOf("/humans/persons/a/alias"));
  EXPECT_EQ("std_msgs/msg/Bool", Ros4hriInput::typeOf("/humans/persons/a/anonymous"));
  EXPECT_EQ("hri_msgs/msg/SoftBiometrics", Ros4hriInput::typeOf("/humans/faces/a/softbiometrics"));
  EXPECT_EQ("sensor_msgs/msg/JointState", Ros4hriInput::typeOf("/joint_states"));
  EXPECT_EQ("", Ros4hriInput::typeOf("/humans/faces/a/roi"));
  EXPECT_EQ("", Ros4hriInput::typeOf("/camera/image"));
  for (std::string topic : Ros4hriInput::topics())
  {
    if (const std::size_t star = topic.find('*'); star != std::string::npos)
      topic.replace(star, 1, "a");
    EXPECT_NE("", Ros4hriInput::typeOf(topic)) << topic;
  }
  EXPECT_EQ(4U, Ros4hriInput::lists().size());
}

TEST(CharactersOfIds, AreLettersDigitsAndTheUnderscore)
{
  for (const char character : std::string("azAZ09_"))
    EXPECT_TRUE(Ros4hriInput::mayBeInId(character)) << character;
  for (const char character : std::string("`{@[/:-. ~\xe4\0", 12))
    EXPECT_FALSE(Ros4hriInput::mayBeInId(character)) << static_cast<int>(character);
}

TEST_F(LiveMessages, MakeAStepWhenNothingCanBeAddedToIt)
{
  see("f");
  EXPECT_TRUE(after(15).empty());
  const std::vector<Step> made = after(1);
  ASSERT_EQ(1U, made.size());
  EXPECT_EQ(0, *made[0].person);
  EXPECT_EQ("f", made[0].personName);
  EXPECT_TRUE(made[0].seen);
  EXPECT_TRUE(made[0].observation.headPosture);
}

TEST_F(LiveMessages, OnOtherTopicsAreIgnored)
{
  EXPECT_EQ("", errorOf("/camera/image", "anything"));
  input.finish();
  EXPECT_TRUE(steps().empty());
}

TEST_F(LiveMessages, GiveAFaceToThePersonFromThatMessageOn)
{
  see("f");
  const std::vector<Step> unknown = after(100);
  take("/humans/persons/ada/face_id", support::stringMessage("f"));
  see("f");
  const std::vector<Step> known = after(100);

  ASSERT_EQ(1U, unknown.size());
  EXPECT_EQ("f", unknown[0].personName);
  ASSERT_FALSE(known.empty());
  EXPECT_EQ("ada", known[0].personName);
  EXPECT_NE(*unknown[0].person, *known[0].person);
}

TEST_F(LiveMessages, FollowAVoiceThatChangesItsPerson)
{
  take("/humans/persons/ada/face_id", support::stringMessage("f"));
  take("/humans/persons/ben/face_id", support::stringMessage("g"));
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  take("/humans/persons/ben/voice_id", support::stringMessage("v"));
  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  see("f");
  see("g");
  for (const Step& step : after(100))
    EXPECT_EQ(step.personName == "ben", step.observation.speaking.has_value()) << step.personName;
}

TEST_F(LiveMessages, ThatAreCutOrTooLongAreRefusedByTheNameOfTheTopic)
{
  EXPECT_EQ(0U, errorOf("/tf", support::tfMessage({support::faceFrame("f", {0., 0., 1.})}).substr(0, 30))
                    .find("a message on the topic /tf is left out: "));
  EXPECT_EQ("a message on the topic /humans/faces/f/expression is left out: it has more than 1048576 bytes",
            errorOf("/humans/faces/f/expression", std::string(1048577, 'x')));
  EXPECT_NE("", errorOf("/humans/faces/f/expression", ""));
}

TEST_F(LiveMessages, OfThePastCountAsThoseOfThePresent)
{
  see("f");
  EXPECT_EQ(1U, after(100).size());
  now -= boost::chrono::hours(1);
  see("f");
  now += boost::chrono::hours(1);
  const std::vector<Step> made = after(100);
  ASSERT_EQ(1U, made.size());
  EXPECT_EQ(now - milliseconds(100), made[0].time);
}

TEST_F(LiveMessages, ThatStayAwayMakeThePersonsMissing)
{
  take("/humans/faces/tracked", support::idsMessage({"f"}));
  see("f");
  EXPECT_EQ(1U, after(100).size());
  EXPECT_EQ(now - milliseconds(100), *input.lastReceived());

  now += boost::chrono::seconds(2);
  input.fade(now);
  const std::vector<Step> missing = steps();

  ASSERT_EQ(1U, missing.size());
  EXPECT_FALSE(missing[0].seen);
  EXPECT_EQ("f", missing[0].personName);
  EXPECT_EQ(now, missing[0].time);
}

TEST_F(LiveMessages, ThatNeverCameMakeNobodyMissing)
{
  input.fade(now);
  EXPECT_TRUE(steps().empty());
  EXPECT_FALSE(input.lastReceived());
}

TEST_F(LiveMessages, GiveAForgottenPersonAnotherNumber)
{
  take("/humans/persons/ada/face_id", support::stringMessage("f"));
  see("f");
  see("g");
  const std::vector<Step> before = after(100);
  ASSERT_EQ(2U, before.size());
  for (const Step& step : before)
    input.forget(*step.person);

  see("f");
  see("g");
  std::set<std::int32_t> numbers;
  for (const Step& step : after(100))
  {
    EXPECT_TRUE(step.seen);
    numbers.insert(*step.person);
  }

  EXPECT_EQ(2U, numbers.size());
  for (const Step& step : before)
    EXPECT_EQ(0U, numbers.count(*step.person));
}

// A bag ends after 10,000 faces; a robot does not.
TEST_F(LiveMessages, GoOnAfterAnyNumberOfFaces)
{
  constexpr int faces = 21'000;
  std::set<std::int32_t> numbers;
  for (int face = 0; face < faces; ++face)
  {
    const std::string id = std::to_string(face);
    const bool hasPerson = face % 2 == 0;
    if (hasPerson)
    {
      take("/humans/persons/p" + id + "/face_id", support::stringMessage("f" + id));
      take("/humans/persons/p" + id + "/voice_id", support::stringMessage("v" + id));
      take("/humans/voices/v" + id + "/is_speaking", support::boolMessage(true));
    }
    see("f" + id);
    const std::vector<Step> made = after(1000);
    ASSERT_EQ(1U, made.size());
    ASSERT_EQ((hasPerson ? "p" : "f") + id, made[0].personName);
    ASSERT_EQ(hasPerson, made[0].observation.speaking.has_value()) << id;
    numbers.insert(*made[0].person);
    input.forget(*made[0].person);
  }
  EXPECT_EQ(static_cast<std::size_t>(faces), numbers.size());
}

TEST_F(LiveMessages, AboutFacesThatNeverComeLeaveRoomForOthers)
{
  constexpr int faces = 10'100;
  for (int face = 0; face < faces; ++face)
    take("/humans/persons/ada/face_id", support::stringMessage("f" + std::to_string(face)));
  see("alone");
  see("f10099");
  see("f0");
  std::vector<std::string> names;
  for (const Step& step : after(100))
    names.push_back(step.personName);
  EXPECT_EQ((std::vector<std::string>{"alone", "f0", "ada"}), names);
}

TEST_F(LiveMessages, OfTooManyFacesAtOnceAreRefusedOneByOne)
{
  constexpr int most = 10'000;
  for (int face = 0; face < most; ++face)
    take("/humans/faces/f" + std::to_string(face) + "/expression", support::expressionMessage("happy", 0.9f, 0.8f));
  EXPECT_EQ("a message on the topic /tf is left out: there are more than 10000 faces",
            errorOf("/tf", support::tfMessage({support::faceFrame("new", {0., 0., 1.5})})));
  EXPECT_EQ(static_cast<std::size_t>(most), after(100).size());
}

TEST_F(LiveMessages, MakeAPersonOfAVoiceWithoutAFace)
{
  take("/humans/voices/alone/is_speaking", support::boolMessage(true));
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  const std::vector<Step> spoken = after(100);
  take("/humans/voices/v/speech", support::speechMessage("", "good morning"));
  const std::vector<Step> ended = after(100);

  ASSERT_EQ(1U, spoken.size());
  EXPECT_EQ("ada", spoken[0].personName);
  EXPECT_TRUE(spoken[0].seen);
  EXPECT_TRUE(spoken[0].observation.speaking->value);
  EXPECT_FALSE(spoken[0].observation.faceDetected);
  EXPECT_EQ(now - milliseconds(200), spoken[0].time);
  EXPECT_EQ(spoken[0].time, spoken[0].observation.speaking->time);
  ASSERT_EQ(1U, ended.size());
  EXPECT_EQ(*spoken[0].person, *ended[0].person);
  EXPECT_FALSE(ended[0].observation.speaking->value);
}

TEST_F(LiveMessages, OfAVoiceWaitForTheFaceForHalfASecond)
{
  take("/humans/persons/ada/face_id", support::stringMessage("f"));
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  see("f");
  EXPECT_EQ(1U, after(100).size());
  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  EXPECT_TRUE(after(300).empty());
  see("f");
  const std::vector<Step> withFace = after(100);
  take("/humans/voices/v/is_speaking", support::boolMessage(false));
  EXPECT_TRUE(after(400).empty());
  after(1);
  const std::vector<Step> alone = after(100);

  ASSERT_EQ(1U, withFace.size());
  EXPECT_TRUE(withFace[0].observation.faceDetected);
  EXPECT_TRUE(withFace[0].observation.speaking->value);
  ASSERT_EQ(1U, alone.size());
  EXPECT_FALSE(alone[0].observation.faceDetected);
  EXPECT_FALSE(alone[0].observation.speaking->value);
  EXPECT_EQ(withFace[0].time + milliseconds(500), alone[0].time);
}

TEST_F(LiveMessages, OfAVoiceAndAFaceAreOneStepIfTheyComeTogether)
{
  take("/humans/persons/ada/face_id", support::stringMessage("f"));
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  EXPECT_TRUE(after(10).empty());
  see("f");
  const std::vector<Step> made = after(100);
  ASSERT_EQ(1U, made.size());
  EXPECT_TRUE(made[0].observation.faceDetected);
  EXPECT_TRUE(made[0].observation.speaking->value);
}

TEST_F(LiveMessages, KeepAPersonWithoutAFaceAsLongAsThePersonSpeaks)
{
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  EXPECT_EQ(1U, after(100).size());
  EXPECT_EQ(now - milliseconds(100), *input.lastReceived());

  now += boost::chrono::seconds(50);
  input.fade(now);
  EXPECT_TRUE(steps().empty());
  now += boost::chrono::seconds(11);
  input.fade(now);
  const std::vector<Step> missing = steps();
  ASSERT_EQ(1U, missing.size());
  EXPECT_FALSE(missing[0].seen);
  EXPECT_EQ("ada", missing[0].personName);
}

TEST_F(LiveMessages, KeepAPersonWithoutAFaceForASecondAfterTheLastOne)
{
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  take("/humans/voices/v/is_speaking", support::boolMessage(false));
  EXPECT_EQ(1U, after(100).size());

  now += milliseconds(900);
  input.fade(now);
  EXPECT_TRUE(steps().empty());
  now += milliseconds(100);
  input.fade(now);
  ASSERT_EQ(1U, steps().size());
}

TEST_F(LiveMessages, AboutFacesCountForTheSilenceWhereThereAreAny)
{
  see("f");
  after(100);
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  after(100);
  EXPECT_EQ(now - milliseconds(200), *input.lastReceived());
}

TEST_F(LiveMessages, MakeAForgottenPersonWithoutAFaceAnotherOne)
{
  take("/humans/persons/ada/voice_id", support::stringMessage("v"));
  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  const std::vector<Step> before = after(100);
  ASSERT_EQ(1U, before.size());
  input.forget(*before[0].person);

  take("/humans/voices/v/is_speaking", support::boolMessage(true));
  const std::vector<Step> again = after(100);
  ASSERT_EQ(1U, again.size());
  EXPECT_EQ("ada", again[0].personName);
  EXPECT_NE(*before[0].person, *again[0].person);
}

TEST_F(LiveMessages, GoOnWithThePersonOfAnAlias)
{
  take("/humans/persons/p1/face_id", support::stringMessage("f"));
  see("f");
  const std::vector<Step> before = after(100);
  take("/humans/persons/p1/alias", support::stringMessage("ada"));
  see("f");
  const std::vector<Step> known = after(100);
  take("/humans/persons/ada/face_id", support::stringMessage("g"));
  see("g");
  const std::vector<Step> withOtherFace = after(100);

  ASSERT_EQ(1U, before.size());
  EXPECT_EQ("p1", before[0].personName);
  ASSERT_EQ(1U, known.size());
  EXPECT_EQ("ada", known[0].personName);
  EXPECT_EQ(*before[0].person, *known[0].person);
  ASSERT_EQ(1U, withOtherFace.size());
  EXPECT_EQ(*before[0].person, *withOtherFace[0].person);
}

TEST_F(LiveMessages, GoOnWithAnAnonymousPersonWhoGetsAName)
{
  take("/humans/persons/p1/anonymous", support::boolMessage(true));
  take("/humans/persons/p1/face_id", support::stringMessage("f"));
  see("f");
  const std::vector<Step> before = after(100);
  take("/humans/persons/ada/face_id", support::stringMessage("f"));
  see("f");
  const std::vector<Step> known = after(100);

  ASSERT_EQ(1U, before.size());
  ASSERT_EQ(1U, known.size());
  EXPECT_EQ("ada", known[0].personName);
  EXPECT_EQ(*before[0].person, *known[0].person);
}

TEST_F(LiveMessages, AboutPersonsThatAreCutAreRefused)
{
  for (const std::string topic : {"/humans/persons/p1/alias", "/humans/persons/p1/anonymous"})
    EXPECT_EQ(0U,
              errorOf(topic, std::string("\0\1\0\0", 4)).find("a message on the topic " + topic + " is left out: "));
}

TEST_F(LiveMessages, GiveAgeAndGenderOfAFace)
{
  see("ab");
  after(100);
  take("/humans/faces/ab/softbiometrics", support::softBiometricsMessage(33, 0.5f, 1, 0.75f));
  see("ab");
  const std::vector<Step> taken = after(100);
  ASSERT_EQ(1U, taken.size());
  ASSERT_TRUE(taken[0].observation.age);
  EXPECT_EQ(33U, taken[0].observation.age->value.value);
  ASSERT_TRUE(taken[0].observation.gender);
  EXPECT_EQ(0.75f, taken[0].observation.gender->value.confidence);
}

TEST(MessagesOfTheRobot, GiveTheAnglesOfItsHead)
{
  const Ros4hriInput::TimePoint now{boost::chrono::seconds(1'700'000'000)};
  Ros4hriInput input({}, {{"head_yaw", "head_pitch"}, ""});
  const auto take = [&](const std::string& topic, const std::string& cdr) {
    std::vector<char> data(cdr.begin(), cdr.end());
    input.take(topic, now, data);
  };
  take("/joint_states", support::jointStatesMessage({"head_yaw", "head_pitch"}, {std::acos(-1.) / 4., 0.}));
  take("/tf", support::tfMessage({support::faceFrame("ab", {0., 0., 1.5})}));
  input.advance(now + milliseconds(100));
  const auto step = input.next();
  ASSERT_TRUE(step);
  ASSERT_TRUE(step->observation.robotHeadPosture);
  EXPECT_FLOAT_EQ(45.f, step->observation.robotHeadPosture->value.yaw);
}

TEST(ClockOfTheRobot, IsInNanoseconds)
{
  const std::string cdr = support::clockMessage(1'700'000'000'000'000'001);
  std::vector<char> data(cdr.begin(), cdr.end());
  EXPECT_EQ(1'700'000'000'000'000'001, KV::recordings::rosClockIn(data));
}

}  // namespace
