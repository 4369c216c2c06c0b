#include <skeigiot/isfinite.hpp>

#include "support/randomobservations.hpp"
#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

namespace
{

using KV::PersonObservation;

using Limits = std::numeric_limits<float>;

class IsFinite : public support::ClockTest
{
protected:
  template <typename T>
  static PersonObservation::Reading<T> now(const T& value)
  {
    return KV::Timestamped<T>(support::start, value);
  }

  /// An observation with every reading, and every number in its usual range.
  static PersonObservation complete()
  {
    PersonObservation observation;
    observation.lookingAtRobot = now(true);
    observation.headHeight = now(1.7f);
    observation.distance = now(1.f);
    observation.gaze = now(KV::Gaze(1.f, 2.f));
    observation.smile = now(KV::Smile(0.5f, 1.f));
    observation.expressions = now(KV::Expressions());
    observation.headPosture = now(KV::HeadPosture(1.f, 2.f, 3.f));
    observation.gender = now(KV::ValueConfidence<bool>(true, 1.f));
    observation.age = now(KV::ValueConfidence<unsigned int>(30, 1.f));
    observation.faceDetected = now(true);
    observation.facialPoints = now(KV::FacialPoints());
    observation.voiceEmotion = now(KV::VoiceEmotion());
    observation.asrEmotion = now(0.5f);
    observation.touchEmotion = now(1);
    observation.contextEmotion = now(KV::ContextEmotion(1, 5.f));
    observation.speaking = now(false);
    observation.robotHeadPosture = now(KV::RobotHeadPosture(1.f, 2.f));
    return observation;
  }

  static int countReadings(const PersonObservation& o)
  {
    return countOf(o.lookingAtRobot, o.headHeight, o.distance, o.gaze, o.smile, o.expressions, o.headPosture, o.gender,
                   o.age, o.faceDetected, o.facialPoints, o.voiceEmotion, o.asrEmotion, o.touchEmotion,
                   o.contextEmotion, o.speaking, o.robotHeadPosture);
  }

private:
  template <typename... Readings>
  static int countOf(const Readings&... readings)
  {
    return (static_cast<int>(readings.has_value()) + ...);
  }
};

TEST_F(IsFinite, HoldsForAnObservationWithoutReadings)
{
  PersonObservation observation;

  EXPECT_TRUE(KV::isFinite(observation));
  EXPECT_EQ(0U, KV::leaveOutNonFinite(observation));
}

TEST_F(IsFinite, LeavesAnObservationOfFiniteReadingsAsItIs)
{
  PersonObservation observation = complete();

  EXPECT_TRUE(KV::isFinite(observation));
  EXPECT_EQ(0U, KV::leaveOutNonFinite(observation));
  EXPECT_EQ(17, countReadings(observation));
}

TEST_F(IsFinite, HoldsForWhateverFiniteReadingsAreMadeAtRandom)
{
  support::RandomObservations random(20261121);
  for (int i = 0; i < 1000; ++i)
    ASSERT_TRUE(KV::isFinite(random.next())) << "observation " << i;
}

// One row for each number of an observation.
struct NumberCase
{
  const char* name;
  std::function<void(PersonObservation&, float)> set;
};

class IsFiniteNumber : public IsFinite, public ::testing::WithParamInterface<NumberCase>
{
protected:
  static PersonObservation with(float number)
  {
    PersonObservation observation = complete();
    GetParam().set(observation, number);
    return observation;
  }
};

TEST_P(IsFiniteNumber, IsNotFiniteIfItIsNanInfiniteOrTooGreat)
{
  for (const float number :
       {Limits::quiet_NaN(), -Limits::quiet_NaN(), Limits::signaling_NaN(), Limits::infinity(), -Limits::infinity(),
        Limits::max(), Limits::lowest(), std::nextafter(KV::greatestReading, Limits::max())})
  {
    PersonObservation observation = with(number);

    EXPECT_FALSE(KV::isFinite(observation)) << number;
    EXPECT_EQ(1U, KV::leaveOutNonFinite(observation)) << number;
    EXPECT_EQ(16, countReadings(observation)) << number;
    EXPECT_TRUE(KV::isFinite(observation)) << number;
  }
}

TEST_P(IsFiniteNumber, IsFiniteUpToTheGreatestReading)
{
  for (const float number :
       {KV::greatestReading, -KV::greatestReading, 0.f, -0.f, Limits::denorm_min(), -Limits::denorm_min()})
  {
    PersonObservation observation = with(number);

    EXPECT_TRUE(KV::isFinite(observation)) << number;
    EXPECT_EQ(0U, KV::leaveOutNonFinite(observation)) << number;
    EXPECT_EQ(17, countReadings(observation)) << number;
  }
}

template <KV::ValueConfidence<float> KV::Expressions::*Score>
void setValue(PersonObservation& o, float number)
{
  (o.expressions->value.*Score).value = number;
}

template <KV::ValueConfidence<float> KV::Expressions::*Score>
void setConfidence(PersonObservation& o, float number)
{
  (o.expressions->value.*Score).confidence = number;
}

template <KV::ValueConfidence<float> KV::Expressions::*Score>
void setVoice(PersonObservation& o, float number)
{
  (static_cast<KV::Expressions&>(o.voiceEmotion->value).*Score).value = number;
}

void setPoint(PersonObservation& o, KV::PointDescription point, KV::FacialPoints::Point value)
{
  o.facialPoints->value.setFacialPoint(point, value);
}

const NumberCase numbers[] = {
    {"HeadHeight", [](PersonObservation& o, float number) { o.headHeight->value = number; }},
    {"Distance", [](PersonObservation& o, float number) { o.distance->value = number; }},
    {"GazeYaw", [](PersonObservation& o, float number) { o.gaze->value.yaw = number; }},
    {"GazePitch", [](PersonObservation& o, float number) { o.gaze->value.pitch = number; }},
    {"SmileValue", [](PersonObservation& o, float number) { o.smile->value.value = number; }},
    {"SmileConfidence", [](PersonObservation& o, float number) { o.smile->value.confidence = number; }},
    {"Calm", setValue<&KV::Expressions::calm>},
    {"Anger", setValue<&KV::Expressions::anger>},
    {"Joy", setValue<&KV::Expressions::joy>},
    {"Sorrow", setValue<&KV::Expressions::sorrow>},
    {"Laughter", setValue<&KV::Expressions::laughter>},
    {"Excitement", setValue<&KV::Expressions::excitement>},
    {"Surprise", setValue<&KV::Expressions::surprise>},
    {"ConfidenceOfCalm", setConfidence<&KV::Expressions::calm>},
    {"ConfidenceOfSurprise", setConfidence<&KV::Expressions::surprise>},
    {"HeadYaw", [](PersonObservation& o, float number) { o.headPosture->value.setYaw(number); }},
    {"HeadPitch", [](PersonObservation& o, float number) { o.headPosture->value.setPitch(number); }},
    {"HeadRoll", [](PersonObservation& o, float number) { o.headPosture->value.setRoll(number); }},
    {"ConfidenceOfGender", [](PersonObservation& o, float number) { o.gender->value.confidence = number; }},
    {"ConfidenceOfAge", [](PersonObservation& o, float number) { o.age->value.confidence = number; }},
    {"PointX",
     [](PersonObservation& o, float number) {
       setPoint(o, KV::FacialPoint0, {{number, 0.f}, 1.f});
     }},
    {"PointY",
     [](PersonObservation& o, float number) {
       setPoint(o, KV::FacialPoint7, {{0.f, number}, 1.f});
     }},
    {"ConfidenceOfTheLastPoint",
     [](PersonObservation& o, float number) {
       setPoint(o, KV::FacialPoint11, {{0.f, 0.f}, number});
     }},
    {"CalmVoice", setVoice<&KV::Expressions::calm>},
    {"JoyfulVoice", setVoice<&KV::Expressions::joy>},
    {"AsrEmotion", [](PersonObservation& o, float number) { o.asrEmotion->value = number; }},
    {"ContextLifetime", [](PersonObservation& o, float number) { o.contextEmotion->value.lifetime = number; }},
    {"RobotYaw", [](PersonObservation& o, float number) { o.robotHeadPosture->value.yaw = number; }},
    {"RobotPitch", [](PersonObservation& o, float number) { o.robotHeadPosture->value.pitch = number; }}};

INSTANTIATE_TEST_SUITE_P(OfEachReading, IsFiniteNumber, ::testing::ValuesIn(numbers), support::RowName());

TEST_F(IsFinite, LeavesOutEachReadingThatIsNot)
{
  PersonObservation observation = complete();
  observation.gaze->value.yaw = Limits::quiet_NaN();
  observation.headPosture->value.setYaw(Limits::infinity());
  observation.smile->value.value = Limits::max();

  EXPECT_EQ(3U, KV::leaveOutNonFinite(observation));
  EXPECT_FALSE(observation.gaze);
  EXPECT_FALSE(observation.headPosture);
  EXPECT_FALSE(observation.smile);
  EXPECT_EQ(14, countReadings(observation));
}

TEST_F(IsFinite, ReportsSingleReadings)
{
  constexpr float nan = Limits::quiet_NaN();
  EXPECT_TRUE(KV::isFinite(KV::Gaze(1.f, 1.f)));
  EXPECT_FALSE(KV::isFinite(KV::Gaze(1.f, nan)));
  EXPECT_FALSE(KV::isFinite(KV::HeadPosture(1.f, 1.f, nan)));
  EXPECT_FALSE(KV::isFinite(KV::RobotHeadPosture(nan, 1.f)));
  EXPECT_FALSE(KV::isFinite(KV::Smile(nan, 1.f)));
  EXPECT_FALSE(KV::isFinite(KV::ContextEmotion(1, nan)));
  EXPECT_TRUE(KV::isFinite(KV::VoiceEmotion()));
  EXPECT_TRUE(KV::isFinite(KV::FacialPoints()));
}

}  // namespace
