#include <skeigiot/leaveoutahead.hpp>

#include "support/clocktest.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{

using support::start;

KV::PersonObservation observationAt(ko::SystemClock::time_point time)
{
  KV::PersonObservation observation;
  observation.gaze.emplace(time, KV::Gaze(1.f, 2.f));
  observation.speaking.emplace(time, true);
  return observation;
}

TEST(LeaveOutAhead, LeavesAnObservationWithoutReadingsAsItIs)
{
  KV::PersonObservation observation;
  EXPECT_EQ(0U, KV::leaveOutAhead(observation, start));
}

TEST(LeaveOutAhead, KeepsWhatIsAsLateAsAllowed)
{
  KV::PersonObservation observation = observationAt(start);

  EXPECT_EQ(0U, KV::leaveOutAhead(observation, start));
  EXPECT_TRUE(observation.gaze);
  EXPECT_TRUE(observation.speaking);
}

TEST(LeaveOutAhead, TakesOutWhatIsANanosecondLater)
{
  KV::PersonObservation observation = observationAt(start);
  observation.gaze->time += support::nanoseconds(1);

  EXPECT_EQ(1U, KV::leaveOutAhead(observation, start));
  EXPECT_FALSE(observation.gaze);
  EXPECT_TRUE(observation.speaking);
}

TEST(LeaveOutAhead, ComparesTimesAtBothEndsOf64Bits)
{
  constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
  KV::PersonObservation old = observationAt(support::atNanoseconds(least));
  KV::PersonObservation ahead = observationAt(support::atNanoseconds(greatest));

  EXPECT_EQ(0U, KV::leaveOutAhead(old, support::atNanoseconds(greatest)));
  EXPECT_EQ(2U, KV::leaveOutAhead(ahead, support::atNanoseconds(least)));
}

TEST(LeaveOutAhead, LooksAtEveryReading)
{
  const auto ahead = start + support::nanoseconds(1);
  KV::PersonObservation observation = observationAt(ahead);
  observation.lookingAtRobot.emplace(ahead, true);
  observation.headHeight.emplace(ahead, 1.f);
  observation.distance.emplace(ahead, 1.f);
  observation.smile.emplace(ahead, KV::Smile());
  observation.expressions.emplace(ahead, KV::Expressions());
  observation.headPosture.emplace(ahead, KV::HeadPosture());
  observation.gender.emplace(ahead, KV::ValueConfidence<bool>());
  observation.age.emplace(ahead, KV::ValueConfidence<unsigned int>());
  observation.faceDetected.emplace(ahead, true);
  observation.facialPoints.emplace(ahead, KV::FacialPoints());
  observation.voiceEmotion.emplace(ahead, KV::VoiceEmotion());
  observation.asrEmotion.emplace(ahead, 1.f);
  observation.touchEmotion.emplace(ahead, 1);
  observation.contextEmotion.emplace(ahead, KV::ContextEmotion(1, 1.f));
  observation.robotHeadPosture.emplace(ahead, KV::RobotHeadPosture());

  EXPECT_EQ(17U, KV::leaveOutAhead(observation, start));
  EXPECT_EQ(0U, KV::leaveOutAhead(observation, start)) << "none is left";
}

}  // namespace
