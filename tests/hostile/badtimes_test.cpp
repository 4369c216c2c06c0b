// The effect on an estimate of timestamps and clocks that are far off, and how long it lasts.

#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"
#include "recovery.hpp"

#include "support/capturedlog.hpp"
#include "support/randomobservations.hpp"
#include "support/tablename.hpp"

#include <skeigiot/leaveoutahead.hpp>
#include <skeigiot/person.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace hostile;
using KV::PersonObservation;
using support::Estimate;
using TimePoint = ko::SystemClock::time_point;

const TimePoint firstTime = support::atNanoseconds(std::numeric_limits<std::int64_t>::min());
const TimePoint lastTime = support::atNanoseconds(std::numeric_limits<std::int64_t>::max());
constexpr support::hours tenYears(10 * 365 * 24);

/// One kind of reading, with a noticeable value and any time.
struct Timed
{
  const char* name;
  std::function<void(PersonObservation&, TimePoint)> set;
  int framesOfPast;  ///< for how many tenths of a second a reading from the distant past shows
};

const KV::VoiceEmotion anger({0.f, 0.f}, {1.f, 1.f}, {0.f, 0.f}, {0.f, 0.f}, {0.f, 0.f}, {0.f, 0.f});

const Timed remembered[] = {
    {"HeadPosture",
     [](PersonObservation& o, TimePoint t) { o.headPosture.emplace(t, KV::HeadPosture(90.f, 0.f, 0.f)); }, 0},
    {"Gaze", [](PersonObservation& o, TimePoint t) { o.gaze.emplace(t, KV::Gaze(90.f, 0.f)); }, 0},
    {"FacialPoints", [](PersonObservation& o, TimePoint t) { o.facialPoints.emplace(t, KV::FacialPoints()); }, 0},
    {"Speaking", [](PersonObservation& o, TimePoint t) { o.speaking.emplace(t, true); }, 0},
    {"Touch", [](PersonObservation& o, TimePoint t) { o.touchEmotion.emplace(t, -1); }, 0},
    {"Speech", [](PersonObservation& o, TimePoint t) { o.asrEmotion.emplace(t, -1.f); }, 0},
    {"Context", [](PersonObservation& o, TimePoint t) { o.contextEmotion.emplace(t, KV::ContextEmotion(-1, 5.f)); },
     0}};

const Timed passing[] = {{"Voice", [](PersonObservation& o, TimePoint t) { o.voiceEmotion.emplace(t, anger); }, 2},
                         {"Smile", [](PersonObservation& o, TimePoint t) { o.smile->time = t; }, 0},
                         {"Expressions", [](PersonObservation& o, TimePoint t) { o.expressions->time = t; }, 0},
                         {"Distance", [](PersonObservation& o, TimePoint t) { o.distance->time = t; }, 0},
                         {"HeadHeight", [](PersonObservation& o, TimePoint t) { o.headHeight->time = t; }, 0}};

class TimedReadingTest : public ::testing::TestWithParam<Timed>
{
protected:
  static Recovery recoveryFromTime(TimePoint time)
  {
    return recoveryFrom([time](PersonObservation& o) { GetParam().set(o, time); });
  }

  support::CapturedLog log;  // warns of old voice readings
};

class RememberedReadingTest : public TimedReadingTest
{};

class PassingReadingTest : public TimedReadingTest
{};

TEST_P(RememberedReadingTest, DoesNothingFromTheDistantPast)
{
  for (const TimePoint time : {firstTime, support::start - support::hours(24)})
  {
    const Recovery recovery = recoveryFromTime(time);
    EXPECT_EQ(GetParam().framesOfPast, recovery.frames) << time.time_since_epoch().count();
    EXPECT_TRUE(recovery.isExact);
  }
}

// Deliberate: a reading counts as new until its time has come, however far in the future.
TEST_P(RememberedReadingTest, StaysFromTheDistantFuture)
{
  EXPECT_FALSE(recoveryFromTime(lastTime).isExact);
}

TEST_P(RememberedReadingTest, DoesNothingFromTheFutureIfItIsLeftOutAtTheBoundary)
{
  const Recovery recovery = recoveryFrom([](PersonObservation& o) {
    GetParam().set(o, support::start + tenYears);
    EXPECT_EQ(1U, KV::leaveOutAhead(o, ko::SystemClock::now() + support::seconds(1)));
  });
  EXPECT_TRUE(recovery.isExact);
  EXPECT_LE(recovery.frames, 3) << "what a missing reading shows";
}

INSTANTIATE_TEST_SUITE_P(Times, RememberedReadingTest, ::testing::ValuesIn(remembered), support::RowName());

TEST_P(PassingReadingTest, IsForgottenWhateverItsTime)
{
  for (const TimePoint time : {firstTime, TimePoint(), lastTime})
  {
    const Recovery recovery = recoveryFromTime(time);
    EXPECT_EQ(GetParam().framesOfPast, recovery.frames) << time.time_since_epoch().count();
    EXPECT_TRUE(recovery.isExact);
  }
}

INSTANTIATE_TEST_SUITE_P(Times, PassingReadingTest, ::testing::ValuesIn(passing), support::RowName());

bool isInRange(const Estimate& e)
{
  const auto within = [](float number, float least) { return number >= least && number <= 1.f; };
  return within(e.valence, -1.f) && within(e.unsmoothedValence, -1.f) && within(e.valenceConfidence, 0.f) &&
         within(e.unsmoothedConfidence, 0.f) && within(e.attention, 0.f) && within(e.attentionConfidence, 0.f);
}

std::size_t recordsOf(const KV::Person& person)
{
  const KV::PersonMemoryPrivate& memory = *person.personMemory._p;
  return memory.headPostureMemory.records().size() + memory.distanceMemory.records().size() +
         memory.lookingAtRobotMemory.records().size() + memory.smileMemory.records().size() +
         memory.gazeMemory.records().size() + memory.expressionsMemory.records().size() +
         memory.genderMemory.records().size() + memory.ageMemory.records().size() +
         memory.faceDetectedMemory.records().size() + memory.facialPointsMemory.records().size() +
         memory.touchEmotionMemory.records().size() + memory.asrEmotionMemory.records().size() +
         memory.contextEmotionMemory.records().size() + memory.speakingMemory.records().size() +
         memory.robotHeadPostureMemory.records().size();
}

TEST(BadClocks, MayShowAnyTime)
{
  support::RandomObservations random(7);
  for (const TimePoint time : {firstTime + support::seconds(3), TimePoint(), lastTime - support::seconds(30)})
  {
    ko::ManualClock clock(time);
    const ko::ScopedClockSource scope(clock);
    KV::Person person;
    for (int frame = 0; frame < 200; ++frame)
    {
      const TimePoint now = ko::SystemClock::now();
      person.update(goodObservation(frame, now));
      ASSERT_TRUE(isInRange(support::estimateOf(*person.personState._p))) << now.time_since_epoch().count();
      clock.advance(frameTime);
    }
    EXPECT_GT(person.personState.personValence().value, 0.5f) << time.time_since_epoch().count();
    EXPECT_GT(person.personState.personAttention().value, 0.2f) << time.time_since_epoch().count();
  }
}

/// A life of good readings under a clock that is set at one frame; returns the estimate after each.
Estimates lifeWithStep(support::nanoseconds step, const std::function<void(KV::Person&)>& remedy)
{
  constexpr int stepFrame = 113;
  support::TestClock time;
  KV::Person person;
  Estimates estimates;
  for (int frame = 0; frame < 300; ++frame)
  {
    if (frame == stepFrame)
    {
      time.clock.advance(step);
      remedy(person);
    }
    person.update(goodObservation(frame, ko::SystemClock::now()));
    estimates.push_back(support::estimateOf(*person.personState._p));
    time.clock.advance(frameTime);
  }
  return estimates;
}

void doNothing(KV::Person&) {}

void forgetMemories(KV::Person& person)
{
  person.personMemory = KV::PersonMemory();
}

/// The number of frames after the step up to the last difference between the two lives.
int differentFrames(const Estimates& left, const Estimates& right)
{
  int last = 112;
  for (std::size_t frame = 0; frame < left.size(); ++frame)
    if (!isClose(left[frame], right[frame]))
      last = static_cast<int>(frame);
  return last - 112;
}

TEST(BadClocks, AreOvercomeInAMemoryAndASecondAfterAStepForward)
{
  const Estimates steady = lifeWithStep(support::nanoseconds(0), doNothing);
  const Estimates stepped = lifeWithStep(tenYears, doNothing);

  EXPECT_LE(differentFrames(steady, stepped), 80);
  EXPECT_EQ(steady.back(), stepped.back());
}

// Deliberate: readings from before the step are in the future after it, and stay.
TEST(BadClocks, AreNotOvercomeByItselfAfterAStepBack)
{
  const Estimates steady = lifeWithStep(support::nanoseconds(0), doNothing);
  const Estimates stepped = lifeWithStep(-tenYears, doNothing);

  EXPECT_GT(differentFrames(steady, stepped), 150);
}

TEST(BadClocks, AreOvercomeInAMemoryAndASecondAfterAStepBackWithNewMemories)
{
  const Estimates steady = lifeWithStep(support::nanoseconds(0), doNothing);
  const Estimates stepped = lifeWithStep(-tenYears, forgetMemories);

  EXPECT_LE(differentFrames(steady, stepped), 80);
  EXPECT_EQ(steady.back(), stepped.back());
}

TEST(BadClocks, KeepEveryRangeAndBoundTheMemoryWhileTheyJumpByYears)
{
  constexpr unsigned int seed = 20261121;
  std::mt19937 random(seed);
  support::TestClock time;
  KV::Person person;
  std::size_t most = 0;
  int frame = 0;
  for (int jump = 0; jump < 30; ++jump)
  {
    for (int end = frame + 50; frame < end; ++frame)
    {
      PersonObservation observation = goodObservation(frame, ko::SystemClock::now());
      person.update(observation);
      ASSERT_TRUE(isInRange(support::estimateOf(*person.personState._p))) << "seed " << seed << ", frame " << frame;
      most = std::max(most, recordsOf(person));
      time.clock.advance(frameTime);
    }
    const auto before = ko::SystemClock::now();
    time.clock.set(support::start + std::uniform_int_distribution<int>(-20, 20)(random) * tenYears / 10);
    if (ko::SystemClock::now() < before)
      forgetMemories(person);
  }
  const std::size_t kinds = 9;  // that good sensors report all the time; touches come on top
  EXPECT_LE(most, kinds * (7 * framesPerSecond + 1) + 2);
}

TEST(BadClocks, OfASensorThatIsAheadFillTheMemoryUntilItsTimesHaveCome)
{
  support::TestClock time;
  KV::Person person;
  for (int frame = 0; frame < 600; ++frame)
  {
    PersonObservation observation;
    observation.gaze.emplace(ko::SystemClock::now() + support::hours(1), KV::Gaze(0.f, 0.f));
    person.update(observation);
    time.clock.advance(frameTime);
  }
  EXPECT_EQ(600U, recordsOf(person)) << "rate x (horizon + lead) is the bound";

  time.clock.advance(support::hours(1));
  person.update(goodObservation(0, ko::SystemClock::now()));

  EXPECT_LE(person.personMemory._p->gazeMemory.records().size(), 7U * framesPerSecond + 2U);
}

TEST(BadClocks, OfASensorThatIsAheadDoNothingIfItsReadingsAreLeftOut)
{
  support::TestClock time;
  KV::Person person;
  std::size_t leftOut = 0;
  for (int frame = 0; frame < 600; ++frame)
  {
    PersonObservation observation = goodObservation(frame, ko::SystemClock::now());
    observation.gaze->time += support::hours(1);
    leftOut += KV::leaveOutAhead(observation, ko::SystemClock::now() + support::seconds(1));
    person.update(observation);
    time.clock.advance(frameTime);
  }
  EXPECT_EQ(600U, leftOut);
  EXPECT_TRUE(person.personMemory._p->gazeMemory.records().empty());
  EXPECT_GE(71U, person.personMemory._p->headPostureMemory.records().size());
}

}  // namespace
