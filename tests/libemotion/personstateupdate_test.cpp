#include "bodylanguagestateprivate.hpp"

#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/heldmutex.hpp"
#include "support/randomobservations.hpp"
#include "support/scriptedclock.hpp"
#include "support/stateupdatetest.hpp"

#include <skeigiot/person.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using ko::human::AttentionState;
using KV::PersonStatePrivate;
using support::Estimate;
using support::estimateOf;
using support::facialPoints;
using support::fallingStep;
using support::headMagnitude;
using support::inSeconds;
using support::milliseconds;
using support::sensorRamp;
using support::softStep;
using support::start;
using support::weighsOne;

class Update : public support::StateUpdateTest
{
protected:
  /// A person who is silent, with all other readings at once.
  void seeEverything()
  {
    memories().facialPointsMemory.record(aged(milliseconds(20), facialPoints(0.9f)));
    observation.smile = fresh(KV::Smile(0.8f, 0.9f));
    observation.expressions = fresh(KV::Expressions());
    observation.expressions->value.joy = {1.f, 1.f};
    state.bodyLanguageState._p->ease = KV::BodyLanguageEase(-0.5f, 0.5f);
    memories().headPostureMemory.record(aged(weighsOne, KV::HeadPosture(-30.f, 6.f, 1.f)));
    memories().gazeMemory.record(aged(weighsOne, KV::Gaze(-14.f, 11.f)));
    observation.voiceEmotion = fresh(KV::VoiceEmotion({0.2f, 1.f}, {0.3f, 1.f}, {0.4f, 1.f}, {0.5f, 1.f}, {}, {}));
    memories().asrEmotionMemory.record(aged(milliseconds(30), -1.f));
    memories().touchEmotionMemory.record(aged(milliseconds(40), 1));
    memories().contextEmotionMemory.record(aged(milliseconds(50), KV::ContextEmotion(0, 10.f)));
    observation.distance = fresh(1.38f);
    observation.headHeight = fresh(1.92f);
    memories().robotHeadPostureMemory.record(fresh(KV::RobotHeadPosture(9.f, 0.f)));
    memories().robotHeadPostureMemory.record(aged(milliseconds(60), KV::RobotHeadPosture(1.f, 0.f)));
  }

  static float weight(int ageInMs, float reference) { return softStep(inSeconds(milliseconds(ageInMs)), reference); }

  /// The effect of the facial points of seeEverything().
  static void pullByFacialPoints(Estimate& expected)
  {
    const float points = weight(20, 3.f);
    expected.pullValenceConfidence((points * facialPoints(0.9f).globalConfidence() / points) * points, 0.7f);
  }

  /// The effects of the sources of valence after face and smile, in their order.
  static void pullByBodyVoiceAndMemories(Estimate& expected)
  {
    expected.pullValence(-0.5f, 0.065f);               // body language
    expected.pullValence(0.f, (0.2f * 0.7f) * 0.65f);  // voice: calm, anger, joy, sorrow
    expected.pullValence(-1.f, (0.3f * 0.7f) * 0.65f);
    expected.pullValence(1.f, (0.4f * 0.7f) * 0.65f);
    expected.pullValence(-0.5f, (0.5f * 0.7f) * 0.65f);
    expected.pullValence(-1.f, weight(30, 4.f) * 0.65f);  // speech
    expected.pullValence(1.f, weight(40, 4.f) * 0.65f);   // touch
    expected.pullValence(0.f, weight(50, 10.f) * 0.65f);  // context
  }

  /// The effects of limits and attention of seeEverything().
  static void attendToEverything(Estimate& expected)
  {
    support::limitValence(expected, 1.38f, 1.92f);
    expected.pullAttentionConfidence(0.8f * sensorRamp(1.92f, 1.9f) + 0.2f * softStep(8.f, 7.f), 0.7f);
    const float byHead = fallingStep(headMagnitude(-30.f, 6.f), 15.f);
    const float byGaze = fallingStep(support::gazeMagnitude(-14.f, 11.f), 20.f);
    expected.pullAttention(0.5f * byHead + (1.f - 0.5f) * byGaze, 0.65f);
  }
};

// The whole

TEST_F(Update, AppliesAllSourcesInTheirOrder)
{
  seeEverything();
  Estimate expected = estimate();
  pullByFacialPoints(expected);
  expected.pullValence(1.f, 0.65f);  // face characteristics
  pullByBodyVoiceAndMemories(expected);
  attendToEverything(expected);

  update();

  EXPECT_EQ(expected, estimate());
  EXPECT_EQ(AttentionState::LookingUpLeft, state.attentionZone);
}

TEST_F(Update, AppliesAllSourcesInTheirOrderWhileThePersonSpeaks)
{
  seeEverything();
  memories().speakingMemory.record(aged(milliseconds(70), true));
  Estimate expected = estimate();
  pullByFacialPoints(expected);
  expected.pullValenceConfidence(0.f, 0.5f * weight(70, 2.f));
  expected.pullValence(0.8f, 0.9f * 0.65f);  // smile
  pullByBodyVoiceAndMemories(expected);
  attendToEverything(expected);

  update();

  EXPECT_EQ(expected, estimate());
}

TEST_F(Update, KeepsTheTimesOfAllEightChannels)
{
  seeEverything();
  update();
  EXPECT_EQ(start - weighsOne, state.lastObservationTimes[0]);
  EXPECT_EQ(start, state.lastObservationTimes[1]);
  EXPECT_EQ(start, state.lastObservationTimes[2]);
  EXPECT_EQ(start, state.lastObservationTimes[3]);
  EXPECT_EQ(start - milliseconds(30), state.lastObservationTimes[4]);
  EXPECT_EQ(start - weighsOne, state.lastObservationTimes[5]);
  EXPECT_EQ(start - milliseconds(40), state.lastObservationTimes[6]);
  EXPECT_EQ(start - milliseconds(50), state.lastObservationTimes[7]);
}

TEST_F(Update, DoesNotReadTheFrequencies)
{
  seeEverything();
  PersonStatePrivate other;
  other.valence = state.valence;
  other.unsmoothedValence = state.unsmoothedValence;
  other.attention = state.attention;
  other.bodyLanguageState = state.bodyLanguageState;
  other.frequencyFace = -1.f;
  other.frequencyGaze = 0.f;

  update();
  other.__update(observation, memory);

  EXPECT_EQ(estimate(), estimateOf(other));
}

TEST_F(Update, LeavesTheMemoriesWithoutTheObservation)
{
  seeEverything();
  observation.gaze = fresh(KV::Gaze());
  observation.speaking = fresh(true);
  update();
  EXPECT_EQ(1U, memories().gazeMemory.records().size());
  EXPECT_TRUE(memories().speakingMemory.records().empty());
  EXPECT_TRUE(memories().smileMemory.records().empty());
}

// The trace

TEST_F(Update, ReportsThatNothingWasSeen)
{
  state.valence = {0.f, 0.5f};
  state.attention = {1.f, 0.f};
  EXPECT_EQ(
      "State updated with:\n"
      "\t - NO FACIAL POINTS IN MEMORY\n"
      "No valence observations\n"
      "force: 0.01\n"
      "No attention observations\n"
      "Computed states:\n"
      "Valence: \n"
      "\t - Value: \t0\n"
      "\t - Confidence: \t0.15\n"
      "Attention: \n"
      "\t - Value: \t0.3565\n"
      "\t - Confidence: \t0\n",
      update());
}

TEST_F(Update, ReportsWhatWasSeen)
{
  state.valence = {1.f, 1.f};
  state.attention = {0.f, 1.f};
  memories().facialPointsMemory.record(aged(weighsOne, facialPoints(1.f)));
  memories().headPostureMemory.record(aged(weighsOne, KV::HeadPosture(0.f, 45.f, 0.f)));
  memories().gazeMemory.record(aged(weighsOne, KV::Gaze(12.f, 16.f)));
  memories().touchEmotionMemory.record(aged(milliseconds(-20000), 1));
  state.bodyLanguageState._p->ease = KV::BodyLanguageEase(1.f, 0.5f);
  EXPECT_EQ(
      "State updated with:\n"
      "\t - Confidence: 1 with weight 1\n"
      "Final value of head: 0 | 45 | 0.5\n"
      "Final value of gaze: 12 | 16 | 0.5\n"
      "Computed states:\n"
      "Valence: \n"
      "\t - Value: \t1\n"
      "\t - Confidence: \t1\n"
      "Attention: \n"
      "\t - Value: \t0.325\n"
      "\t - Confidence: \t1\n",
      update());
}

TEST_F(Update, SaysNothingAloud)
{
  const support::CapturedLog log;
  const support::CapturedStandardOutput output;
  const support::CapturedStandardError error;
  seeEverything();
  state.__update(observation, memory);

  EXPECT_TRUE(log.empty());
  EXPECT_EQ("", output.text());
  EXPECT_EQ("", error.text());
}

TEST_F(Update, IsTheSameWithAndWithoutATrace)
{
  seeEverything();
  PersonStatePrivate other;
  other.valence = state.valence;
  other.unsmoothedValence = state.unsmoothedValence;
  other.attention = state.attention;
  other.bodyLanguageState = state.bodyLanguageState;

  state.__update(observation, memory);
  KV::DiagnosticText trace;
  other.__update(observation, memory, trace);

  EXPECT_EQ(estimate(), estimateOf(other));
  EXPECT_NE("", trace.text());
}

// Copies of the record

TEST_F(Update, OfACopiedRecordStartsFromTheDefaultsOfItsVectors)
{
  PersonStatePrivate copy(state);
  memories().headPostureMemory.record(aged(weighsOne, KV::HeadPosture(0.f, 45.f, 0.f)));
  memories().gazeMemory.record(aged(weighsOne, KV::Gaze(12.f, 16.f)));

  copy.__update(observation, memory);

  EXPECT_EQ((std::vector<float>{15.f, 20.f}), copy.attentionAngles);
  EXPECT_EQ((std::vector<float>{0.5f, 0.5f}), copy.attentionEstimates);
}

TEST_F(Update, OfACopiedRecordWithoutReadingsGivesItTheDefaults)
{
  PersonStatePrivate copy(state);
  copy.__update(observation, memory);

  EXPECT_EQ((std::vector<float>{-10.f, -10.f}), copy.attentionAngles);
  EXPECT_EQ((std::vector<float>{0.f, 0.f}), copy.attentionEstimates);
}

TEST_F(Update, KeepsTheVectorsOfARecordThatHasThem)
{
  state.attentionAngles = {3.f, 4.f};
  state.attentionEstimates = {0.5f, 0.6f};
  update();

  EXPECT_EQ((std::vector<float>{3.f, 4.f}), state.attentionAngles);
  EXPECT_EQ((std::vector<float>{0.5f, 0.6f}), state.attentionEstimates);
}

// Mutexes

std::vector<boost::mutex*> quantityMutexes(PersonStatePrivate& state)
{
  return {&state.valenceMutex, &state.attentionMutex, &state.valenceConfidenceMutex, &state.attentionConfidenceMutex};
}

std::vector<boost::mutex*> allMutexes(PersonStatePrivate& state, KV::PersonMemoryPrivate& memories)
{
  std::vector<boost::mutex*> mutexes = quantityMutexes(state);
  mutexes.insert(mutexes.end(), {&state.headHeightMutex, &state.observationsMutex, &state.smileMutex, &state.gazeMutex,
                                 &state.expressionsMutex, &state.headAnglesMutex});
  mutexes.insert(mutexes.end(), {&memories.facialPointsMemory.mutex(), &memories.speakingMemory.mutex(),
                                 &memories.headPostureMemory.mutex(), &memories.gazeMemory.mutex(),
                                 &memories.asrEmotionMemory.mutex(), &memories.touchEmotionMemory.mutex(),
                                 &memories.contextEmotionMemory.mutex(), &memories.robotHeadPostureMemory.mutex()});
  return mutexes;
}

int heldOf(const std::vector<boost::mutex*>& mutexes)
{
  return static_cast<int>(
      std::count_if(mutexes.begin(), mutexes.end(), [](boost::mutex* mutex) { return !support::isFree(*mutex); }));
}

TEST_F(Update, HoldsAFurtherMutexForTheRememberedEmotionsAlone)
{
  seeEverything();
  memories().speakingMemory.record(aged(milliseconds(70), false));
  const std::vector<boost::mutex*> quantities = quantityMutexes(state);
  const std::vector<boost::mutex*> remembered = {&memories().asrEmotionMemory.mutex(),
                                                 &memories().touchEmotionMemory.mutex(),
                                                 &memories().contextEmotionMemory.mutex()};
  std::string emotions;
  // The clock is read for each record's age: the held mutexes then show the position of the update.
  support::ScriptedClock probe([&](int) {
    EXPECT_EQ(0, heldOf(quantities));
    EXPECT_EQ(heldOf(remembered) == 1, !support::isFree(state.observationsMutex));
    for (std::size_t i = 0; i < remembered.size(); ++i)
      if (!support::isFree(*remembered[i]))
        emotions += "stc"[i];
    return start;
  });
  const ko::ScopedClockSource probing(probe);
  update();

  // One reading to prune and one to weigh: speech, touch, context.
  EXPECT_EQ("ssttcc", emotions);
}

TEST_F(Update, LeavesEveryMutexFree)
{
  seeEverything();
  update();
  EXPECT_EQ(0, heldOf(allMutexes(state, memories())));
}

TEST_F(Update, NeedsNoneOfTheMutexesThatAreThereForCallers)
{
  seeEverything();
  EXPECT_TRUE(
      support::endsDespite({&state.smileMutex, &state.gazeMutex, &state.expressionsMutex, &state.headAnglesMutex},
                           [this] { updateOnThisThread(); }));
}

struct ClockFailure : std::runtime_error
{
  ClockFailure() : std::runtime_error("the clock stands still") {}
};

/// Updates by a clock that fails from this reading on, and returns whether it did fail.
bool failsFrom(int firstFailure, PersonStatePrivate& state, const KV::PersonObservation& observation,
               const KV::PersonMemory& memory)
{
  support::ScriptedClock failing([firstFailure](int reading) {
    if (reading >= firstFailure)
      throw ClockFailure();
    return start;
  });
  const ko::ScopedClockSource probing(failing);
  try
  {
    state.__update(observation, memory);
  }
  catch (const ClockFailure&)
  {
    return true;
  }
  return false;
}

TEST_F(Update, LeavesEveryMutexFreeWhereverTheClockFails)
{
  const support::CapturedStandardOutput forgetting;  // a memory that cannot remove old records reports it
  seeEverything();
  memories().speakingMemory.record(aged(milliseconds(70), true));
  int reading = 0;
  for (bool failed = true; failed; ++reading)
  {
    PersonStatePrivate victim;
    failed = failsFrom(reading, victim, observation, memory);
    ASSERT_EQ(0, heldOf(allMutexes(victim, memories()))) << "from reading " << reading;
  }
  EXPECT_GT(reading, 20);
}

TEST_F(Update, KeepsTheForcesThatWereAppliedBeforeAnError)
{
  memories().facialPointsMemory.record(aged(weighsOne, facialPoints(1.f)));
  memories().touchEmotionMemory.record(fresh(1));
  Estimate expected = estimate();
  expected.pullValenceConfidence(1.f, 0.7f);
  // Three readings for the points (pruning, mean, youngest), one to prune the touch, and the fifth weighs it.
  support::ScriptedClock failing([](int reading) {
    if (reading == 4)
      throw ClockFailure();
    return start;
  });
  const ko::ScopedClockSource probing(failing);

  EXPECT_THROW(update(), ClockFailure);

  EXPECT_EQ(expected, estimate());
  EXPECT_EQ(start, state.lastObservationTimes[KV::TouchChannel]);
}

// For all observations

TEST_F(Update, KeepsTheEstimateInItsRangeForAnyFiniteReadings)
{
  const support::CapturedLog log;  // old voices are reported
  for (unsigned int seed = 1; seed <= 20; ++seed)
  {
    SCOPED_TRACE("seed " + std::to_string(seed));
    support::RandomObservations random(seed);
    KV::Person person;
    for (int cycle = 0; cycle < 100; ++cycle)
    {
      clock.advance(random.pause());
      person.update(random.next());
      const Estimate now = estimateOf(*person.personState._p);
      for (const float valence : {now.valence, now.unsmoothedValence})
        ASSERT_TRUE(-1.f <= valence && valence <= 1.f) << "cycle " << cycle << ": " << now;
      for (const float number :
           {now.valenceConfidence, now.unsmoothedConfidence, now.attention, now.attentionConfidence})
        ASSERT_TRUE(0.f <= number && number <= 1.f) << "cycle " << cycle << ": " << now;
      const int zone = static_cast<int>(person.personState.personAttentionState());
      ASSERT_TRUE(0 <= zone && zone <= 9) << "cycle " << cycle;
      ASSERT_EQ(2U, person.personState._p->attentionAngles.size());
    }
  }
}

TEST_F(Update, DoesNotDependOnTheOrderInWhichReadingsArrive)
{
  for (unsigned int seed = 1; seed <= 20; ++seed)
  {
    SCOPED_TRACE("seed " + std::to_string(seed));
    support::RandomObservations random(seed);
    std::vector<KV::PersonObservation> observations;
    for (int i = 0; i < 8; ++i)
    {
      clock.advance(milliseconds(1) + support::nanoseconds(i));  // so that no two readings share a time
      observations.push_back(random.next());
    }
    KV::Person inOrder;
    for (const KV::PersonObservation& one : observations)
      inOrder.updateMemory(one);
    std::shuffle(observations.begin(), observations.end(), std::mt19937(seed));
    KV::Person shuffled;
    for (const KV::PersonObservation& one : observations)
      shuffled.updateMemory(one);

    inOrder._updateOnlineModels(observation);
    shuffled._updateOnlineModels(observation);

    ASSERT_EQ(estimateOf(*inOrder.personState._p), estimateOf(*shuffled.personState._p));
    ASSERT_EQ(inOrder.personState.personAttentionState(), shuffled.personState.personAttentionState());
  }
}

TEST_F(Update, SurvivesNanInEveryReading)
{
  const float nan = std::nanf("");
  KV::Person person;
  observation.headHeight = fresh(nan);
  observation.distance = fresh(nan);
  observation.gaze = fresh(KV::Gaze(nan, nan));
  observation.smile = fresh(KV::Smile(nan, nan));
  observation.expressions = fresh(KV::Expressions());
  observation.expressions->value.joy = {nan, nan};
  observation.headPosture = fresh(KV::HeadPosture(nan, nan, nan));
  observation.facialPoints = fresh(facialPoints(nan));
  observation.voiceEmotion = fresh(KV::VoiceEmotion({nan, nan}, {}, {}, {}, {}, {}));
  observation.asrEmotion = fresh(nan);
  observation.contextEmotion = fresh(KV::ContextEmotion(1, nan));
  observation.robotHeadPosture = fresh(KV::RobotHeadPosture(nan, nan));
  person.update(observation);

  const Estimate now = estimateOf(*person.personState._p);
  EXPECT_TRUE(std::isnan(now.valence));
  EXPECT_EQ(0.f, now.valenceConfidence);
  EXPECT_EQ(0.f, now.attentionConfidence);
  EXPECT_EQ(0.f, now.attention);
  EXPECT_EQ(AttentionState::LookingUpRight, person.personState.personAttentionState());
}

}  // namespace
