// The ranges of estimates, and where they stay.

#include "personstateprivate.hpp"
#include "randomlife.hpp"

#include "support/estimate.hpp"

#include <skeigiot/person.hpp>
#include <skeigiot/readings.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{

using namespace properties;
using support::Estimate;
using support::milliseconds;

bool isWithin(float number, float least, float greatest)
{
  return number >= least && number <= greatest;
}

bool isInRange(const Estimate& e)
{
  return isWithin(e.valence, -1.f, 1.f) && isWithin(e.unsmoothedValence, -1.f, 1.f) &&
         isWithin(e.valenceConfidence, 0.f, 1.f) && isWithin(e.unsmoothedConfidence, 0.f, 1.f) &&
         isWithin(e.attention, 0.f, 1.f) && isWithin(e.attentionConfidence, 0.f, 1.f);
}

TEST(Ranges, HoldInEveryCycleOfALife)
{
  for (const unsigned int seed : seeds)
  {
    RandomLife life(seed, 4 * hourOfLife);
    KV::Person person;
    float leastValence = 0.f;
    float greatestValence = 0.f;
    float greatestAttention = 0.f;
    while (life.next())
    {
      life.letLive(person);
      const Estimate estimate = support::estimateOf(*person.personState._p);
      const KV::BodyLanguageEase ease =
          person.personState.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription);
      const int zone = static_cast<int>(person.personState.personAttentionState());
      const int pleasure = person.personState.personPleasureState();
      ASSERT_TRUE(isInRange(estimate)) << estimate << ", " << life.place();
      ASSERT_TRUE(isWithin(ease.level, -0.5f, 0.5f) && isWithin(ease.confidence, 0.f, 0.5f)) << life.place();
      ASSERT_TRUE(zone >= 0 && zone <= 9) << zone << ", " << life.place();
      ASSERT_TRUE(pleasure >= KV::PleasureUnknown && pleasure <= KV::PleasurePositive) << life.place();
      leastValence = std::min(leastValence, estimate.valence);
      greatestValence = std::max(greatestValence, estimate.valence);
      greatestAttention = std::max(greatestAttention, estimate.attention);
    }
    EXPECT_LT(leastValence, -0.9f) << "seed " << seed << " tells nothing: its life is too dull";
    EXPECT_GT(greatestValence, 0.9f) << "seed " << seed << " tells nothing: its life is too dull";
    EXPECT_GT(greatestAttention, 0.8f) << "seed " << seed << " tells nothing: its life is too dull";
  }
}

TEST(FixedPoints, OfAForceStayWhateverItsWeight)
{
  for (const unsigned int seed : seeds)
  {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(0.f, 1.f);
    for (int i = 0; i < 2000; ++i)
    {
      const float valence = 2.f * unit(random) - 1.f;
      const float attention = unit(random);
      const float weight = unit(random);
      KV::PersonState state(valence, 0.5f, attention, 0.25f);
      state._p->_setUnsmoothedValence(valence);
      state._p->_setUnsmoothedValenceConfidence(0.5f);
      const Estimate before = support::estimateOf(*state._p);

      state._p->_applyForceValence(valence, weight, "test");
      state._p->_applyForceValenceConfidence(0.5f, weight, "test");
      state._p->_applyForceAttention(attention, weight, "test");
      state._p->_applyForceAttentionConfidence(0.25f, weight, "test");

      ASSERT_EQ(before, support::estimateOf(*state._p)) << "seed " << seed << ", force " << i;
    }
  }
}

TEST(FixedPoints, OfAForceOfNoWeightAreAllStates)
{
  for (const unsigned int seed : seeds)
  {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> around(-2.f, 2.f);
    for (int i = 0; i < 2000; ++i)
    {
      KV::PersonState state(around(random), around(random), around(random), around(random));
      const Estimate before = support::estimateOf(*state._p);

      state._p->_applyForceValence(around(random), 0.f, "test");
      state._p->_applyForceValenceConfidence(around(random), 0.f, "test");
      state._p->_applyForceAttention(around(random), 0.f, "test");
      state._p->_applyForceAttentionConfidence(around(random), 0.f, "test");

      ASSERT_EQ(before, support::estimateOf(*state._p)) << "seed " << seed << ", force " << i;
    }
  }
}

// A person who was never seen, and without any reading.
TEST(FixedPoints, AreNewPersonsWithoutReadings)
{
  support::TestClock time;
  KV::Person person;
  const Estimate before = support::estimateOf(*person.personState._p);
  for (int cycle = 0; cycle < 36000; ++cycle)
  {
    if (cycle % 3 == 0)
      person.decreaseSinceNotSeen();
    else
      person.update(KV::PersonObservation());
    ASSERT_EQ(before, support::estimateOf(*person.personState._p)) << "cycle " << cycle;
    time.clock.advance(milliseconds(100));
  }
}

// For any readings: when the sensors repeat the same ones, the estimate comes to rest, and stays for hours.
TEST(FixedPoints, AreReachedUnderReadingsThatStayTheSame)
{
  constexpr int framesUntilRest = 600;  // a minute: all memories are full, and the last bits have settled
  constexpr int framesOfRest = 1200;
  for (unsigned int seed = 1; seed <= 12; ++seed)
  {
    support::TestClock time;
    support::RandomObservations random(seed);
    KV::PersonObservation observation = random.next();
    observation.voiceEmotion.reset();    // moves the estimate once for each timestamp, and is not remembered
    observation.contextEmotion.reset();  // fills its memory for the longest time
    observation.touchEmotion.reset();
    KV::Person person;
    Estimate rest;
    for (int frame = 0; frame < framesUntilRest + framesOfRest; ++frame)
    {
      KV::forEachReading([&observation](const auto& known) {
        if (auto& reading = known.in(observation))
          reading->time = ko::SystemClock::now();
      });
      person.update(observation);
      const Estimate now = support::estimateOf(*person.personState._p);
      if (frame <= framesUntilRest)
        rest = now;
      ASSERT_EQ(rest, now) << "seed " << seed << ", frame " << frame;
      time.clock.advance(milliseconds(100));
    }
  }
}

}  // namespace
