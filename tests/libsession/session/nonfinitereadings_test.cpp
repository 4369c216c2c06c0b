#include "libsession/entries.hpp"

#include <skeigiot/person.hpp>
#include <skeigiot/session/nonfinitereadings.hpp>
#include <skeigiot/session/session.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

using namespace replaytests;
using KV::recordings::Step;
using KV::session::NonFiniteReadings;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

Step withNanGaze(double sinceStart, std::int32_t person)
{
  Step entry = seenAt(sinceStart, person);
  entry.observation.gaze->value.yaw = nan;
  return entry;
}

TEST(NonFiniteReadings, HandsFiniteObservationsOnWithoutACopy)
{
  NonFiniteReadings readings;
  const Step entry = seenAt(1., 3);

  EXPECT_EQ(&entry.observation, &readings.withoutThem(entry, inNanoseconds(1.)));
  EXPECT_EQ("", readings.take());
}

TEST(NonFiniteReadings, LeavesOutTheReadingAlone)
{
  NonFiniteReadings readings;

  const KV::PersonObservation& rest = readings.withoutThem(withNanGaze(1., 3), inNanoseconds(1.));

  EXPECT_FALSE(rest.gaze);
  EXPECT_TRUE(rest.headPosture);
  EXPECT_TRUE(rest.smile);
  EXPECT_TRUE(rest.expressions);
}

TEST(NonFiniteReadings, ReportsHowManyThereWereAndWhereTheFirstWas)
{
  NonFiniteReadings readings;
  readings.withoutThem(seenAt(1., 3), inNanoseconds(1.));
  readings.withoutThem(withNanGaze(61.25, 3), inNanoseconds(61.25));
  Step second = withNanGaze(62., 4);
  second.observation.smile->value.value = nan;
  readings.withoutThem(second, inNanoseconds(62.));

  EXPECT_EQ("left out 3 readings with numbers that are not finite, the first of person 3 at 1:01.250", readings.take());
}

TEST(NonFiniteReadings, CountsAnewAfterEachReport)
{
  NonFiniteReadings readings;
  readings.withoutThem(withNanGaze(1., 3), inNanoseconds(1.));
  readings.take();
  EXPECT_EQ("", readings.take());

  readings.withoutThem(withNanGaze(2., -7), inNanoseconds(2.));

  EXPECT_EQ("left out 1 reading with numbers that are not finite, the first of person -7 at 0:02.000", readings.take());
}

// The session must play the same steps as for a person who never gets the bad reading.
TEST(NonFiniteReadings, DoNotReachTheEstimatorOfASession)
{
  struct Latest : KV::session::SessionObserver
  {
    void personUpdated(const KV::session::Snapshot& shown) override { snapshot = shown; }
    KV::session::Snapshot snapshot;
  } latest;
  KV::session::Session session({}, {&latest});
  KV::Person person(4);
  for (int i = 0; i < 20; ++i)
  {
    Step entry = seenAt(0.1 * i, 4);
    if (i == 7)
      entry = withNanGaze(0.1 * i, 4);
    session.play(entry);
    if (i == 7)
      entry.observation.gaze = boost::none;
    person.update(entry.observation);

    ASSERT_EQ(person.personState.personAttention().value, latest.snapshot.attention.value) << "cycle " << i;
    ASSERT_EQ(person.personState.personValence().value, latest.snapshot.valence.value) << "cycle " << i;
  }
  EXPECT_GT(latest.snapshot.attention.value, 0.5f);
  EXPECT_EQ("left out 1 reading with numbers that are not finite, the first of person 4 at 0:00.700",
            session.takeOmittedReadings());
}

}  // namespace
