#include "support/clocktest.hpp"

#include <skeigiot/personobservation.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace
{

using KV::PersonObservation;
using support::milliseconds;
using support::start;

template <typename T>
using OptionalReading = boost::optional<KV::Timestamped<T>>;

TEST(PersonObservation, HoldsNoReadingByDefault)
{
  const PersonObservation observation;

  EXPECT_FALSE(observation.lookingAtRobot);
  EXPECT_FALSE(observation.headHeight);
  EXPECT_FALSE(observation.distance);
  EXPECT_FALSE(observation.gaze);
  EXPECT_FALSE(observation.smile);
  EXPECT_FALSE(observation.expressions);
  EXPECT_FALSE(observation.headPosture);
  EXPECT_FALSE(observation.gender);
  EXPECT_FALSE(observation.age);
  EXPECT_FALSE(observation.faceDetected);
  EXPECT_FALSE(observation.facialPoints);
  EXPECT_FALSE(observation.voiceEmotion);
  EXPECT_FALSE(observation.asrEmotion);
  EXPECT_FALSE(observation.touchEmotion);
  EXPECT_FALSE(observation.contextEmotion);
  EXPECT_FALSE(observation.speaking);
  EXPECT_FALSE(observation.robotHeadPosture);
}

TEST(PersonObservation, HoldsOptionalTimestampedReadings)
{
  using O = PersonObservation;
  EXPECT_TRUE((std::is_same_v<OptionalReading<bool>, decltype(O::lookingAtRobot)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<float>, decltype(O::headHeight)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<float>, decltype(O::distance)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::Gaze>, decltype(O::gaze)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::Smile>, decltype(O::smile)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::Expressions>, decltype(O::expressions)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::HeadPosture>, decltype(O::headPosture)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::ValueConfidence<bool>>, decltype(O::gender)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::ValueConfidence<unsigned int>>, decltype(O::age)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<bool>, decltype(O::faceDetected)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::FacialPoints>, decltype(O::facialPoints)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::VoiceEmotion>, decltype(O::voiceEmotion)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<float>, decltype(O::asrEmotion)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<std::int32_t>, decltype(O::touchEmotion)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::ContextEmotion>, decltype(O::contextEmotion)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<bool>, decltype(O::speaking)>));
  EXPECT_TRUE((std::is_same_v<OptionalReading<KV::RobotHeadPosture>, decltype(O::robotHeadPosture)>));
}

TEST(PersonObservation, HoldsReadingsOfDifferentTimes)
{
  PersonObservation observation;
  observation.distance = KV::Timestamped<float>(start, 1.5f);
  observation.speaking = KV::Timestamped<bool>(start - milliseconds(40), true);

  EXPECT_EQ(start, observation.distance->time);
  EXPECT_EQ(1.5f, observation.distance->value);
  EXPECT_EQ(start - milliseconds(40), observation.speaking->time);
  EXPECT_TRUE(observation.speaking->value);
}

TEST(PersonObservation, IsCopiedByValue)
{
  PersonObservation original;
  original.distance = KV::Timestamped<float>(start, 1.5f);
  PersonObservation copy = original;

  copy.distance->value = 3.f;
  copy.distance.reset();

  ASSERT_TRUE(original.distance);
  EXPECT_EQ(1.5f, original.distance->value);
}

}  // namespace
