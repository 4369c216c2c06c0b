#include <skeigiot/recordings/quote.hpp>

#include <gtest/gtest.h>

namespace
{
TEST(Quote, KeepsAShortText)
{
  EXPECT_EQ("'abc'", KV::recordings::quote("abc"));
  EXPECT_EQ("''", KV::recordings::quote(""));
  EXPECT_EQ("'" + std::string(40, 'x') + "'", KV::recordings::quote(std::string(40, 'x')));
}

TEST(Quote, CutsALongText)
{
  EXPECT_EQ("'" + std::string(40, 'x') + "...'", KV::recordings::quote(std::string(41, 'x')));
}

TEST(Quote, CutsBetweenCharactersOfSeveralBytes)
{
  const std::string umlaut = "\xC3\xA4";
  EXPECT_EQ("'" + std::string(39, 'x') + "...'", KV::recordings::quote(std::string(39, 'x') + umlaut + umlaut));
}

TEST(Quote, StaysOnOneLine)
{
  EXPECT_EQ("'a?b?c'", KV::recordings::quote("a\nb\x1b"
                                             "c"));
}

}  // namespace
