#include <skeigiot/recordings/table.hpp>

#include "librecordings/bits.hpp"
#include "librecordings/support.hpp"
#include "support/thrown.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace
{
using KV::recordings::Table;

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

class TableTest : public support::RecordingTest
{
protected:
  /// Expects the table to give the steps of this tidy CSV, bit for bit.
  void expectSame(const std::string& csv, const Table& table) const
  {
    const support::Contents expected = read(csv);
    const support::Contents found = support::contentsOf(*KV::recordings::openTable(table));
    EXPECT_EQ("", found.fatal);
    ASSERT_FALSE(expected.entries.empty());
    ASSERT_EQ(expected.entries.size(), found.entries.size());
    for (std::size_t i = 0; i < expected.entries.size(); ++i)
      EXPECT_EQ(support::Bits::of(expected.entries[i]), support::Bits::of(found.entries[i])) << "in step " << i;
  }

  const std::vector<double> times = {0., 0.1, 0.2};
  const std::vector<double> persons = {3., 3., 4.};
};

TEST_F(TableTest, WithAColumnForEachValueGivesWhatTidyCsvGives)
{
  const std::vector<double> yaws = {1.5, nothing, -0.1};
  const std::vector<double> pitches = {2.5, nothing, 0.3};
  const std::vector<double> smiles = {0.7, 0.1, nothing};
  const Table table{"table",
                    3,
                    {{"time", times.data(), {}},
                     {"person", persons.data(), {}},
                     {"gaze.yaw", yaws.data(), {}},
                     {"gaze.pitch", pitches.data(), {}},
                     {"smile", smiles.data(), {}}}};
  expectSame(
      "time,person,reading,value,yaw,pitch\n"
      "0,3,gaze,,1.5,2.5\n0,3,smile,0.7,,\n0.1,3,smile,0.1,,\n0.2,4,gaze,,-0.1,0.3\n",
      table);
}

TEST_F(TableTest, WithAReadingInEachRowGivesWhatTidyCsvGives)
{
  const std::vector<double> values = {0.7, 1.1, 0.2};
  const Table table{"table",
                    3,
                    {{"time", times.data(), {}},
                     {"person", persons.data(), {}},
                     {"reading", nullptr, {"smile", "distance", "expressions.joy"}},
                     {"value", values.data(), {}}}};
  expectSame("time,person,reading,value\n0,3,smile,0.7\n0.1,3,distance,1.1\n0.2,4,expressions.joy,0.2\n", table);
}

TEST_F(TableTest, WithTimesInAnotherUnitIsRefused)
{
  const std::vector<double> smile = {1., 1.};
  const auto errorOf = [&](const std::vector<double>& seconds) {
    const Table table{"table", seconds.size(), {{"time", seconds.data(), {}}, {"smile", smile.data(), {}}}};
    return support::contentsOf(*KV::recordings::openTable(table)).badLines.at(0);
  };
  EXPECT_EQ(
      "table, row 0: time: expected seconds, from the start of the recording or since 1970, found '1.7e+18'; it "
      "looks like nanoseconds: divide it by 1000000000",
      errorOf({1.7e18}));
  EXPECT_EQ(
      "table, row 1: time: is 33333333 s after the one before; expected seconds; it looks like nanoseconds: "
      "divide it by 1000000000",
      errorOf({0., 33333333.}));
}

TEST_F(TableTest, WithMomentsInMillisecondsIsRefused)
{
  const std::vector<double> smile = {1., 1.};
  const std::vector<std::int64_t> moments = {1700000000000, 1700000000100};
  Table table{"table", 2, {{"smile", smile.data(), {}}}};
  table.moments = moments.data();
  EXPECT_EQ(
      "table, row 0: time: expected nanoseconds since 1970, found 1700000000000; it looks like milliseconds: "
      "multiply it by 1000000",
      support::contentsOf(*KV::recordings::openTable(table)).badLines.at(0));
}

TEST_F(TableTest, WithScoresInPercentIsRefused)
{
  const std::vector<double> smile = {0.5, 50.};
  const std::vector<double> seconds = {0., 1.};
  const Table table{"table", 2, {{"time", seconds.data(), {}}, {"smile", smile.data(), {}}}};
  EXPECT_EQ("table, row 1: smile: 50 is far from its range, 0 to 1; it looks like percent: divide it by 100",
            support::contentsOf(*KV::recordings::openTable(table)).badLines.at(0));
}

TEST_F(TableTest, WithoutTimesIsRefused)
{
  const Table table{"table", 3, {{"smile", times.data(), {}}}};
  try
  {
    KV::recordings::openTable(table);
    FAIL() << "no exception";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_STREQ("table: there is no column time", error.what());
  }
}

TEST_F(TableTest, HasAnUnknownReadingWhereAPartOfItIsMissing)
{
  const std::vector<double> yaws = {1.5, 1.6, nothing};
  const std::vector<double> pitches = {2.5, nothing, 0.3};
  const Table table{"table",
                    3,
                    {{"time", times.data(), {}},
                     {"person", persons.data(), {}},
                     {"gaze.yaw", yaws.data(), {}},
                     {"gaze.pitch", pitches.data(), {}}}};
  expectSame("time,person,reading,value,yaw,pitch\n0,3,gaze,,1.5,2.5\n0.1,3,seen,true,,\n0.2,4,seen,true,,\n", table);
}

TEST_F(TableTest, TakesNumbersThatAreTexts)
{
  const std::vector<std::string> smiles = {"0.7", "+1", "1e-1"};
  expectSame("time,person,reading,value\n0,3,smile,0.7\n0.1,3,smile,1\n0.2,4,smile,0.1\n",
             {"table", 3, {{"time", times.data(), {}}, {"person", persons.data(), {}}, {"smile", nullptr, smiles}}});
}

TEST_F(TableTest, RefusesWhatIsNoNumber)
{
  const std::vector<std::string> smiles = {"0.7", "wide", "0.5 "};
  const std::vector<double> halves = {3., 3.5, 4.};
  const auto badLinesOf = [](const Table& table) {
    return support::contentsOf(*KV::recordings::openTable(table)).badLines;
  };
  EXPECT_THAT(
      badLinesOf(
          {"table", 3, {{"time", times.data(), {}}, {"person", persons.data(), {}}, {"smile", nullptr, smiles}}}),
      testing::ElementsAre("table, row 1: smile: expected a number, found 'wide'",
                           "table, row 2: smile: expected a number, found '0.5 '"));
  EXPECT_THAT(
      badLinesOf(
          {"table", 3, {{"time", times.data(), {}}, {"person", halves.data(), {}}, {"smile", persons.data(), {}}}}),
      testing::Contains("table, row 1: person: expected a whole number, found '3.5'"));
}

TEST_F(TableTest, WithoutAReadingIsRefused)
{
  const std::vector<double> heights = {1., 2., 3.};
  for (const char* const name : {"smiles", "gaze.roll", "gaze", "heights.value", "nothing.confidence"})
    EXPECT_EQ("table: no column is a reading, such as 'smile', 'gaze.yaw' and 'gaze.pitch', 'expressions.joy'",
              support::textThrownBy<KV::recordings::Error>([&] {
                KV::recordings::openTable({"table", 3, {{"time", times.data(), {}}, {name, heights.data(), {}}}});
              }))
        << name;
}

TEST_F(TableTest, SaysHowFarItIsRead)
{
  const std::vector<double> smiles = {0.7, 0.1, 0.2};
  const auto reader =
      KV::recordings::openTable({"table", 3, {{"time", times.data(), {}}, {"smile", smiles.data(), {}}}});
  double last = reader->progress();
  EXPECT_EQ(0., last);
  while (reader->next())
  {
    EXPECT_GE(reader->progress(), last);
    last = reader->progress();
  }
  EXPECT_EQ(1., reader->progress());
  EXPECT_THAT(reader->columns().used, testing::ElementsAre("time", "smile"));
}

TEST_F(TableTest, KnowsTheNamesOfItsColumns)
{
  EXPECT_THAT(KV::recordings::tableColumns(),
              testing::IsSupersetOf({"smile", "smile.confidence", "gaze.yaw", "gaze.pitch", "expressions.joy",
                                     "expressions.joy.confidence", "start.samples", "ambiance.activity", "seen"}));
}

TEST_F(TableTest, SaysNothingInARowWithoutAPersonOrAReading)
{
  const std::vector<double> one = {1., nothing, 1.};
  const std::vector<double> smiles = {nothing, nothing, 0.5};
  const Table table{"table", 3, {{"time", times.data(), {}}, {"person", one.data(), {}}, {"smile", smiles.data(), {}}}};
  const support::Contents contents = support::contentsOf(*KV::recordings::openTable(table));
  EXPECT_THAT(contents.badLines, ::testing::IsEmpty());
  ASSERT_EQ(2u, contents.entries.size());
  EXPECT_EQ(1, contents.entries[0].person.value_or(0)) << "who was seen, and nothing else";
  EXPECT_TRUE(contents.entries[1].observation.smile);
}

}  // namespace
