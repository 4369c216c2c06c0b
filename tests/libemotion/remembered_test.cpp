#include "support/clocktest.hpp"
#include "support/heldmutex.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/readings.hpp>

#include "personmemoryprivate.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

namespace
{

using KV::PersonMemory;
using KV::PersonObservation;
using support::milliseconds;
using support::seconds;

class RememberedReadings : public support::ClockTest
{
protected:
  void addAge(unsigned int years)
  {
    PersonObservation observation;
    observation.age.emplace(ko::SystemClock::now(), KV::ValueConfidence<unsigned int>(years, 0.5f));
    memory.add(observation);
  }

  PersonMemory memory;
};

template <typename T>
constexpr bool isRemembered(PersonObservation::Reading<T> PersonObservation::*reading)
{
  if constexpr (std::is_same_v<T, float>)
    return reading != &PersonObservation::headHeight;
  return !std::is_same_v<T, KV::VoiceEmotion>;
}

TEST_F(RememberedReadings, AreNoneAtFirst)
{
  KV::forEachReading([this](const auto& known) {
    const auto remembered = memory.remembered(known.field);
    EXPECT_EQ(0U, remembered.count) << known.name;
    EXPECT_FALSE(remembered.youngest) << known.name;
  });
}

TEST_F(RememberedReadings, AreNoneOfANullPointer)
{
  KV::forEachReading([this](const auto& known) {
    using Value = typename std::decay_t<decltype(known)>::Value;
    PersonObservation::Reading<Value> PersonObservation::*const none = nullptr;
    const auto remembered = memory.remembered(none);
    EXPECT_EQ(0U, remembered.count) << known.name;
    EXPECT_FALSE(remembered.youngest) << known.name;
  });
}

TEST_F(RememberedReadings, AreCountedForEachReadingButThoseThatAreNeverRemembered)
{
  KV::forEachReading([this](const auto& known) {
    using Value = typename std::decay_t<decltype(known)>::Value;
    PersonObservation observation;
    known.in(observation).emplace(ko::SystemClock::now(), KV::blankReading<Value>());
    memory.add(observation);

    const auto remembered = memory.remembered(known.field);

    EXPECT_EQ(isRemembered(known.field) ? 1U : 0U, remembered.count) << known.name;
    ASSERT_EQ(remembered.count > 0, remembered.youngest.has_value()) << known.name;
    if (remembered.youngest)
    {
      EXPECT_EQ(ko::SystemClock::now(), remembered.youngest->time) << known.name;
    }
  });
}

TEST_F(RememberedReadings, HaveAYoungestByTimeAndNotByArrival)
{
  PersonObservation observation;
  observation.touchEmotion.emplace(ko::SystemClock::now(), 1);
  memory.add(observation);
  observation.touchEmotion.emplace(ko::SystemClock::now() - seconds(1), -1);
  memory.add(observation);

  const auto remembered = memory.remembered(&PersonObservation::touchEmotion);

  EXPECT_EQ(2U, remembered.count);
  ASSERT_TRUE(remembered.youngest);
  EXPECT_EQ(1, remembered.youngest->value);
}

TEST_F(RememberedReadings, DoNotCountOnceTheyAreOlderThanTheHorizonThoughNothingIsForgotten)
{
  addAge(33);
  clock.advance(seconds(7));
  EXPECT_EQ(1U, memory.remembered(&PersonObservation::age).count) << "exactly as old as the horizon";

  clock.advance(milliseconds(1));

  EXPECT_EQ(0U, memory.remembered(&PersonObservation::age).count);
  EXPECT_FALSE(memory.remembered(&PersonObservation::age).youngest);
  EXPECT_EQ(1U, memory._p->ageMemory.records().size()) << "asking changes nothing";
}

TEST_F(RememberedReadings, CountThoseWithinTheHorizonOnly)
{
  addAge(33);
  clock.advance(seconds(4));
  addAge(34);
  clock.advance(seconds(4));

  const auto remembered = memory.remembered(&PersonObservation::age);

  EXPECT_EQ(1U, remembered.count);
  ASSERT_TRUE(remembered.youngest);
  EXPECT_EQ(34U, remembered.youngest->value.value);
}

TEST_F(RememberedReadings, OfTheContextLastLonger)
{
  PersonObservation observation;
  observation.contextEmotion.emplace(ko::SystemClock::now(), KV::ContextEmotion(1, 5.f));
  memory.add(observation);
  clock.advance(seconds(20));
  EXPECT_EQ(1U, memory.remembered(&PersonObservation::contextEmotion).count);
  clock.advance(milliseconds(1));
  EXPECT_EQ(0U, memory.remembered(&PersonObservation::contextEmotion).count);
}

TEST_F(RememberedReadings, AreReadUnderTheMutexOfTheirMemoryAlone)
{
  addAge(33);
  const auto ask = [this] {
    const ko::ScopedClockSource here(clock);
    EXPECT_EQ(1U, memory.remembered(&PersonObservation::age).count);
  };

  EXPECT_TRUE(support::waitsFor(memory._p->ageMemory.mutex(), ask));
  EXPECT_TRUE(support::endsDespite({&memory._p->genderMemory.mutex(), &memory._p->distanceMemory.mutex()}, ask));
}

TEST_F(RememberedReadings, MayBeAskedForInAForceCallback)
{
  KV::Person person(1);
  PersonObservation observation;
  observation.touchEmotion.emplace(ko::SystemClock::now(), 1);
  std::size_t count = 0;
  const KV::ScopedForceObserver observer(
      [&](const KV::Force&) { count = person.personMemory.remembered(&PersonObservation::touchEmotion).count; });

  person.update(observation);

  EXPECT_EQ(1U, count);
}

}  // namespace
