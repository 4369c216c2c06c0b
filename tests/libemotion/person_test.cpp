#include <skeigiot/person.hpp>

#include "bodylanguagestateprivate.hpp"
#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include "support/capturedlog.hpp"
#include "support/capturedstream.hpp"
#include "support/clocktest.hpp"
#include "support/estimate.hpp"
#include "support/randomobservations.hpp"
#include "support/scriptedclock.hpp"

#include <ko/log.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace
{

using ko::human::AttentionState;
using KV::Person;
using support::Estimate;
using support::milliseconds;
using support::start;

Estimate estimateOf(const Person& person)
{
  return support::estimateOf(*person.personState._p);
}

std::string written(const Person& person)
{
  std::ostringstream stream;
  stream << person;
  return stream.str();
}

class APerson : public support::ClockTest
{
protected:
  static KV::PersonObservation touched()
  {
    KV::PersonObservation observation;
    observation.touchEmotion = KV::Timestamped<std::int32_t>(ko::SystemClock::now(), 1);
    return observation;
  }

  static KV::PersonObservation headUp()
  {
    KV::PersonObservation observation;
    observation.headPosture = KV::Timestamped<KV::HeadPosture>(ko::SystemClock::now(), KV::HeadPosture(0.f, 10.f, 0.f));
    return observation;
  }
};

TEST_F(APerson, IsNumberZeroByDefaultWithNewRecords)
{
  const Person person;
  EXPECT_EQ(0, person.personID);
  EXPECT_EQ(Estimate(), estimateOf(person));
  EXPECT_TRUE(person.personMemory._p->gazeMemory.records().empty());
  EXPECT_NE(Person().personState._p, person.personState._p);
  EXPECT_NE(Person().personMemory._p, person.personMemory._p);
}

TEST_F(APerson, HasTheIdentifierThatIsGiven)
{
  EXPECT_EQ(7, Person(7).personID);
  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), Person(std::numeric_limits<std::int32_t>::min()).personID);
  EXPECT_EQ(Estimate(), estimateOf(Person(7)));
}

// Copies

// A graph of many persons moves them at every newcomer.
TEST_F(APerson, HandsItsRecordsOverWithoutCountingThemWhenItIsMoved)
{
  EXPECT_TRUE(std::is_nothrow_move_constructible_v<Person>);
  EXPECT_TRUE(std::is_nothrow_move_assignable_v<Person>);
  Person source(7);
  const auto* const state = source.personState._p.get();
  const auto* const memory = source.personMemory._p.get();

  Person target(std::move(source));
  EXPECT_EQ(7, target.personID);
  EXPECT_EQ(state, target.personState._p.get());
  EXPECT_EQ(memory, target.personMemory._p.get());
  EXPECT_EQ(1, target.personState._p.use_count());

  Person other;
  other = std::move(target);
  EXPECT_EQ(state, other.personState._p.get());
  EXPECT_EQ(memory, other.personMemory._p.get());
  EXPECT_EQ(1, other.personMemory._p.use_count());
}

TEST_F(APerson, SharesBothRecordsWithItsCopies)
{
  const Person a(5);
  Person b(a);
  EXPECT_EQ(5, b.personID);

  b.update(touched());

  EXPECT_GT(a.personState.personValence().value, 0.6f);
  EXPECT_EQ(1U, a.personMemory._p->touchEmotionMemory.records().size());
  EXPECT_EQ(a.personState._p, b.personState._p);
  EXPECT_EQ(a.personMemory._p, b.personMemory._p);
}

TEST_F(APerson, KeepsItsIdentifierToItself)
{
  Person a(5);
  const Person b(a);
  a.setUserSessionID(6);
  EXPECT_EQ(5, b.personID);
}

TEST_F(APerson, OutlivesTheOneItWasCopiedFrom)
{
  auto a = std::make_unique<Person>(5);
  Person b(*a);
  a.reset();
  b.update(touched());
  EXPECT_GT(b.personState.personValence().value, 0.6f);
  EXPECT_EQ(1, b.personState._p.use_count());
  EXPECT_EQ(1, b.personMemory._p.use_count());
}

// Updates

TEST_F(APerson, RemembersTheObservationBeforeItIsEstimatedFrom)
{
  Person person;
  person.update(headUp());

  EXPECT_EQ(1U, person.personMemory._p->headPostureMemory.records().size());
  // The body language was updated from the memory, and pulled the valence, before silence did.
  EXPECT_EQ(-0.5f, person.personState.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription).level);
  Estimate expected;
  expected.pullValence(-0.5f, 0.065f);
  expected.pullValence(0.f, (1.f - 0.01f) * 0.65f);
  EXPECT_EQ(expected.valence, person.personState.personValence().value);
}

TEST_F(APerson, OnlyRemembersWhenItsMemoryIsUpdated)
{
  Person person;
  person.updateMemory(headUp());
  person.updateMemory(touched());

  EXPECT_EQ(1U, person.personMemory._p->headPostureMemory.records().size());
  EXPECT_EQ(1U, person.personMemory._p->touchEmotionMemory.records().size());
  EXPECT_EQ(Estimate(), estimateOf(person));
  EXPECT_EQ(0.f, person.personState.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription).confidence);
}

TEST_F(APerson, RemembersNothingWhenItsModelsAreUpdated)
{
  Person person;
  person._updateOnlineModels(touched());

  EXPECT_TRUE(person.personMemory._p->touchEmotionMemory.records().empty());
  EXPECT_EQ(0.f, person.personState.personValence().value);
}

TEST_F(APerson, UpdatesBodyLanguageAndStateFromTheMemory)
{
  Person person;
  person.updateMemory(headUp());
  person._updateOnlineModels(KV::PersonObservation());

  EXPECT_EQ(-0.5f, person.personState.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription).level);
  EXPECT_LT(person.personState.personValence().value, 0.f);
  EXPECT_GT(person.personState.personAttention().confidence, 0.6f);
}

TEST_F(APerson, UpdatesTheSameInOneStepAndInTwo)
{
  const support::CapturedLog log;  // old voices are reported
  for (unsigned int seed = 1; seed <= 10; ++seed)
  {
    SCOPED_TRACE("seed " + std::to_string(seed));
    support::RandomObservations random(seed);
    Person atOnce;
    Person inTwoSteps;
    for (int cycle = 0; cycle < 60; ++cycle)
    {
      clock.advance(random.pause());
      const KV::PersonObservation observation = random.next();
      atOnce.update(observation);
      inTwoSteps.updateMemory(observation);
      inTwoSteps._updateOnlineModels(observation);
      ASSERT_EQ(estimateOf(atOnce), estimateOf(inTwoSteps)) << "cycle " << cycle;
      ASSERT_EQ(atOnce.personState.personAttentionState(), inTwoSteps.personState.personAttentionState());
      ASSERT_EQ(atOnce.personState._p->lastObservationTimes, inTwoSteps.personState._p->lastObservationTimes);
    }
  }
}

TEST_F(APerson, UpdatesTheSameThroughOneCopyAndThroughSeveral)
{
  const support::CapturedLog log;  // old voices are reported
  const unsigned int seed = 11;
  SCOPED_TRACE("seed " + std::to_string(seed));
  support::RandomObservations random(seed);
  Person alone;
  Person shared;
  Person copy(shared);
  for (int cycle = 0; cycle < 60; ++cycle)
  {
    clock.advance(random.pause());
    const KV::PersonObservation observation = random.next();
    alone.update(observation);
    (cycle % 2 == 0 ? shared : copy).update(observation);
    ASSERT_EQ(estimateOf(alone), estimateOf(shared)) << "cycle " << cycle;
    ASSERT_EQ(estimateOf(alone), estimateOf(copy)) << "cycle " << cycle;
  }
}

TEST_F(APerson, KeepsTheObservationWhenTheEstimateFails)
{
  const support::CapturedStandardOutput forgetting;  // a memory that cannot remove old records reports it
  Person person;
  const KV::PersonObservation observation = touched();
  // One reading to prune on recording, one when the report counts, one when it writes; then the update.
  support::ScriptedClock failing([](int reading) {
    if (reading >= 3)
      throw std::runtime_error("the clock stands still");
    return start;
  });
  {
    const ko::ScopedClockSource failingScope(failing);
    EXPECT_THROW(person.update(observation), std::runtime_error);
  }
  EXPECT_EQ(1U, person.personMemory._p->touchEmotionMemory.records().size());
}

TEST_F(APerson, FadesWhileNotSeen)
{
  Person person;
  person.personState = KV::PersonState(1.f, 1.f, 1.f, 1.f);
  Estimate expected = estimateOf(person);
  expected.pullValence(0.f, 0.26f);
  expected.pullValenceConfidence(0.f, 0.7f);
  expected.pullAttention(0.f, 0.26f);
  expected.pullAttentionConfidence(0.f, 0.7f);

  person.decreaseSinceNotSeen();

  EXPECT_EQ(expected, estimateOf(person));
}

// The rest

TEST_F(APerson, HandsEachFrequencyOnToItsState)
{
  Person person;
  person.setFrequencyGaze(12.f);
  person.setFrequencyFace(34.f);
  EXPECT_EQ(12.f, person.personState._p->frequencyGaze);
  EXPECT_EQ(34.f, person.personState._p->frequencyFace);
}

TEST_F(APerson, IsDescribedByPleasureAndZone)
{
  Person person;
  EXPECT_EQ(std::make_pair(KV::PleasureUnknown, AttentionState::Unknown), person.personDescriptor());

  person.personState = KV::PersonState(1.f, 1.f, 0.f, 0.f);
  person.personState._p->attentionZone = AttentionState::LookingDown;
  EXPECT_EQ(std::make_pair(KV::PleasurePositive, AttentionState::LookingDown), person.personDescriptor());
}

TEST_F(APerson, WritesItsIdentifier)
{
  EXPECT_EQ("Person (US#0) ", written(Person()));
  EXPECT_EQ("Person (US#-12345) ", written(Person(-12345)));
}

TEST_F(APerson, WritesTheIdentifierThatItWasGivenLast)
{
  Person person(3);
  person.setUserSessionID(7);
  EXPECT_EQ("Person (US#7) ", written(person));
}

TEST_F(APerson, WritesItsIdentifierInDecimalOnAnyStream)
{
  std::ostringstream stream;
  std::ostream& returned = stream << std::hex << std::showbase << Person(255);
  EXPECT_EQ("Person (US#255) ", stream.str());
  EXPECT_EQ(&stream, &returned);
}

TEST_F(APerson, RegistersItsLogCategory)
{
  EXPECT_THAT(ko::log::categories(), ::testing::Contains("kvmood.person"));
}

}  // namespace
