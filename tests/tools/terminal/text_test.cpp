#include "terminal/text.hpp"

#include <gtest/gtest.h>

namespace
{

TEST(DisplayWidth, CountsCharactersAndNotBytes)
{
  EXPECT_EQ(0U, KV::tools::displayWidth(""));
  EXPECT_EQ(3U, KV::tools::displayWidth("a│é"));
}

TEST(Padding, FillsUpToTheWidthInColumns)
{
  EXPECT_EQ("█  ", KV::tools::padRight("█", 3));
  EXPECT_EQ("  █", KV::tools::padLeft("█", 3));
}

TEST(Padding, LeavesAWiderTextWhole)
{
  EXPECT_EQ("abcd", KV::tools::padRight("abcd", 3));
  EXPECT_EQ("abcd", KV::tools::padLeft("abcd", 3));
}

TEST(Wrapping, BreaksAtBlanksAndIndentsWhatFollows)
{
  EXPECT_EQ("one two\n  three\n  four", KV::tools::wrapped("one two three four", 8, 2));
}

TEST(Wrapping, KeepsALineThatFitsExactly)
{
  EXPECT_EQ("one two", KV::tools::wrapped("one two", 7, 2));
}

TEST(Wrapping, KeepsALongWordWhole)
{
  EXPECT_EQ("a\n  incomprehensibilities\n  b", KV::tools::wrapped("a incomprehensibilities b", 8, 2));
}

}  // namespace
