// The content of a memory does not depend on the order of the readings.

#include "fingerprint.hpp"
#include "randomlife.hpp"

#include <skeigiot/person.hpp>
#include <skeigiot/readings.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace
{

using namespace properties;
using support::milliseconds;

using Observations = std::vector<KV::PersonObservation>;

/// Sets the time of every reading of the observation.
void setTime(KV::PersonObservation& observation, ko::SystemClock::time_point time)
{
  KV::forEachReading([&](const auto& known) {
    if (auto& reading = known.in(observation))
      reading->time = time;
  });
}

/// Random observations, each at a time of its own: some from the future, some too old to be remembered.
Observations observationsAtTimesOfTheirOwn(support::RandomObservations& random, int count)
{
  Observations observations;
  for (int i = 0; i < count; ++i)
  {
    observations.push_back(random.next());
    setTime(observations.back(), ko::SystemClock::now() + milliseconds(1000 - 250 * i));
  }
  return observations;
}

void file(const Observations& observations, KV::Person& person)
{
  for (const KV::PersonObservation& observation : observations)
    person.updateMemory(observation);
}

TEST(MemoryProperties, AreTheSameInWhateverOrderReadingsArrive)
{
  for (const unsigned int seed : seeds)
  {
    support::TestClock time;
    const support::CapturedLog log;  // old voices cause warnings
    support::RandomObservations random(seed);
    std::mt19937 shuffling(seed);
    KV::Person ordered;
    KV::Person shuffled;
    for (int round = 0; round < 60; ++round)
    {
      Observations observations = observationsAtTimesOfTheirOwn(random, 100);
      file(observations, ordered);
      std::shuffle(observations.begin(), observations.end(), shuffling);
      file(observations, shuffled);
      ASSERT_EQ(Fingerprint::of(ordered), Fingerprint::of(shuffled)) << "seed " << seed << ", round " << round;

      // The same holds for the estimates.
      ordered._updateOnlineModels(observations.front());
      shuffled._updateOnlineModels(observations.front());
      ASSERT_EQ(Fingerprint::of(ordered), Fingerprint::of(shuffled)) << "seed " << seed << ", round " << round;
      time.clock.advance(support::seconds(60) + milliseconds(1));
    }
  }
}

TEST(MemoryProperties, KeepTheFirstOfReadingsWithOneTime)
{
  for (const unsigned int seed : seeds)
  {
    support::TestClock time;
    support::RandomObservations random(seed);
    std::mt19937 choosing(seed);
    KV::Person onlyFirst;
    KV::Person all;
    for (int round = 0; round < 200; ++round)
    {
      Observations first = observationsAtTimesOfTheirOwn(random, 30);
      file(first, onlyFirst);
      file(first, all);
      for (int i = 0; i < 30; ++i)
      {
        // Another value for the kind and time of an existing reading.
        KV::PersonObservation& again = first[std::uniform_int_distribution<std::size_t>(0, 29)(choosing)];
        KV::PersonObservation late = again;
        if (late.gaze)
          late.gaze->value.yaw += 1.f;
        if (late.headPosture)
          late.headPosture->value.setPitch(50.f);
        if (late.touchEmotion)
          late.touchEmotion->value = -late.touchEmotion->value - 1;
        if (late.speaking)
          late.speaking->value = !late.speaking->value;
        if (late.contextEmotion)
          late.contextEmotion->value.lifetime += 1.f;
        all.updateMemory(late);
      }
      ASSERT_EQ(Fingerprint::of(onlyFirst), Fingerprint::of(all)) << "seed " << seed << ", round " << round;
      time.clock.advance(milliseconds(10007));
    }
  }
}

}  // namespace
