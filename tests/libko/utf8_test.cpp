#include "support/tablename.hpp"

#include <ko/utf8.hpp>

#include <gtest/gtest.h>

#include <string_view>

namespace
{

struct Utf8Case
{
  const char* name;
  std::string_view text;
  bool isUtf8;
};
class Utf8 : public ::testing::TestWithParam<Utf8Case>
{};

TEST_P(Utf8, IsReported)
{
  EXPECT_EQ(GetParam().isUtf8, ko::isUtf8(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Of, Utf8,
    ::testing::Values(Utf8Case{"NoText", "", true}, Utf8Case{"Ascii", "a b", true},
                      Utf8Case{"ANullByte", {"a\0b", 3}, true}, Utf8Case{"TwoBytes", "\xC3\xA4", true},
                      Utf8Case{"FourBytes", "\xF0\x9F\x98\x80", true}, Utf8Case{"ACutCharacter", "a\xC3", false},
                      Utf8Case{"AByteThatOnlyContinues", "\xA4", false}, Utf8Case{"ATooLongForm", "\xC0\x80", false},
                      Utf8Case{"HalfASurrogatePair", "\xED\xA0\x80", false},
                      Utf8Case{"PastTheLastCharacter", "\xF4\x90\x80\x80", false}),
    support::RowName());

}  // namespace
