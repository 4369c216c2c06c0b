#include "bodylanguagestateprivate.hpp"
#include "personstateprivate.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/person.hpp>

#include <ko/type.hpp>
#include <ko/value.hpp>

#include <gtest/gtest.h>

#include <memory>

namespace
{

using boost::chrono::nanoseconds;
using ko::Value;
using KV::BodyLanguageEase;
using KV::Person;
using KV::PersonState;
using KV::PersonStatePrivate;
using KV::ValueConfidence;

const ko::StructTypeInterface& personStateType()
{
  return *static_cast<const ko::StructTypeInterface*>(ko::typeOf<PersonState>());
}

/// A record in which no field has its default.
struct FullRecord
{
  FullRecord()
  {
    record.bodyLanguageState._p->ease = BodyLanguageEase(0.25f, 0.5f);
    record.valence = {0.1f, 0.2f};
    record.unsmoothedValence = {0.3f, 0.4f};
    record.attention = {0.5f, 0.6f};
    record.attentionZone = ko::human::AttentionState::LookingUpLeft;
    record.smile = KV::Smile(0.7f, 0.8f);
    record.gaze = KV::Gaze(1.f, 2.f);
    record.expressions.calm = {0.11f, 0.12f};
    record.expressions.surprise = {0.13f, 0.14f};
    record.headHeight = 1.5f;
    record.headAngles = KV::HeadPosture(3.f, 4.f, 5.f);
    record.frequencyGaze = 30.f;
    record.frequencyFace = 25.f;
    record.attentionAngles = {6.f, 7.f};
    record.attentionEstimates = {0.15f, 0.16f};
    record.lastObservationTimes.fill(ko::SystemClock::time_point(nanoseconds(99)));
  }

  PersonStatePrivate record;
};

/// The private record, cloned by its interface.
class ClonedPersonStateRecord : public ::testing::Test
{
protected:
  const ko::TypeInterface* const type = ko::typeOf<PersonStatePrivate>();
  FullRecord full;
  PersonStatePrivate* const clone = static_cast<PersonStatePrivate*>(type->ptrFromStorage(type->clone(&full.record)));

  ~ClonedPersonStateRecord() override { type->destroy(clone); }
};

TEST_F(ClonedPersonStateRecord, SharesTheBodyLanguageRecord)
{
  EXPECT_EQ(full.record.bodyLanguageState._p, clone->bodyLanguageState._p);
}

TEST_F(ClonedPersonStateRecord, CopiesTheValence)
{
  EXPECT_EQ(0.1f, clone->valence.value);
  EXPECT_EQ(0.2f, clone->valence.confidence);
}

TEST_F(ClonedPersonStateRecord, StartsTheUnsmoothedValenceAnew)
{
  EXPECT_EQ(0.f, clone->unsmoothedValence.value);
  EXPECT_EQ(0.f, clone->unsmoothedValence.confidence);
}

TEST_F(ClonedPersonStateRecord, CopiesTheAttention)
{
  EXPECT_EQ(0.5f, clone->attention.value);
  EXPECT_EQ(0.6f, clone->attention.confidence);
}

TEST_F(ClonedPersonStateRecord, CopiesTheAttentionZone)
{
  EXPECT_EQ(ko::human::AttentionState::LookingUpLeft, clone->attentionZone);
}

TEST_F(ClonedPersonStateRecord, CopiesTheSmile)
{
  EXPECT_EQ(0.7f, clone->smile.value);
  EXPECT_EQ(0.8f, clone->smile.confidence);
}

TEST_F(ClonedPersonStateRecord, CopiesTheGaze)
{
  EXPECT_EQ(1.f, clone->gaze.yaw);
  EXPECT_EQ(2.f, clone->gaze.pitch);
}

TEST_F(ClonedPersonStateRecord, CopiesTheExpressions)
{
  EXPECT_EQ(Value::from(full.record.expressions), Value::from(clone->expressions));
  EXPECT_EQ(0.13f, clone->expressions.surprise.value);
}

TEST_F(ClonedPersonStateRecord, CopiesTheHeadHeight)
{
  EXPECT_EQ(1.5f, clone->headHeight);
}

TEST_F(ClonedPersonStateRecord, CopiesTheHeadAngles)
{
  EXPECT_EQ(3.f, clone->headAngles.yaw());
  EXPECT_EQ(4.f, clone->headAngles.pitch());
  EXPECT_EQ(5.f, clone->headAngles.roll());
}

TEST_F(ClonedPersonStateRecord, CopiesBothFrequencies)
{
  EXPECT_EQ(30.f, clone->frequencyGaze);
  EXPECT_EQ(25.f, clone->frequencyFace);
}

TEST_F(ClonedPersonStateRecord, LeavesTheAttentionVectorsEmpty)
{
  EXPECT_TRUE(clone->attentionAngles.empty());
  EXPECT_TRUE(clone->attentionEstimates.empty());
}

TEST_F(ClonedPersonStateRecord, SetsAllObservationTimesToZeroUnlikeANewRecord)
{
  for (const ko::SystemClock::time_point& time : clone->lastObservationTimes)
    EXPECT_EQ(0, time.time_since_epoch().count());
  for (const ko::SystemClock::time_point& time : PersonStatePrivate().lastObservationTimes)
    EXPECT_EQ(-1000000, time.time_since_epoch().count());
}

TEST_F(ClonedPersonStateRecord, HasMutexesOfItsOwn)
{
  const boost::unique_lock<boost::mutex> lock(full.record.valenceMutex);
  EXPECT_TRUE(clone->valenceMutex.try_lock());
  clone->valenceMutex.unlock();
}

TEST(RegisteredPersonState, SharesItsRecordWithItsClone)
{
  PersonState state(0.5f, 1.f, 0.f, 0.f);
  void* clone = personStateType().clone(&state);
  EXPECT_EQ(state._p, static_cast<PersonState*>(clone)->_p);
  personStateType().destroy(clone);
}

TEST(RegisteredPersonState, ShowsTheMembersOfTheRecord)
{
  PersonState state;
  EXPECT_EQ(&state._p->valence, personStateType().get(&state, 0));
  EXPECT_EQ(&state._p->attention, personStateType().get(&state, 1));
  EXPECT_EQ(&state._p->bodyLanguageState, personStateType().get(&state, 2));
  EXPECT_EQ(&state._p->smile, personStateType().get(&state, 3));
  EXPECT_EQ(&state._p->expressions, personStateType().get(&state, 4));
}

TEST(RegisteredPersonState, WritesThroughToTheSharedRecord)
{
  PersonState state;
  PersonState copy = state;
  ValueConfidence<float> valence(0.5f, 1.f);

  EXPECT_TRUE(personStateType().set(&copy, 0, &valence));
  EXPECT_EQ(0.5f, state.personValence().value);
}

TEST(RegisteredPersonState, MayBeReachedThroughAPersonsValue)
{
  Person person(7);
  Value value = Value::from(person).at("personState");
  value.set("smile", Value::from(KV::Smile(0.5f, 1.f)));
  EXPECT_EQ(0.5f, person.personState.smile().value);
}

TEST(RegisteredPersonState, DoesNotChangeOnceDetached)
{
  const Person person(7);
  const Value snapshot = Value::from(person).detached();
  Person(person).personState._setValence(0.5f);

  EXPECT_EQ(0.f, snapshot.at("personState").at("valence").at("value").to<float>());
  EXPECT_EQ(0.5f, Value::from(person).at("personState").at("valence").at("value").to<float>());
}

TEST(RegisteredBodyLanguageState, WritesThroughToTheSharedRecord)
{
  const auto& type = *static_cast<const ko::StructTypeInterface*>(ko::typeOf<KV::BodyLanguageState>());
  KV::BodyLanguageState state;
  KV::BodyLanguageState copy = state;
  BodyLanguageEase ease(-0.5f, 0.5f);

  EXPECT_TRUE(type.set(&copy, 0, &ease));
  EXPECT_EQ(-0.5f, state.bodyLanguageState(KV::BodyLanguageEaseDescription).level);
}

TEST(RegisteredBodyLanguageState, YieldsNothingWithoutARecord)
{
  const auto& type = *static_cast<const ko::StructTypeInterface*>(ko::typeOf<KV::BodyLanguageState>());
  KV::BodyLanguageState state;
  state._p.reset();
  BodyLanguageEase ease;
  EXPECT_EQ(nullptr, type.get(&state, 0));
  EXPECT_FALSE(type.set(&state, 0, &ease));
}

TEST(RegisteredPerson, KeepsItsMemoriesWhenCloned)
{
  const Person person(7);
  const auto copy = Value::from(person).to<Person>();
  EXPECT_EQ(7, copy.personID);
  EXPECT_EQ(person.personState._p, copy.personState._p);
  EXPECT_EQ(person.personMemory._p, copy.personMemory._p);
}

TEST(RegisteredAmbianceState, ShowsItsLevels)
{
  KV::AmbianceState state;
  state._setAmbientActivityLevel(0.25f);
  const Value value = Value::from(state);
  EXPECT_EQ(0.25f, value.at("agitationLevel").to<float>());
  EXPECT_EQ(0.75f, value.at("calmLevel").to<float>());
}

}  // namespace
