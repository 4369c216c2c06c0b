#include <skeigiot/forceobserver.hpp>

#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include "support/clocktest.hpp"
#include "support/estimate.hpp"
#include "support/heldmutex.hpp"
#include "support/thrown.hpp"

#include <skeigiot/person.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <future>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

using ko::human::AttentionState;
using support::milliseconds;
using support::start;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

/// A force as the observer saw it, with a copy of its source.
struct SeenForce
{
  explicit SeenForce(const KV::Force& seen) : force(seen), source(seen.source) {}

  KV::Force force;
  std::string source;
};

struct SeenZoneChange
{
  AttentionState from;
  AttentionState to;
  KV::ZoneEvidence evidence;

  bool operator==(const SeenZoneChange& other) const
  {
    return std::tie(from, to, evidence) == std::tie(other.from, other.to, other.evidence);
  }
};

class ForceObserver : public support::ClockTest
{
protected:
  template <typename T>
  KV::Timestamped<T> now(const T& value) const
  {
    return {ko::SystemClock::now(), value};
  }

  KV::ScopedForceObserver::OnForce remember()
  {
    return [this](const KV::Force& force) { forces.emplace_back(force); };
  }

  KV::ScopedForceObserver::OnZoneChange rememberZone()
  {
    return [this](const KV::ZoneChange& change) { zoneChanges.push_back({change.from, change.to, change.evidence}); };
  }

  std::vector<std::string> sources() const
  {
    std::vector<std::string> names;
    for (const SeenForce& seen : forces)
      names.push_back(seen.source);
    return names;
  }

  /// Adds a head and a gaze with these angles, one millisecond later.
  void look(float headYaw, float headPitch, float gazeYaw, float gazePitch)
  {
    clock.advance(support::seconds(10));
    KV::PersonObservation observation;
    observation.headPosture = now(KV::HeadPosture(headYaw, headPitch, 0.f));
    observation.gaze = now(KV::Gaze(gazeYaw, gazePitch));
    person.update(observation);
  }

  /// All readings, with the present time.
  KV::PersonObservation everyReading() const
  {
    KV::PersonObservation observation;
    observation.lookingAtRobot = now(true);
    observation.headHeight = now(1.7f);
    observation.distance = now(1.f);
    observation.gaze = now(KV::Gaze(1.f, 2.f));
    observation.smile = now(KV::Smile(0.75f, 0.5f));
    observation.expressions = now(KV::Expressions());
    observation.headPosture = now(KV::HeadPosture(1.f, 2.f, 0.f));
    observation.faceDetected = now(true);
    observation.facialPoints = now(KV::FacialPoints());
    observation.voiceEmotion = now(KV::VoiceEmotion());
    observation.asrEmotion = now(0.5f);
    observation.touchEmotion = now<std::int32_t>(1);
    observation.contextEmotion = now(KV::ContextEmotion(1, 4.f));
    observation.speaking = now(true);
    observation.robotHeadPosture = now(KV::RobotHeadPosture(0.1f, 0.2f));
    return observation;
  }

  KV::Person person;
  std::vector<SeenForce> forces;
  std::vector<SeenZoneChange> zoneChanges;
};

TEST_F(ForceObserver, SeesTheForcesOfAnUpdateInTheirOrder)
{
  KV::PersonObservation observation;
  observation.touchEmotion = now<std::int32_t>(1);
  observation.asrEmotion = now(0.5f);
  observation.headPosture = now(KV::HeadPosture(1.f, 2.f, 0.f));
  observation.speaking = now(true);
  observation.distance = now(1.f);

  const KV::ScopedForceObserver observer(remember());
  person.update(observation);

  EXPECT_THAT(sources(), ElementsAre("User is speaking", "User is speaking",        //
                                     "Body Language", "Body Language",              //
                                     "Asr emotion", "Asr emotion",                  //
                                     "Touch emotion", "Touch emotion",              //
                                     "Distance limitation", "Distance limitation",  //
                                     "Height limitation", "Height limitation",      //
                                     "Okao and robot movement limits",              //
                                     "Gaze and head based attention"));
}

TEST_F(ForceObserver, SeesTheForcesOfAFaceAndAVoiceInTheirOrder)
{
  KV::PersonObservation observation;
  observation.facialPoints = now(KV::FacialPoints());
  observation.expressions = now(KV::Expressions());
  observation.voiceEmotion = now(KV::VoiceEmotion());
  observation.contextEmotion = now(KV::ContextEmotion(1, 4.f));
  observation.gaze = now(KV::Gaze(1.f, 2.f));

  const KV::ScopedForceObserver observer(remember());
  person.update(observation);

  EXPECT_THAT(sources(), ElementsAre("Points confidence", "Points confidence",        //
                                     "Face characteristics", "Face characteristics",  //
                                     "Voice emotion", "Voice emotion",                // calm
                                     "Voice emotion", "Voice emotion",                // anger
                                     "Voice emotion", "Voice emotion",                // joy
                                     "Voice emotion", "Voice emotion",                // sorrow
                                     "Context emotion", "Context emotion",            //
                                     "Distance limitation", "Distance limitation",    //
                                     "Height limitation", "Height limitation",        //
                                     "Okao and robot movement limits",                //
                                     "Gaze and head based attention"));
}

TEST_F(ForceObserver, SeesTheForceOfASmileWhileThePersonSpeaks)
{
  KV::PersonObservation observation;
  observation.speaking = now(true);
  observation.smile = now(KV::Smile(0.75f, 0.5f));

  const KV::ScopedForceObserver observer(remember());
  person.update(observation);

  EXPECT_THAT(sources(), ElementsAre("User is speaking", "User is speaking",        //
                                     "Smile", "Smile",                              //
                                     "Distance limitation", "Distance limitation",  //
                                     "Height limitation", "Height limitation",      //
                                     "No observation", "No observation"));
}

TEST_F(ForceObserver, SeesTheForcesOfAFaceWithoutAWinner)
{
  KV::PersonObservation observation;
  observation.expressions = now(KV::Expressions());
  observation.expressions->value.joy.value = std::numeric_limits<float>::quiet_NaN();

  const KV::ScopedForceObserver observer(remember());
  person.update(observation);

  EXPECT_THAT(sources(), ElementsAre("Winner unknown", "Winner unknown",  //
                                     "No observation", "No observation",  // valence
                                     "No observation", "No observation",  // its confidence
                                     "No observation", "No observation"));
}

TEST_F(ForceObserver, ReportsAllPropertiesOfAForce)
{
  person.personState._p->_setValence(0.5f);
  person.personState._p->_setUnsmoothedValence(-0.5f);
  clock.advance(milliseconds(5));

  const KV::ScopedForceObserver observer(remember());
  person.personState._p->_applyForceValence(1.5f, 0.6f, "Test");

  ASSERT_EQ(2u, forces.size());
  const KV::Force& smoothed = forces[0].force;
  EXPECT_EQ(KV::ValenceQuantity, smoothed.quantity);
  EXPECT_EQ(1.5f, smoothed.target);
  EXPECT_EQ(0.6f, smoothed.weight);
  EXPECT_EQ(0.5f, smoothed.before);
  EXPECT_EQ(1.f, smoothed.after);
  EXPECT_EQ("Test", forces[0].source);
  EXPECT_EQ(start + milliseconds(5), smoothed.time);
  const KV::Force& unsmoothed = forces[1].force;
  EXPECT_EQ(KV::UnsmoothedValenceQuantity, unsmoothed.quantity);
  EXPECT_EQ(-0.5f, unsmoothed.before);
  EXPECT_EQ(-0.5f + 0.6f * 2.f, unsmoothed.after);
}

TEST_F(ForceObserver, SeesAllQuantitiesOfAPersonWhoIsNotSeen)
{
  const KV::ScopedForceObserver observer(remember());
  person.decreaseSinceNotSeen();

  std::vector<KV::Quantity> quantities;
  for (const SeenForce& seen : forces)
  {
    quantities.push_back(seen.force.quantity);
    EXPECT_EQ("Not visible", seen.source);
  }
  EXPECT_THAT(quantities, ElementsAre(KV::ValenceQuantity, KV::UnsmoothedValenceQuantity, KV::ValenceConfidenceQuantity,
                                      KV::UnsmoothedValenceConfidenceQuantity, KV::AttentionQuantity,
                                      KV::AttentionConfidenceQuantity));
}

TEST_F(ForceObserver, LeavesNothingBehindWhenItEnds)
{
  {
    const KV::ScopedForceObserver observer(remember());
  }
  person.decreaseSinceNotSeen();

  EXPECT_THAT(forces, IsEmpty());
}

TEST_F(ForceObserver, IsCoveredByAnInnerOneAndComesBack)
{
  int inner = 0;
  const KV::ScopedForceObserver outerObserver(remember());
  {
    const KV::ScopedForceObserver innerObserver([&inner](const KV::Force&) { ++inner; });
    person.decreaseSinceNotSeen();
  }
  EXPECT_EQ(6, inner);
  EXPECT_THAT(forces, IsEmpty());

  person.decreaseSinceNotSeen();
  EXPECT_EQ(6, inner);
  EXPECT_EQ(6u, forces.size());
}

TEST_F(ForceObserver, SeesNothingOfOtherThreads)
{
  const KV::ScopedForceObserver observer(remember());
  std::thread([this] { person.decreaseSinceNotSeen(); }).join();

  EXPECT_THAT(forces, IsEmpty());
}

TEST_F(ForceObserver, MayLookAtNothing)
{
  const KV::ScopedForceObserver observer({});
  look(0.f, 0.f, 0.f, 0.f);

  EXPECT_EQ(AttentionState::LookingAtRobot, person.personState.personAttentionState());
}

TEST_F(ForceObserver, SeesWhatDecidedOnTheZoneWheneverThatChanges)
{
  const KV::ScopedForceObserver observer({}, rememberZone());

  look(0.f, 0.f, 0.f, 0.f);
  look(0.f, 0.f, 0.f, 0.f);  // no change
  look(0.f, 0.f, 30.f, 0.f);
  look(39.f, 0.f, 0.f, 0.f);
  look(45.f, 0.f, 0.f, 0.f);
  look(0.f, 0.f, 0.f, 0.f);
  clock.advance(support::seconds(5));
  person.update({});

  EXPECT_THAT(
      zoneChanges,
      ElementsAre(SeenZoneChange{AttentionState::Unknown, AttentionState::LookingAtRobot, KV::AttentionEvidence},
                  SeenZoneChange{AttentionState::LookingAtRobot, AttentionState::LookingLeft, KV::GazeEvidence},
                  SeenZoneChange{AttentionState::LookingLeft, AttentionState::LookingRight, KV::HeadEvidence},
                  SeenZoneChange{AttentionState::LookingRight, AttentionState::Unknown, KV::HeadTurnedAwayEvidence},
                  SeenZoneChange{AttentionState::Unknown, AttentionState::LookingAtRobot, KV::AttentionEvidence},
                  SeenZoneChange{AttentionState::LookingAtRobot, AttentionState::Unknown, KV::NoAttentionEvidence}));
}

TEST_F(ForceObserver, MayReadTheStateFromItsCallback)
{
  std::vector<float> valences;
  const KV::ScopedForceObserver observer([&](const KV::Force& force) {
    if (force.quantity == KV::ValenceQuantity)
      valences.push_back(person.personState.personValence().value - force.after);
  });
  person.decreaseSinceNotSeen();

  EXPECT_THAT(valences, ElementsAre(0.f));
}

// The changes of a source are visible to those after it, and not yet to those before.
TEST_F(ForceObserver, SeesReadingsTakenOverOnceTheSpeakingWasWeighed)
{
  KV::PersonObservation observation;
  observation.speaking = now(true);
  observation.smile = now(KV::Smile(0.75f, 0.5f));
  std::vector<float> smiles;
  const KV::ScopedForceObserver observer([&](const KV::Force&) { smiles.push_back(person.personState.smile().value); });
  person.update(observation);

  ASSERT_LT(2U, smiles.size());
  EXPECT_EQ(0.f, smiles.front());
  EXPECT_EQ(0.f, smiles[1]);
  EXPECT_EQ(0.75f, smiles[2]);
}

TEST_F(ForceObserver, SeesExpressionsTrustedBeforeTheyPull)
{
  KV::PersonObservation observation;
  observation.expressions = now(KV::Expressions());
  observation.headPosture = now(KV::HeadPosture(30.f, 0.f, 0.f));
  std::vector<float> trusts;
  const KV::ScopedForceObserver observer([&](const KV::Force& force) {
    if (force.source == "Face characteristics")
      trusts.push_back(person.personState.expressions().joy.confidence);
  });
  person.update(observation);

  EXPECT_THAT(trusts, ElementsAre(0.5f, 0.5f));
}

// Every memory has a reading, so every source of forces acts.
TEST_F(ForceObserver, IsCalledWhileNoMemoryIsLocked)
{
  KV::PersonMemoryPrivate& memory = *person.personMemory._p;
  const std::vector<boost::mutex*> mutexes = {
      &memory.headPostureMemory.mutex(),    &memory.distanceMemory.mutex(),     &memory.lookingAtRobotMemory.mutex(),
      &memory.smileMemory.mutex(),          &memory.gazeMemory.mutex(),         &memory.expressionsMemory.mutex(),
      &memory.genderMemory.mutex(),         &memory.ageMemory.mutex(),          &memory.faceDetectedMemory.mutex(),
      &memory.facialPointsMemory.mutex(),   &memory.touchEmotionMemory.mutex(), &memory.asrEmotionMemory.mutex(),
      &memory.contextEmotionMemory.mutex(), &memory.speakingMemory.mutex(),     &memory.robotHeadPostureMemory.mutex()};
  std::vector<std::string> lockedDuring;
  const KV::ScopedForceObserver observer([&](const KV::Force& force) {
    forces.emplace_back(force);
    for (boost::mutex* mutex : mutexes)
      if (!support::isFree(*mutex))
        lockedDuring.emplace_back(force.source);
  });
  person.update(everyReading());

  EXPECT_THAT(lockedDuring, IsEmpty());
  EXPECT_THAT(sources(),
              IsSupersetOf({"Points confidence", "User is speaking", "Smile", "Body Language", "Voice emotion",
                            "Asr emotion", "Touch emotion", "Context emotion", "Distance limitation",
                            "Okao and robot movement limits", "Gaze and head based attention"}));
}

// Each emotion adds an older one to its memory, after this was read: so the older one does not act in this update.
TEST_F(ForceObserver, MayReadAndWriteTheMemoriesOfThePersonFromItsCallback)
{
  const KV::PersonObservation observation = everyReading();
  clock.advance(milliseconds(500));
  KV::Person unwatched;
  unwatched.update(observation);

  KV::PersonMemoryPrivate& memory = *person.personMemory._p;
  int calls = 0;
  const auto onForce = [&](const KV::Force& force) {
    ++calls;
    const ko::SystemClock::time_point older = start - milliseconds(calls);
    if (force.source == "Asr emotion")
      memory.asrEmotionMemory.record({older, -1.f});
    if (force.source == "Touch emotion")
      memory.touchEmotionMemory.record({older, -1});
    if (force.source == "Context emotion")
      memory.contextEmotionMemory.record({older, KV::ContextEmotion(-1, 4.f)});
    EXPECT_EQ(start, memory.headPostureMemory.youngest().time) << force.source;
    EXPECT_EQ(start, memory.asrEmotionMemory.youngest().time) << force.source;
  };
  const auto updateWatched = [&] {
    const ko::ScopedClockSource elsewhere(clock);
    const KV::ScopedForceObserver observer(onForce);
    person.update(observation);
  };
  std::packaged_task<void()> task(updateWatched);
  std::future<void> done = task.get_future();
  std::thread thread(std::move(task));
  if (done.wait_for(std::chrono::seconds(60)) != std::future_status::ready)
  {
    ADD_FAILURE() << "the update waits for a mutex that it holds itself";
    std::abort();  // that thread has no way to end
  }
  thread.join();
  done.get();

  EXPECT_GT(calls, 20);
  EXPECT_EQ(3U, memory.asrEmotionMemory.records().size()) << "a force on the valence moves two quantities";
  EXPECT_EQ(3U, memory.touchEmotionMemory.records().size());
  EXPECT_EQ(3U, memory.contextEmotionMemory.records().size());
  EXPECT_EQ(support::estimateOf(*unwatched.personState._p), support::estimateOf(*person.personState._p));
}

// Then there is no mean head posture for the attention.
TEST_F(ForceObserver, MayLetTheHeadPosturesBeForgottenFromItsCallback)
{
  KV::PersonObservation observation;
  observation.headPosture = KV::Timestamped(start, KV::HeadPosture(0.f, 0.f, 0.f));
  person.update(observation);
  KV::PersonMemoryPrivate& memory = *person.personMemory._p;
  const float attention = person.personState.personAttention().value;
  std::vector<std::string> sources;
  {
    const KV::ScopedForceObserver observer([&](const KV::Force& force) {
      sources.emplace_back(force.source);
      if (force.source != std::string("Body Language"))
        return;
      clock.advance(milliseconds(60000));
      memory.headPostureMemory.record({start, KV::HeadPosture()});  // forgets what is too old: all of it
    });
    person.update(observation);
  }

  EXPECT_TRUE(memory.headPostureMemory.records().empty());
  EXPECT_THAT(sources, testing::Contains("Body Language"));
  EXPECT_THAT(sources, testing::Not(testing::Contains("Gaze and head based attention")));
  EXPECT_EQ(attention, person.personState.personAttention().value);
}

// Speech pulls after the mutex of the remembered emotions was released.
TEST_F(ForceObserver, LetsAnErrorOfItsCallbackThroughAndNoMutexLocked)
{
  KV::PersonObservation observation;
  observation.asrEmotion = now(1.f);
  observation.speaking = now(true);

  const std::string error = support::textThrownBy<std::runtime_error>([&] {
    const KV::ScopedForceObserver observer([](const KV::Force& force) {
      if (force.source == "Asr emotion")
        throw std::runtime_error("enough");
    });
    person.update(observation);
  });

  EXPECT_EQ("enough", error);
  KV::PersonStatePrivate& state = *person.personState._p;
  for (boost::mutex* mutex : {&state.valenceMutex, &state.attentionMutex, &state.valenceConfidenceMutex,
                              &state.attentionConfidenceMutex, &state.headHeightMutex, &state.observationsMutex})
    EXPECT_TRUE(support::isFree(*mutex));
  EXPECT_TRUE(support::isFree(person.personMemory._p->asrEmotionMemory.mutex()));
  EXPECT_GT(person.personState.personValence().value, 0.f) << "the force had acted before it was shown";

  person.update(observation);  // waits for neither
}

}  // namespace
