#include "csv/csvnumbers.hpp"

#include "librecordings/support.hpp"

#include <cmath>
#include <string>
#include <vector>

namespace
{

class CsvNumbers : public ::testing::Test
{
protected:
  double numberIn(const std::string& field) const
  {
    KV::recordings::CsvRows rows(KV::recordings::InputFile(folder.write("f", field + ",\n")));
    EXPECT_TRUE(rows.next());
    return KV::recordings::CsvNumbers(rows, {"a", "b"}).number(0);
  }

  support::TemporaryFolder folder;
};

TEST_F(CsvNumbers, AreUnknownBeyondWhatASensorMeasures)
{
  EXPECT_EQ(1e15, numberIn("1e15"));
  EXPECT_EQ(-1e15, numberIn("-1e15"));
  EXPECT_TRUE(std::isnan(numberIn("1.000000001e15")));
  EXPECT_TRUE(std::isnan(numberIn("-1e400")));
}

TEST_F(CsvNumbers, AreUnknownWhereAWordStandsForNone)
{
  for (const char* const word : {"", "NA", "None", "null", "nan"})
    EXPECT_TRUE(std::isnan(numberIn(word))) << word;
}

}  // namespace
