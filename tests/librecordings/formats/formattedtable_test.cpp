#include "librecordings/support.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/table.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace
{
using KV::recordings::Error;
using KV::recordings::ReadingOptions;
using KV::recordings::Table;

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
