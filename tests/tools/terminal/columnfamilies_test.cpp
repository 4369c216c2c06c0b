#include "terminal/columnfamilies.hpp"

#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

using Texts = std::vector<std::string>;

struct FamilyCase
{
  const char* name;
  Texts columns;
  Texts families;
};

class ColumnFamilies : public ::testing::TestWithParam<FamilyCase>
{};

TEST_P(ColumnFamilies, AreOneEach)
{
  EXPECT_EQ(GetParam().families, KV::tools::columnFamilies(GetParam().columns));
}

INSTANTIATE_TEST_SUITE_P(
    Names, ColumnFamilies,
    ::testing::Values(
        FamilyCase{"None", {}, {}}, FamilyCase{"WithoutNumbers", {"frame", "success"}, {"frame", "success"}},
        FamilyCase{"Three", {"x_0", "x_1", "x_2"}, {"x_0..2"}}, FamilyCase{"Two", {"x_0", "x_1"}, {"x_0", "x_1"}},
        FamilyCase{"TheNumberInTheMiddle", {"AU01_c", "AU02_c", "AU03_c"}, {"AU01..03_c"}},
        FamilyCase{"WithGaps", {"AU01_c", "AU02_c", "AU45_c"}, {"AU01..45_c (3)"}},
        FamilyCase{"TheLastNumberOfSeveral", {"g_0_x_0", "g_0_x_1", "g_0_x_2", "g_1_x_0"}, {"g_0_x_0..2", "g_1_x_0"}},
        FamilyCase{"BetweenOthers", {"a", "x_0", "y_0", "x_1", "y_1", "x_2", "b"}, {"a", "x_0..2", "y_0", "y_1", "b"}},
        FamilyCase{"InAnyOrder", {"x_10", "x_9", "x_11"}, {"x_9..11"}},
        FamilyCase{"OnlyNumbers", {"0", "1", "2"}, {"0..2"}},
        FamilyCase{"TheSameTwice", {"x_1", "x_1", "x_2"}, {"x_1..2 (3)"}},
        FamilyCase{"NumbersTooLongToCount",
                   {"id_1234567890123456789012", "id_1234567890123456789013", "id_1234567890123456789014"},
                   {"id_1234567890123456789012", "id_1234567890123456789013", "id_1234567890123456789014"}}),
    support::RowName());

}  // namespace
