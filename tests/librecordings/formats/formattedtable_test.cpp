#include "librecordings/bits.hpp"
#include "librecordings/support.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/table.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace
{
using KV::recordings::Error;
using KV::recordings::ReadingOptions;
using KV::recordings::Table;

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

/// A table that a front end wrote, and the text of its file.
class FormattedTable : public support::RecordingTest
{
protected:
  static constexpr const char* text =
      "frame,timestamp,confidence,success,AU12_r,note\n1,0.25,0.98,1,2.5,\n2,0.5,0.98,1,0.1,\"a, "
      "b\"\n3,0.75,0.98,1,,\"c\"\n";

  const std::vector<double> frames = {1., 2., 3.};
  const std::vector<double> timestamps = {0.25, 0.5, 0.75};
  const std::vector<double> confidences = {0.98, 0.98, 0.98};
  const std::vector<double> successes = {1., 1., 1.};
  const std::vector<double> smiles = {2.5, 0.1, nothing};
  Table table = {"table",
                 3,
                 {{"frame", frames.data(), {}},
                  {"timestamp", timestamps.data(), {}},
                  {"confidence", confidences.data(), {}},
                  {"success", successes.data(), {}},
                  {"AU12_r", smiles.data(), {}},
                  {"note", nullptr, {"", "a, b", "c"}}}};

  /// Returns the message of the error from opening the table.
  std::string errorWith(const std::string& format) const
  {
    try
    {
      KV::recordings::openTable(table, format, {});
    }
    catch (const KV::recordings::Error& error)
    {
      return error.what();
    }
    return {};
  }
};

TEST_F(FormattedTable, GivesWhatItsFileGives)
{
  const support::Contents expected = read(text);
  ASSERT_EQ(3U, expected.entries.size());
  for (const char* const format : {"", "openface"})
  {
    const auto reader = KV::recordings::openTable(table, format, {});
    const support::Contents found = support::contentsOf(*reader);
    EXPECT_EQ("", found.fatal);
    EXPECT_EQ(expected.description, found.description);
    EXPECT_EQ(expected.warnings, found.warnings);
    EXPECT_EQ(1., reader->progress());
    EXPECT_THAT(reader->columns().ignored, testing::Contains("note"));
    ASSERT_EQ(expected.entries.size(), found.entries.size());
    for (std::size_t i = 0; i < expected.entries.size(); ++i)
      EXPECT_EQ(support::Bits::of(expected.entries[i]), support::Bits::of(found.entries[i])) << "in step " << i;
  }
}

TEST_F(FormattedTable, NamesItsRowsInErrors)
{
  table.columns[1] = {"timestamp", nullptr, {"0.25", "later", "0.75"}};
  const support::Contents found = support::contentsOf(*KV::recordings::openTable(table, "", {}));
  EXPECT_EQ((std::vector<std::string>{"table, row 1: timestamp: expected a number, found 'later'"}), found.badLines);
  EXPECT_EQ(2U, found.entries.size());
}

TEST_F(FormattedTable, RefusesFormatsThatAreNoTables)
{
  EXPECT_EQ("table: a table cannot be of the format jsonl, JSON Lines of skeigiot", errorWith("jsonl"));
  EXPECT_EQ("table: there is no column time", errorWith("tidy"));
  table.columns.resize(1);
  EXPECT_EQ("table: there is no column time", errorWith(""));
  table.rows = 0;
  EXPECT_EQ("table: there is no row", errorWith("openface"));
}

TEST_F(FormattedTable, OfReadingsIsNoneOfAFrontEnd)
{
  const std::vector<double> shares = {0.9, 0.1, nothing};
  table.columns[1].name = "time";
  table.columns[4] = {"smile", shares.data(), {}};
  const support::Contents found = support::contentsOf(*KV::recordings::openTable(table, "openface", {}));
  ASSERT_EQ(3U, found.entries.size());
  EXPECT_TRUE(found.entries.front().observation.smile);
}

TEST_F(FormattedTable, WithMomentsHasTimesSince1970)
{
  const std::vector<std::int64_t> moments = {1600000000250000000, 1600000000500000000, 1600000000750000000};
  table.moments = moments.data();
  table.columns.erase(table.columns.begin(), table.columns.begin() + 2);
  for (const char* const shape : {"browDownLeft", "jawOpen", "mouthSmileLeft", "mouthSmileRight"})
    table.columns.push_back({shape, confidences.data(), {}});
  const support::Contents found = support::contentsOf(*KV::recordings::openTable(table, "blendshapes", {}));
  EXPECT_EQ("", found.fatal);
  ASSERT_EQ(3U, found.entries.size());
  EXPECT_EQ(moments.front(), found.entries.front().time.time_since_epoch().count());
}

/// A table with the columns of OpenFace, of one face that is calm.
class TableOfACalmFace : public ::testing::Test
{
protected:
  TableOfACalmFace()
  {
    for (std::size_t i = 0; i < rows; ++i)
    {
      seconds.push_back(static_cast<double>(i) * 0.1);
      brows.push_back(i % 7 == 0 ? 1.1 : 1.);
    }
  }

  Table table() const
  {
    return {"table",
            rows,
            {{"timestamp", seconds.data(), {}},
             {"confidence", ones.data(), {}},
             {"success", ones.data(), {}},
             {"AU04_r", brows.data(), {}}}};
  }

  static constexpr std::size_t rows = 900;
  const std::vector<double> ones = std::vector<double>(rows, 1.);
  std::vector<double> seconds;
  std::vector<double> brows;
};

TEST_F(TableOfACalmFace, SaysWhatWasLearnedOfAFaceAtRest)
{
  const auto reader = KV::recordings::openTable(table(), "openface", {});
  EXPECT_THAT(reader->describeLearned(), testing::IsEmpty());
  while (reader->next())
  {}
  EXPECT_THAT(reader->describeLearned(), testing::Contains(testing::HasSubstr("AU04")));
}

TEST_F(TableOfACalmFace, NamesItselfInTheErrorOfAColumnThatIsThereTwice)
{
  Table doubled = table();
  doubled.columns.push_back(doubled.columns.back());
  EXPECT_EQ("table: AU04_r: this column is there twice",
            support::textThrownBy<Error>([&] { KV::recordings::openTable(doubled, "openface", {}); }));
}

TEST_F(TableOfACalmFace, LeavesThePlaceOfAnErrorInAnotherFile)
{
  const support::TemporaryFolder folder;
  ReadingOptions options;
  options.mapping = folder.path("none.json");
  EXPECT_EQ(folder.path("none.json") + ": there is no such file",
            support::textThrownBy<Error>([&] { KV::recordings::openTable(table(), "openface", options); }));
}

TEST_F(TableOfACalmFace, QuotesTextsAsTheyAre)
{
  std::vector<std::string> texts(rows, "0.5");
  texts[1] = R"(1"2, 3)";
  Table withTexts = table();
  withTexts.columns[3] = {"AU04_r", nullptr, texts};
  EXPECT_THAT(support::contentsOf(*KV::recordings::openTable(withTexts, "openface", {})).badLines,
              testing::ElementsAre(R"(table, row 1: AU04_r: expected a number, found '1"2, 3')"));
}

}  // namespace
