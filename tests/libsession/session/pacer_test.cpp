#include "support/clocktest.hpp"
#include "support/thrown.hpp"

#include <skeigiot/session/pacer.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

namespace
{

using namespace support;
using KV::Person;
using KV::PersonObservation;
using KV::session::Cycle;
using KV::session::Pacer;

class PacerTest : public ClockTest
{
protected:
  void setTime(double sinceStart) { clock.set(start + nanoseconds(std::llround(sinceStart * 1e9))); }

  static ko::SystemClock::time_point now() { return ko::SystemClock::now(); }

  static PersonObservation facing(float yaw)
  {
    PersonObservation observation;
    observation.headPosture.emplace(now(), KV::HeadPosture(yaw, 0.f, 0.f));
    observation.gaze.emplace(now(), KV::Gaze(-yaw, 0.f));
    return observation;
  }

  static PersonObservation smiling(float smile)
  {
    PersonObservation observation = facing(0.f);
    observation.smile.emplace(now(), KV::Smile(smile, 1.f));
    KV::Expressions expressions;
    expressions.joy = {smile, 1.f};
    expressions.calm = {1.f - smile, 1.f};
    observation.expressions.emplace(now(), expressions);
    return observation;
  }

  Pacer pacer;
  Person person{1};
};

void expectSame(const Person& expected, const Person& found)
{
  const auto& left = expected.personState;
  const auto& right = found.personState;
  EXPECT_EQ(left.personValence().value, right.personValence().value);
  EXPECT_EQ(left.personValence().confidence, right.personValence().confidence);
  EXPECT_EQ(left.personAttention().value, right.personAttention().value);
  EXPECT_EQ(left.personAttention().confidence, right.personAttention().confidence);
  EXPECT_EQ(left.personAttentionState(), right.personAttentionState());
}

TEST_F(PacerTest, UpdatesWithTheFirstObservation)
{
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  EXPECT_GT(person.personState.personAttention().confidence, 0.f);
}

TEST_F(PacerTest, UpdatesTenTimesASecondHoweverOftenItIsCalled)
{
  for (const double rate : {10., 11., 12., 12.5, 15., 24., 25., 29.97, 30., 48., 60., 90., 100., 120.})
  {
    Pacer fresh;
    Person somebody(1);
    int updates = 0;
    constexpr int length = 30;  // [s]
    for (int i = 0; i < static_cast<int>(length * rate); ++i)
    {
      setTime(i / rate);
      updates += fresh.take(somebody, facing(0.f)) ? 1 : 0;
    }
    EXPECT_NEAR(10. * length, updates, 1.) << rate << " observations a second";
  }
}

TEST_F(PacerTest, UpdatesWithEachObservationBelowTheRateOfTheCycle)
{
  for (int i = 0; i < 40; ++i)
  {
    setTime(i / 8.);
    EXPECT_TRUE(pacer.take(person, facing(0.f))) << i;
  }
}

TEST_F(PacerTest, BearsTimesThatAreRoundedToMilliseconds)
{
  int updates = 0;
  for (int i = 0; i < 300; ++i)
  {
    setTime(std::round(i / 0.03) / 1000.);  // 30 Hz: every third is due, at 100, 200, 300 ms
    updates += pacer.take(person, facing(0.f)) ? 1 : 0;
  }
  EXPECT_EQ(100, updates);
}

TEST_F(PacerTest, UpdatesAtOnceAfterAPause)
{
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  setTime(0.05);
  EXPECT_FALSE(pacer.take(person, facing(0.f)));
  setTime(0.73);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  setTime(0.80);
  EXPECT_FALSE(pacer.take(person, facing(0.f))) << "the grid begins anew";
  setTime(0.83);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
}

TEST_F(PacerTest, IsTheSameAsAnUpdateByHandOnceACycle)
{
  Person byHand(1);
  PersonObservation newest;
  for (int i = 0; i < 300; ++i)
  {
    setTime(i / 30.);
    PersonObservation observation = i % 2 == 0 ? smiling(0.002f * static_cast<float>(i)) : facing(0.1f);
    if (i % 7 == 0)
      observation.distance.emplace(now(), 1.f + 0.01f * static_cast<float>(i));
    KV::session::takeNewest(newest, observation);
    byHand.updateMemory(observation);
    const bool isUpdated = pacer.take(person, observation);
    EXPECT_EQ(i % 3 == 0, isUpdated) << i;
    if (isUpdated)
    {
      byHand.update(newest);
      newest = PersonObservation();
    }
    expectSame(byHand, person);
  }
  EXPECT_GT(person.personState.personValence().value, 0.1f) << "the smile had no effect: the comparison shows nothing";
}

TEST_F(PacerTest, IsTheUpdateItselfWithTheRecordedCycle)
{
  std::mt19937 random(7);
  std::uniform_real_distribution<float> angle(-40.f, 40.f);
  std::uniform_real_distribution<float> share(0.f, 1.f);
  Pacer recorded(Cycle::recorded());
  Person byHand(1);
  for (int i = 0; i < 500; ++i)
  {
    clock.advance(milliseconds(i % 50));
    if (i % 11 == 10)
    {
      EXPECT_TRUE(recorded.takeNotSeen(person));
      byHand.decreaseSinceNotSeen();
      continue;
    }
    PersonObservation observation = i % 3 == 0 ? smiling(share(random)) : facing(angle(random));
    if (i % 97 == 0)
      observation.touchEmotion.emplace(now(), i % 2);
    EXPECT_TRUE(recorded.take(person, observation));
    byHand.update(observation);
    expectSame(byHand, person);
  }
  EXPECT_FALSE(recorded.finish(person));
  EXPECT_FALSE(recorded.firstWaiting());
}

TEST_F(PacerTest, RemembersWhatIsTouchedBetweenTwoUpdates)
{
  Person untouched(2);
  for (int i = 0; i <= 6; ++i)
  {
    setTime(i / 30.);
    PersonObservation observation = facing(0.f);
    pacer.take(untouched, observation);
    if (i == 1)
      observation.touchEmotion.emplace(now(), 1);
    pacer.take(person, observation);
  }
  EXPECT_GT(person.personState.personValence().value, untouched.personState.personValence().value);
}

TEST_F(PacerTest, TakesTheAnglesOfAllObservationsOfACycle)
{
  Person steady(2);
  for (int i = 0; i <= 3; ++i)
  {
    setTime(i / 30.);
    pacer.take(steady, facing(0.f));
    pacer.take(person, facing(i == 1 || i == 2 ? 30.f : 0.f));
  }
  EXPECT_LT(person.personState.personAttention().value, steady.personState.personAttention().value);
}

TEST_F(PacerTest, TakesTheNewestSmileOfACycle)
{
  pacer.take(person, smiling(0.f));
  setTime(0.03);
  pacer.take(person, smiling(1.f));
  setTime(0.06);
  pacer.take(person, facing(0.f));
  setTime(0.1);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  EXPECT_GT(person.personState.personValence().value, 0.f);
}

TEST_F(PacerTest, TakesAPersonForSeenWhoWasSeenInTheCycle)
{
  pacer.take(person, facing(0.f));
  const float before = person.personState.personAttention().confidence;
  setTime(0.03);
  pacer.take(person, facing(0.f));
  setTime(0.06);
  EXPECT_FALSE(pacer.takeNotSeen(person));
  setTime(0.1);
  EXPECT_TRUE(pacer.isWaiting(1));
  EXPECT_TRUE(pacer.takeNotSeen(person));
  EXPECT_FALSE(pacer.isWaiting(1));
  EXPECT_GT(person.personState.personAttention().confidence, before);
}

TEST_F(PacerTest, AgesAPersonOnceACycle)
{
  Person byHand(1);
  pacer.take(person, smiling(1.f));
  byHand.update(smiling(1.f));
  for (int i = 1; i <= 6; ++i)
  {
    setTime(i / 30.);
    EXPECT_EQ(i % 3 == 0, pacer.takeNotSeen(person)) << i;
  }
  byHand.decreaseSinceNotSeen();
  byHand.decreaseSinceNotSeen();
  expectSame(byHand, person);
}

TEST_F(PacerTest, UpdatesWhenTheClockWasSetBack)
{
  setTime(100.);
  pacer.take(person, facing(0.f));
  setTime(40.);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  setTime(40.05);
  EXPECT_FALSE(pacer.take(person, facing(0.f)));
  setTime(40.1);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
}

TEST_F(PacerTest, BearsAClockAtTheEndsOfTime)
{
  clock.set(ko::SystemClock::time_point::max());
  EXPECT_TRUE(pacer.take(person, PersonObservation()));
  pacer.take(person, PersonObservation());
  clock.set(ko::SystemClock::time_point::min());
  EXPECT_TRUE(pacer.take(person, PersonObservation()));
  clock.set(ko::SystemClock::time_point::max());
  EXPECT_TRUE(pacer.take(person, PersonObservation()));
}

TEST_F(PacerTest, GivesEachPersonAGridOfTheirOwn)
{
  Person other(2);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  setTime(0.05);
  EXPECT_TRUE(pacer.take(other, facing(0.f)));
  setTime(0.1);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  EXPECT_FALSE(pacer.take(other, facing(0.f)));
  setTime(0.15);
  EXPECT_FALSE(pacer.take(person, facing(0.f)));
  EXPECT_TRUE(pacer.take(other, facing(0.f)));
}

TEST_F(PacerTest, FinishesWhatWaits)
{
  pacer.take(person, facing(0.f));
  EXPECT_FALSE(pacer.finish(person)) << "nothing waits";
  setTime(0.05);
  const KV::ValueConfidence<float> no(0.f, 1.f);
  const KV::ValueConfidence<float> yes(1.f, 1.f);
  PersonObservation spoken;
  spoken.voiceEmotion.emplace(now(), KV::VoiceEmotion(no, no, yes, no, no, yes));
  EXPECT_FALSE(pacer.take(person, spoken));
  EXPECT_EQ(0.f, person.personState.personValence().value);
  EXPECT_TRUE(pacer.finish(person));
  EXPECT_NE(0.f, person.personState.personValence().value);
  EXPECT_FALSE(pacer.finish(person)) << "it is done";
  setTime(0.1);
  EXPECT_TRUE(pacer.take(person, facing(0.f))) << "the grid is as it was";
}

TEST_F(PacerTest, ReportsWhoWaitsLongest)
{
  Person other(2);
  pacer.take(other, facing(0.f));
  setTime(0.02);
  pacer.take(person, facing(0.f));
  EXPECT_FALSE(pacer.firstWaiting());
  setTime(0.03);
  pacer.take(person, facing(0.f));
  ASSERT_TRUE(pacer.firstWaiting());
  EXPECT_EQ(1, pacer.firstWaiting()->person);
  EXPECT_EQ(start + milliseconds(220), pacer.firstWaiting()->latest) << "due at 120 ms, and a cycle more";
  pacer.take(other, facing(0.f));
  EXPECT_EQ(2, pacer.firstWaiting()->person);
  pacer.finish(other);
  EXPECT_EQ(1, pacer.firstWaiting()->person);
  setTime(0.12);
  pacer.take(person, facing(0.f));
  EXPECT_FALSE(pacer.firstWaiting());
}

TEST_F(PacerTest, StartsAnewWithAPersonWhomItForgot)
{
  pacer.forget(1);
  pacer.take(person, facing(0.f));
  setTime(0.03);
  EXPECT_FALSE(pacer.take(person, smiling(1.f)));
  pacer.forget(1);
  EXPECT_FALSE(pacer.isWaiting(1));
  EXPECT_FALSE(pacer.firstWaiting());
  Person newcomer(1);
  setTime(0.04);
  EXPECT_TRUE(pacer.take(newcomer, facing(0.f)));
  EXPECT_EQ(0.f, newcomer.personState.personValence().value) << "the smile was somebody else's";
}

TEST_F(PacerTest, UpdatesAtOnceWhenItIsRestarted)
{
  pacer.take(person, facing(0.f));
  EXPECT_FALSE(pacer.take(person, facing(0.f)));
  pacer.restart(1);
  EXPECT_TRUE(pacer.take(person, facing(0.f)));
  EXPECT_FALSE(pacer.firstWaiting());
}

TEST_F(PacerTest, RefusesARateThatIsNone)
{
  for (const double rate :
       {0., -1., 1000.5, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
    EXPECT_EQ("a cycle has a rate above 0, up to 1000 Hz",
              textThrownBy<std::invalid_argument>([&] { Pacer refused(Cycle{rate}); }))
        << rate;
}

TEST_F(PacerTest, TakesTheNewestOfEachReadingByItsTime)
{
  PersonObservation target;
  target.distance.emplace(start + seconds(1), 1.f);
  target.headHeight.emplace(start + seconds(1), 1.f);
  PersonObservation other;
  other.distance.emplace(start, 2.f);                 // older
  other.headHeight.emplace(start + seconds(1), 2.f);  // as old: the later one
  other.speaking.emplace(start - seconds(9), true);   // missing there
  KV::session::takeNewest(target, other);
  EXPECT_EQ(1.f, target.distance->value);
  EXPECT_EQ(2.f, target.headHeight->value);
  EXPECT_TRUE(target.speaking->value);
  EXPECT_FALSE(target.gaze);
}

}  // namespace
