#include "persontable.hpp"

#include "entries.hpp"

#include <gtest/gtest.h>

namespace
{

using namespace replaytests;
using tools::PersonTable;
using tools::Snapshot;

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

TEST(PersonRow, SaysThatAPersonWasNeverSeen)
{
  PersonTable table;
  table.personUpdated(snapshotOf(4, 0., false));
  EXPECT_EQ("neutral, never seen", table.rows().at(4).why(start));
}

}  // namespace
