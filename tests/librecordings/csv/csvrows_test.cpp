#include "csv/csvrows.hpp"
#include "librecordings/support.hpp"

#include <ostream>

namespace
{
using Row = std::vector<std::string>;

class CsvRows : public ::testing::Test
{
protected:
  std::vector<Row> rowsOf(const std::string& text) const
  {
    KV::recordings::CsvRows rows(KV::recordings::InputFile(folder.write("f", text)));
    std::vector<Row> all;
    while (rows.next())
      all.emplace_back(rows.fields().begin(), rows.fields().end());
    return all;
  }

  support::TemporaryFolder folder;
};

TEST_F(CsvRows, TakesTheSpacesAroundFieldsAway)
{
  EXPECT_EQ((std::vector<Row>{{"frame", "face id", ""}, {"1", "2", "3"}}), rowsOf("frame,  face id ,\n 1,\t2,3\r\n"));
}

TEST_F(CsvRows, SkipsEmptyLinesAndCountsThem)
{
  KV::recordings::CsvRows rows(KV::recordings::InputFile(folder.write("f", "a\n\n  \nb\n")));
  ASSERT_TRUE(rows.next());
  ASSERT_TRUE(rows.next());
  EXPECT_EQ(4u, rows.file().lineNumber());
  EXPECT_FALSE(rows.next());
}

TEST_F(CsvRows, TakesQuotesAway)
{
  EXPECT_EQ((std::vector<Row>{{"a,b", "c\"d", "e"}}), rowsOf("\"a,b\", \"c\"\"d\" ,e\n"));
}

TEST_F(CsvRows, TakesQuotedFieldsAsTheyAre)
{
  EXPECT_EQ((std::vector<Row>{{" a ", "", "\"", "\"\"", ",", "e"}}),
            rowsOf("\" a \",\"\",\"\"\"\", \"\"\"\"\"\"\t,\",\",e\r\n"));
  EXPECT_EQ((std::vector<Row>{{""}, {"a", ""}, {"", "b"}}), rowsOf("\"\"\n\"a\",\n,\"b\""));
}

TEST_F(CsvRows, KeepsLongFieldsWithQuotesWhereTheyAre)
{
  const std::string longField(1000, 'x');
  EXPECT_EQ((std::vector<Row>{{longField + "\"", "a", longField}}),
            rowsOf("\"" + longField + "\"\"\",a,\"" + longField + "\"\n"));
}

TEST_F(CsvRows, PassesTheByteOrderMarkOver)
{
  EXPECT_EQ((std::vector<Row>{{"a", "b"}}), rowsOf("\xEF\xBB\xBF\"a\",b\n"));
}

TEST_F(CsvRows, EndsARowAtTheEndOfALineInQuotesToo)
{
  KV::recordings::CsvRows rows(KV::recordings::InputFile(folder.write("f", "a,\"b\nc\"\n")));
  EXPECT_THROW(rows.next(), KV::recordings::BadLine);
  EXPECT_THROW(rows.next(), KV::recordings::BadLine);
  EXPECT_FALSE(rows.next());
}

TEST_F(CsvRows, RefusesAnOpenQuoteAndContinuesAfterIt)
{
  KV::recordings::CsvRows rows(KV::recordings::InputFile(folder.write("f", "a,b\nc,\"d\ne,\"f\"\n")));
  ASSERT_TRUE(rows.next());
  try
  {
    rows.next();
    ADD_FAILURE() << "an open quote was taken";
  }
  catch (const KV::recordings::BadLine& error)
  {
    EXPECT_EQ(folder.path("f") + ":2: a quote is out of place or not closed", error.what());
  }
  ASSERT_TRUE(rows.next());
  EXPECT_EQ((Row{"e", "f"}), Row(rows.fields().begin(), rows.fields().end()));
}

TEST_F(CsvRows, RefusesAQuoteWithinAFieldAndContinuesAfterIt)
{
  KV::recordings::CsvRows rows(KV::recordings::InputFile(folder.write("f", "a,5\"\nb,\"c\"d\ne,f\n")));
  EXPECT_THROW(rows.next(), KV::recordings::BadLine);
  EXPECT_THROW(rows.next(), KV::recordings::BadLine);
  ASSERT_TRUE(rows.next());
  EXPECT_EQ((Row{"e", "f"}), Row(rows.fields().begin(), rows.fields().end()));
}

struct LineCase
{
  const char* name;
  const char* line;
};

void PrintTo(const LineCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class LineWithoutQuotes : public CsvRows, public ::testing::WithParamInterface<LineCase>
{};

TEST_P(LineWithoutQuotes, IsSplitLikeOneWithQuotes)
{
  const std::string line = GetParam().line;
  auto expected = rowsOf("\"q\"," + line + "\n");
  ASSERT_EQ(1u, expected.size());
  expected.front().erase(expected.front().begin());
  EXPECT_EQ(expected, rowsOf(line + "\n"));
}

INSTANTIATE_TEST_SUITE_P(Of, LineWithoutQuotes,
                         ::testing::Values(LineCase{"OneField", "a"}, LineCase{"EmptyFields", ",,"},
                                           LineCase{"EmptyLastField", "a,"}, LineCase{"EmptyFirstField", ",a"},
                                           LineCase{"SpacesWithin", " a b , c"}, LineCase{"BlankFields", " ,\t, "},
                                           LineCase{"CarriageReturn", "a,b\r"}, LineCase{"LeadingSpace", "  1,  2"}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
