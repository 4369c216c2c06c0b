#include "libsession/entries.hpp"

#include <skeigiot/session/persontable.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using namespace replaytests;
using KV::session::PersonTable;
using KV::session::Snapshot;

Snapshot snapshotOf(std::int32_t person, double sinceStart, bool seen = true)
{
  Snapshot snapshot = snapshotAt(sinceStart, 0.5f, 0.25f);
  snapshot.person = person;
  snapshot.seen = seen;
  return snapshot;
}

TEST(PersonTable, HasARowForEachPerson)
{
  PersonTable table;
  table.personUpdated(snapshotOf(4, 0.));
  table.personUpdated(snapshotOf(2, 0.1));
  table.personUpdated(snapshotOf(4, 1.));
  ASSERT_EQ(2u, table.rows().size());
  EXPECT_EQ(start + seconds(1), table.rows().at(4).last.time);
  EXPECT_EQ(0.5, table.rows().at(4).valence.means(start + seconds(1), 60).back());
  EXPECT_EQ(0.25, table.rows().at(4).attention.means(start + seconds(1), 60).back());
}

TEST(PersonTable, KeepsWhoWasSeenDuringTheLastMinute)
{
  PersonTable table;
  table.personUpdated(snapshotOf(4, 0.));
  table.personUpdated(snapshotOf(4, 30., false));
  table.removeOld(start + seconds(60));
  EXPECT_EQ(1u, table.rows().size());
  table.removeOld(start + seconds(60) + nanoseconds(1));
  EXPECT_TRUE(table.rows().empty());
}

TEST(PersonTable, RemovesWhoLeaves)
{
  PersonTable table;
  table.personUpdated(snapshotOf(4, 0.));
  table.remove(5);
  EXPECT_EQ(1u, table.rows().size());
  table.remove(4);
  EXPECT_TRUE(table.rows().empty());
}

TEST(PersonRow, SaysWhatTheEstimateRestsOn)
{
  PersonTable table;
  Snapshot snapshot = snapshotOf(4, 0.);
  snapshot.pleasure = KV::PleasurePositive;
  table.personUpdated(snapshot);
  const auto why = [&table](auto later) { return table.rows().at(4).why(start + later); };
  EXPECT_EQ("positive", why(milliseconds(500)));
  EXPECT_EQ("positive, last seen 0:07 ago", why(seconds(7)));

  snapshot.pleasure = KV::PleasureUnknown;
  snapshot.ease.level = -0.4f;
  snapshot.ease.confidence = 0.5f;
  table.personUpdated(snapshot);
  EXPECT_EQ("mood unknown, body uneasy", why(seconds(0)));
}

KV::Force forceOn(KV::Quantity quantity, const char* source, float before, float after)
{
  KV::Force force{};
  force.quantity = quantity;
  force.source = source;
  force.before = before;
  force.after = after;
  return force;
}

TEST(PersonRow, SaysWhatMovedTheEstimateMostInTheLastUpdate)
{
  PersonTable table;
  const auto why = [&table](std::int32_t person) { return table.rows().at(person).why(start); };
  table.forceActed(forceOn(KV::ValenceQuantity, "Smile", 0.f, 0.25f));
  table.forceActed(forceOn(KV::ValenceConfidenceQuantity, "User is speaking", 1.f, 0.f));
  table.forceActed(forceOn(KV::AttentionQuantity, "Gaze and head based attention", 0.75f, 0.25f));
  table.personUpdated(snapshotOf(4, 0.));
  EXPECT_EQ("neutral, attention -0.50 by gaze and head", why(4));

  table.forceActed(forceOn(KV::ValenceQuantity, "Touch emotion", 0.f, 0.5f));
  table.forceActed(forceOn(KV::ValenceQuantity, "Touch emotion", 0.5f, 0.75f));
  table.personUpdated(snapshotOf(5, 0.));
  EXPECT_EQ("neutral, valence +0.75 by touch", why(5));
  EXPECT_EQ("neutral, attention -0.50 by gaze and head", why(4));

  table.personUpdated(snapshotOf(4, 0.));
  EXPECT_EQ("neutral", why(4)) << "what moved it before the last update is over";
  table.forceActed(forceOn(KV::ValenceQuantity, "Touch emotion", 0.f, 0.004f));
  table.personUpdated(snapshotOf(4, 0.));
  EXPECT_EQ("neutral", why(4)) << "it cannot be seen";
}

TEST(PersonTable, KeepsTheForcesOfTheLastUpdate)
{
  PersonTable table;
  table.forceActed(forceOn(KV::ValenceQuantity, "Smile", 0.f, 0.25f));
  table.forceActed(forceOn(KV::AttentionQuantity, "Touch emotion", 0.f, 0.5f));
  table.personUpdated(snapshotOf(4, 0.));
  const auto& forces = table.rows().at(4).forces;
  ASSERT_EQ(2u, forces.size());
  EXPECT_EQ("Smile", forces[0].source);
  EXPECT_EQ(0.5f, forces[1].after);
  table.personUpdated(snapshotOf(5, 0.));
  EXPECT_TRUE(table.rows().at(5).forces.empty());
  table.personUpdated(snapshotOf(4, 1.));
  EXPECT_TRUE(table.rows().at(4).forces.empty());
}

TEST(PersonTable, KeepsTheNewestReadingOfEachKind)
{
  PersonTable table;
  KV::recordings::Step step = seenAt(0., 4, 0.5f);
  table.stepBegins(step);
  table.personUpdated(snapshotOf(4, 0.));
  step = entryAt(1.);
  step.person = 4;
  step.observation.distance.emplace(start + seconds(1), 2.f);
  table.stepBegins(step);
  const KV::PersonObservation& readings = table.rows().at(4).readings;
  ASSERT_TRUE(readings.smile && readings.distance);
  EXPECT_EQ(0.5f, readings.smile->value.value);
  EXPECT_EQ(2.f, readings.distance->value);
}

TEST(PersonTable, GivesReadingsToThePersonWhomTheStepIsAbout)
{
  PersonTable table;
  table.stepBegins(seenAt(0., 4));
  table.personUpdated(snapshotOf(5, 0.));  // who waited too long
  EXPECT_FALSE(table.rows().at(5).readings.smile);
  table.personUpdated(snapshotOf(4, 0.));
  EXPECT_TRUE(table.rows().at(4).readings.smile.has_value());
  table.stepBegins(entryAt(1.));
  table.personUpdated(snapshotOf(6, 1.));
  EXPECT_FALSE(table.rows().at(6).readings.smile);
}

TEST(PersonTable, HasNoHistoryWhereNothingWasKnown)
{
  PersonTable table;
  Snapshot snapshot = snapshotOf(4, 0.);
  snapshot.valence.confidence = 0.f;
  table.personUpdated(snapshot);
  EXPECT_TRUE(std::isnan(table.rows().at(4).valence.means(start, 60).back()));
  EXPECT_EQ(0.25, table.rows().at(4).attention.means(start, 60).back());
}

TEST(PersonRow, SaysThatAPersonWasNeverSeen)
{
  PersonTable table;
  table.personUpdated(snapshotOf(4, 0., false));
  EXPECT_EQ("neutral, never seen", table.rows().at(4).why(start));
}

}  // namespace
