#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/clocktest.hpp"
#include "support/scriptedclock.hpp"
#include "support/tablename.hpp"

#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>

#include "personmemoryprivate.hpp"

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>
#include <boost/thread/mutex.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

using KV::PersonMemory;
using KV::PersonMemoryPrivate;
using KV::PersonObservation;
using KV::Timestamped;
using support::hours;
using support::milliseconds;
using support::nanoseconds;
using support::seconds;
using support::start;
using ::testing::ElementsAre;
using Time = ko::SystemClock::time_point;

/// Calls `action` with each of the memories, in the order of their members.
template <typename Action>
void forEachMemory(PersonMemoryPrivate& memory, Action action)
{
  action(memory.headPostureMemory);
  action(memory.distanceMemory);
  action(memory.lookingAtRobotMemory);
  action(memory.smileMemory);
  action(memory.gazeMemory);
  action(memory.expressionsMemory);
  action(memory.genderMemory);
  action(memory.ageMemory);
  action(memory.faceDetectedMemory);
  action(memory.facialPointsMemory);
  action(memory.touchEmotionMemory);
  action(memory.asrEmotionMemory);
  action(memory.contextEmotionMemory);
  action(memory.speakingMemory);
  action(memory.robotHeadPostureMemory);
}

std::size_t recordCount(PersonMemoryPrivate& memory)
{
  std::size_t count = 0;
  forEachMemory(memory, [&count](const auto& one) { count += one.records().size(); });
  return count;
}

int lockedCount(PersonMemoryPrivate& memory)
{
  int count = 0;
  forEachMemory(memory, [&count](const auto& one) {
    if (one.mutex().try_lock())
      one.mutex().unlock();
    else
      ++count;
  });
  return count;
}

/// One kind of reading, with its memory.
struct Kind
{
  std::string name;
  std::function<void(PersonObservation&, Time)> observe;
  std::function<std::vector<Time>(const PersonMemoryPrivate&)> rememberedTimes;
};

template <typename T>
Kind kind(const char* name, PersonObservation::Reading<T> PersonObservation::*reading,
          KV::ShortTermMemory<T> PersonMemoryPrivate::*memory, const T& value)
{
  return {name, [=](PersonObservation& observation, Time time) { observation.*reading = Timestamped<T>(time, value); },
          [=](const PersonMemoryPrivate& all) {
            std::vector<Time> times;
            for (const Timestamped<T>& record : (all.*memory).records())
              times.push_back(record.time);
            return times;
          }};
}

std::vector<Kind> rememberedKinds()
{
  using O = PersonObservation;
  using M = PersonMemoryPrivate;
  return {kind("HeadPosture", &O::headPosture, &M::headPostureMemory, KV::HeadPosture(1.f, 2.f, 3.f)),
          kind("Distance", &O::distance, &M::distanceMemory, 1.5f),
          kind("LookingAtRobot", &O::lookingAtRobot, &M::lookingAtRobotMemory, true),
          kind("Smile", &O::smile, &M::smileMemory, KV::Smile(0.5f, 0.25f)),
          kind("Gaze", &O::gaze, &M::gazeMemory, KV::Gaze(1.f, 2.f)),
          kind("Expressions", &O::expressions, &M::expressionsMemory, KV::Expressions()),
          kind("Gender", &O::gender, &M::genderMemory, KV::ValueConfidence<bool>(true, 1.f)),
          kind("Age", &O::age, &M::ageMemory, KV::ValueConfidence<unsigned int>(40, 1.f)),
          kind("FaceDetected", &O::faceDetected, &M::faceDetectedMemory, true),
          kind("FacialPoints", &O::facialPoints, &M::facialPointsMemory, KV::FacialPoints()),
          kind("TouchEmotion", &O::touchEmotion, &M::touchEmotionMemory, std::int32_t{1}),
          kind("AsrEmotion", &O::asrEmotion, &M::asrEmotionMemory, 0.5f),
          kind("ContextEmotion", &O::contextEmotion, &M::contextEmotionMemory, KV::ContextEmotion(1, 2.f)),
          kind("Speaking", &O::speaking, &M::speakingMemory, true),
          kind("RobotHeadPosture", &O::robotHeadPosture, &M::robotHeadPostureMemory, KV::RobotHeadPosture(1.f, 2.f))};
}

void PrintTo(const Kind& kind, std::ostream* stream)
{
  *stream << kind.name;
}

class PersonMemoryOfKind : public support::ClockTestWithParam<Kind>
{
protected:
  PersonObservation observationAt(Time time) const
  {
    PersonObservation observation;
    GetParam().observe(observation, time);
    return observation;
  }

  std::vector<Time> times() const { return GetParam().rememberedTimes(memory); }

  /// The context outlasts the moment; everything else is remembered for 7 s.
  milliseconds horizon() const { return milliseconds(GetParam().name == "ContextEmotion" ? 20000 : 7000); }

  PersonMemoryPrivate memory;
};

TEST_P(PersonMemoryOfKind, FilesAReadingInItsOwnMemoryOnly)
{
  memory.add(observationAt(start));

  EXPECT_THAT(times(), ElementsAre(start));
  EXPECT_EQ(1u, recordCount(memory));
}

TEST_P(PersonMemoryOfKind, FilesAReadingUnderItsOwnTime)
{
  memory.add(observationAt(start - milliseconds(40)));
  memory.add(observationAt(start + hours(1)));

  EXPECT_THAT(times(), ElementsAre(start + hours(1), start - milliseconds(40)));
}

TEST_P(PersonMemoryOfKind, DiscardsASecondReadingOfOneTime)
{
  memory.add(observationAt(start));
  memory.add(observationAt(start));

  EXPECT_THAT(times(), ElementsAre(start));
}

TEST_P(PersonMemoryOfKind, KeepsAReadingAsOldAsItsHorizon)
{
  memory.add(observationAt(start - horizon() - nanoseconds(999999)));

  EXPECT_EQ(1u, times().size());
}

TEST_P(PersonMemoryOfKind, ForgetsAReadingOlderThanItsHorizonAtOnce)
{
  memory.add(observationAt(start - horizon() - milliseconds(1)));

  EXPECT_EQ(0u, recordCount(memory));
}

TEST_P(PersonMemoryOfKind, KeepsOldRecordsWhileTheReadingIsAbsent)
{
  memory.add(observationAt(start));
  clock.advance(hours(1));

  memory.add(PersonObservation());

  EXPECT_THAT(times(), ElementsAre(start));
}

TEST_P(PersonMemoryOfKind, ForgetsOldRecordsWhenAReadingIsFiled)
{
  memory.add(observationAt(start));
  clock.advance(hours(1));

  memory.add(observationAt(start + hours(1)));

  EXPECT_THAT(times(), ElementsAre(start + hours(1)));
}

TEST_P(PersonMemoryOfKind, LocksOneMemoryAtATime)
{
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);
  int leastLocked = 15;
  int mostLocked = 0;
  counting.restart([&](int) {
    leastLocked = std::min(leastLocked, lockedCount(memory));
    mostLocked = std::max(mostLocked, lockedCount(memory));
    return start;
  });

  memory.add(observationAt(start));

  EXPECT_GT(counting.readings(), 0);
  EXPECT_EQ(1, leastLocked) << "records are judged under their own mutex";
  EXPECT_EQ(1, mostLocked);
  EXPECT_EQ(0, lockedCount(memory));
}

TEST_P(PersonMemoryOfKind, WritesNothingToTheLogOrToStandardOutput)
{
  const support::CapturedLog log;
  const support::CapturedStandardOutput standardOutput;
  const support::CapturedStandardError standardError;

  memory.add(observationAt(start));
  memory.add(observationAt(start - hours(1)));

  EXPECT_TRUE(log.empty());
  EXPECT_EQ("", standardOutput.text());
  EXPECT_EQ("", standardError.text());
}

INSTANTIATE_TEST_SUITE_P(Each, PersonMemoryOfKind, ::testing::ValuesIn(rememberedKinds()), support::RowName());

class PersonMemoryTest : public support::ClockTest
{
protected:
  PersonMemoryPrivate memory;
  PersonObservation observation;
};

TEST_F(PersonMemoryTest, StartsWithEveryMemoryEmpty)
{
  EXPECT_EQ(0u, recordCount(memory));
}

TEST_F(PersonMemoryTest, RemembersTheContextForTwentySecondsAndTheRestForSeven)
{
  std::vector<milliseconds> horizons;
  forEachMemory(memory, [&horizons](const auto& one) { horizons.push_back(one.horizon()); });

  std::vector<milliseconds> expected(15, milliseconds(7000));
  expected[12] = milliseconds(20000);
  EXPECT_EQ(expected, horizons);
  EXPECT_EQ(milliseconds(20000), memory.contextEmotionMemory.horizon());
}

TEST_F(PersonMemoryTest, IsNotChangedByAnEmptyObservation)
{
  memory.add(observation);

  EXPECT_EQ(0u, recordCount(memory));
}

TEST_F(PersonMemoryTest, DoesNotReadTheClockForAnEmptyObservation)
{
  for (const Kind& kind : rememberedKinds())
    kind.observe(observation, start);
  memory.add(observation);
  support::ScriptedClock counting(support::standingAt(start));
  const ko::ScopedClockSource countingScope(counting);

  memory.add(PersonObservation());

  EXPECT_EQ(0, counting.readings());
}

TEST_F(PersonMemoryTest, RemembersNeitherHeadHeightNorVoice)
{
  observation.headHeight = Timestamped<float>(start, 1.7f);
  observation.voiceEmotion = Timestamped<KV::VoiceEmotion>(start, KV::VoiceEmotion());

  memory.add(observation);

  EXPECT_EQ(0u, recordCount(memory));
}

TEST_F(PersonMemoryTest, FilesReadingsOfDifferentTimesUnderTheirOwn)
{
  const std::vector<Kind> kinds = rememberedKinds();
  for (std::size_t i = 0; i < kinds.size(); ++i)
    kinds[i].observe(observation, start - milliseconds(static_cast<int>(i)));

  memory.add(observation);

  for (std::size_t i = 0; i < kinds.size(); ++i)
    EXPECT_THAT(kinds[i].rememberedTimes(memory), ElementsAre(start - milliseconds(static_cast<int>(i))))
        << kinds[i].name;
  EXPECT_EQ(15u, recordCount(memory));
}

TEST_F(PersonMemoryTest, KeepsTheFirstHeadPostureOfOneTime)
{
  observation.headPosture = Timestamped<KV::HeadPosture>(start, KV::HeadPosture(1.f, 2.f, 3.f));
  memory.add(observation);

  observation.headPosture->value = KV::HeadPosture(4.f, 5.f, 6.f);
  memory.add(observation);

  ASSERT_EQ(1u, memory.headPostureMemory.records().size());
  EXPECT_EQ(1.f, memory.headPostureMemory.youngest().value.yaw());
}

TEST_F(PersonMemoryTest, KeepsAContextForTwentySeconds)
{
  observation.contextEmotion = Timestamped<KV::ContextEmotion>(start, KV::ContextEmotion(-1, 5.f));
  memory.add(observation);

  clock.advance(seconds(20));
  EXPECT_EQ(-1, memory.contextEmotionMemory.youngest().value.valence);
  EXPECT_EQ(5.f, memory.contextEmotionMemory.youngest().value.lifetime);

  clock.advance(milliseconds(1));
  EXPECT_THROW(memory.contextEmotionMemory.youngest(), std::range_error);
}

TEST_F(PersonMemoryTest, DoesNotModifyTheObservation)
{
  for (const Kind& kind : rememberedKinds())
    kind.observe(observation, start - hours(1));

  memory.add(observation);

  EXPECT_EQ(start - hours(1), observation.headPosture->time);
  EXPECT_EQ(1.5f, observation.distance->value);
}

// The handle

class PersonMemoryHandle : public support::ClockTest
{
protected:
  /// An observation of a distance.
  static PersonObservation atDistance(float distance)
  {
    PersonObservation observation;
    observation.distance = Timestamped<float>(start, distance);
    return observation;
  }
};

TEST_F(PersonMemoryHandle, HasARecordOfItsOwnWhenMade)
{
  PersonMemory one;
  const PersonMemory other;

  one.add(atDistance(1.f));

  ASSERT_NE(one._p, other._p);
  EXPECT_EQ(1u, recordCount(*one._p));
  EXPECT_EQ(0u, recordCount(*other._p));
  EXPECT_EQ(1.f, one._p->distanceMemory.youngest().value);
}

TEST_F(PersonMemoryHandle, SharesItsRecordWithACopy)
{
  PersonMemory original;
  PersonMemory copy = original;

  copy.add(atDistance(1.f));

  EXPECT_EQ(original._p, copy._p);
  EXPECT_EQ(1u, recordCount(*original._p));
}

TEST_F(PersonMemoryHandle, SharesTheRecordOfWhatItIsAssigned)
{
  PersonMemory original;
  original.add(atDistance(1.f));
  PersonMemory assigned;

  assigned = original;

  EXPECT_EQ(original._p, assigned._p);
}

TEST_F(PersonMemoryHandle, KeepsTheRecordUntilTheLastHandleIsGone)
{
  boost::shared_ptr<PersonMemory> first = boost::make_shared<PersonMemory>();
  first->add(atDistance(1.f));
  boost::weak_ptr<PersonMemoryPrivate> record = first->_p;
  {
    const PersonMemory last = *first;
    first.reset();
    ASSERT_FALSE(record.expired());
    EXPECT_EQ(1u, recordCount(*last._p));
  }

  EXPECT_TRUE(record.expired());
}

TEST_F(PersonMemoryHandle, IsNothingButThePointerToItsRecord)
{
  EXPECT_EQ(sizeof(boost::shared_ptr<PersonMemoryPrivate>), sizeof(PersonMemory));
}

}  // namespace
