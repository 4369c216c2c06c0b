#include "support/tablename.hpp"

#include <ko/type.hpp>

#include <gtest/gtest.h>

#include <string>

namespace
{

struct NameCase
{
  const char* name;
  const char* given;
  const char* normalized;
};

class ClassName : public ::testing::TestWithParam<NameCase>
{};

TEST_P(ClassName, IsNormalized)
{
  EXPECT_EQ(GetParam().normalized, ko::detail::normalizeClassName(GetParam().given));
}

TEST_P(ClassName, StaysAsItIsOnceNormalized)
{
  EXPECT_EQ(GetParam().normalized, ko::detail::normalizeClassName(GetParam().normalized));
}

INSTANTIATE_TEST_SUITE_P(
    Spellings, ClassName,
    ::testing::Values(
        NameCase{"PlainStays", "KV::Gaze", "KV::Gaze"}, NameCase{"LeadingColonsStay", "::KV::Gaze", "::KV::Gaze"},
        NameCase{"EmptyStays", "", ""}, NameCase{"BlanksAroundAreDropped", " \t KV::Gaze \r\n", "KV::Gaze"},
        NameCase{"BlanksInsideAreDropped", "KV :: Pair < int , float >", "KV::Pair<int,float>"},
        NameCase{"ClosingBracketsJoin", "A<B<int> >", "A<B<int>>"},
        NameCase{"OneBlankStaysBetweenWords", "KV::ValueConfidence<unsigned  int>",
                 "KV::ValueConfidence<unsigned int>"},
        NameCase{"KeywordsAreDropped", "struct KV::Wrap<class KV::A, enum KV::B>", "KV::Wrap<KV::A,KV::B>"},
        NameCase{"WordsThatBeginLikeKeywordsStay", "classroom::structure", "classroom::structure"},
        NameCase{"InlineNamespacesAreDropped", "std::__cxx11::basic_string<char>", "std::basic_string<char>"},
        NameCase{"InlineNamespacesOfAnotherLibraryAreDropped", "std::__1::vector<int>", "std::vector<int>"},
        NameCase{"ClassesNamedLikeInlineNamespacesStay", "KV::__1", "KV::__1"},
        NameCase{"OtherCharactersStay", "f(int)::{lambda#1}", "f(int)::{lambda#1}"},
        NameCase{"LoneColonStays", ":", ":"}),
    support::RowName());

}  // namespace
