#include "cli/nearest.hpp"

#include "support/tablename.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

const std::vector<std::string> words{"agree", "replay", "report", "watch", "why"};

struct NearestCase
{
  const char* name;
  const char* word;
  const char* nearest;  // empty: no candidate
};

class Nearest : public ::testing::TestWithParam<NearestCase>
{};

TEST_P(Nearest, IsTheWordThatWasMeant)
{
  EXPECT_EQ(GetParam().nearest, KV::tools::nearest(GetParam().word, words).value_or(""));
}

INSTANTIATE_TEST_SUITE_P(
    Words, Nearest,
    ::testing::Values(NearestCase{"Itself", "watch", "watch"}, NearestCase{"ALetterMissing", "rplay", "replay"},
                      NearestCase{"ALetterMore", "watchh", "watch"}, NearestCase{"AnotherLetter", "repley", "replay"},
                      NearestCase{"NeighboursExchanged", "erplay", "replay"},
                      NearestCase{"TwoChangesInSixLetters", "rpelai", "replay"},
                      NearestCase{"TwoChangesInFiveLetters", "wetsh", ""}, NearestCase{"UpperCase", "REPORT", "report"},
                      NearestCase{"AShortWordWithAChange", "wy", "why"}, NearestCase{"AnyOfOneLetter", "x", ""},
                      NearestCase{"Nothing", "", ""}, NearestCase{"MoreThanThreeChanges", "replayed it all", ""}),
    support::RowName());

TEST(NearestOfSeveral, IsTheFirst)
{
  EXPECT_EQ("seat", KV::tools::nearest("feat", {"seat", "beat"}).value_or(""));
}

TEST(NearestOfNone, IsNone)
{
  EXPECT_FALSE(KV::tools::nearest("replay", {}));
}

}  // namespace
