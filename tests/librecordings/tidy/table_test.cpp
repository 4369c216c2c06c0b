#include <skeigiot/recordings/table.hpp>

#include "librecordings/bits.hpp"
#include "librecordings/support.hpp"

#include <gtest/gtest.h>

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

}  // namespace
