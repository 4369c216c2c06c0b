#include "rosbridge/fragments.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>

namespace
{

using KV::ros2::Fragments;
using KV::ros2::RosbridgeFragment;

constexpr std::size_t longestText = 20;  // [bytes]

/// Texts that are put together.
class FragmentsOfTexts : public ::testing::Test
{
protected:
  /// Returns the text that is complete now, "-" if none is, or why one is left out.
  std::string take(const std::string& id, const std::string& data, std::size_t number, std::size_t total)
  {
    try
    {
      return fragments.take({id, data, number, total}).value_or("-");
    }
    catch (const std::invalid_argument& error)
    {
      return error.what();
    }
  }

  Fragments fragments{longestText};
};

TEST_F(FragmentsOfTexts, MakeATextWhenTheLastOneIsThere)
{
  EXPECT_EQ("-", take("a", "one ", 0, 3));
  EXPECT_EQ("-", take("a", "two ", 1, 3));
  EXPECT_EQ("one two three", take("a", "three", 2, 3));
}

TEST_F(FragmentsOfTexts, MayBeOneAndMayBeEmpty)
{
  EXPECT_EQ("whole", take("a", "whole", 0, 1));
  EXPECT_EQ("", take("a", "", 0, 1));
  EXPECT_EQ("-", take("a", "", 0, 2));
  EXPECT_EQ("b", take("a", "b", 1, 2));
}

TEST_F(FragmentsOfTexts, MayComeInAnyOrderAndAmongThoseOfOthers)
{
  EXPECT_EQ("-", take("a", "3", 2, 3));
  EXPECT_EQ("-", take("b", "y", 1, 2));
  EXPECT_EQ("-", take("a", "1", 0, 3));
  EXPECT_EQ("xy", take("b", "x", 0, 2));
  EXPECT_EQ("123", take("a", "2", 1, 3));
}

TEST_F(FragmentsOfTexts, MayHaveTheIdOfATextThatIsComplete)
{
  for (const std::string end : {"1", "2"})
  {
    EXPECT_EQ("-", take("a", "text ", 0, 2));
    EXPECT_EQ("text " + end, take("a", end, 1, 2));
  }
}

TEST_F(FragmentsOfTexts, AreRefusedWithNumbersThatCannotBe)
{
  EXPECT_EQ("the 'num' of a fragment is not below its 'total'", take("a", "x", 0, 0));
  EXPECT_EQ("the 'num' of a fragment is not below its 'total'", take("a", "x", 2, 2));
  EXPECT_EQ("it has more than 10000 fragments", take("a", "x", 0, Fragments::mostFragments + 1));
  EXPECT_EQ("-", take("a", "x", Fragments::mostFragments - 1, Fragments::mostFragments));
}

TEST_F(FragmentsOfTexts, AreRefusedWithALongId)
{
  const std::string longest(Fragments::longestId, 'i');
  EXPECT_EQ("x", take(longest, "x", 0, 1));
  EXPECT_EQ("the 'id' of a fragment has more than 200 bytes", take(longest + "i", "x", 0, 1));
}

TEST_F(FragmentsOfTexts, ThatDoNotFitTogetherAreForgottenWithTheirText)
{
  take("a", "x", 0, 2);
  EXPECT_EQ("its fragments differ in their 'total'", take("a", "y", 1, 3));
  EXPECT_EQ("-", take("a", "x", 0, 2)) << "another text begins";
  EXPECT_EQ("it has two fragments with the same 'num'", take("a", "x", 0, 2));
  EXPECT_EQ("-", take("a", "y", 1, 2));
  EXPECT_EQ("xy", take("a", "x", 0, 2));
}

TEST_F(FragmentsOfTexts, MakeATextOfTheGreatestLength)
{
  EXPECT_EQ("-", take("a", std::string(longestText - 1, 'x'), 0, 2));
  EXPECT_EQ(std::string(longestText, 'x'), take("a", "x", 1, 2));
}

TEST_F(FragmentsOfTexts, OfALongerTextAreLeftOutWithOneError)
{
  const std::string most(longestText, 'x');
  EXPECT_EQ("-", take("a", most, 0, 4));
  EXPECT_EQ("its fragments have more than 20 bytes", take("a", "x", 1, 4));
  EXPECT_EQ("-", take("a", "x", 2, 4));
  EXPECT_EQ("-", take("a", "x", 3, 4));
  EXPECT_EQ("1", take("a", "1", 0, 1)) << "another text with the same id";
}

TEST_F(FragmentsOfTexts, OfATextThatIsTooLongWithTheLastOneLeaveNothingBehind)
{
  EXPECT_EQ("-", take("a", "x", 0, 2));
  EXPECT_EQ("its fragments have more than 20 bytes", take("a", std::string(longestText, 'x'), 1, 2));
  EXPECT_EQ("-", take("a", "1", 0, 2));
  EXPECT_EQ("12", take("a", "2", 1, 2));
}

TEST_F(FragmentsOfTexts, OfTheOldestTextAreForgottenWhenTooManyAreNotComplete)
{
  for (std::size_t i = 0; i < Fragments::mostTexts; ++i)
    EXPECT_EQ("-", take(std::to_string(i), "x", 0, 2));
  EXPECT_EQ("whole", take("whole", "whole", 0, 1)) << "is complete at once";
  EXPECT_EQ("more than 10 texts came in fragments at the same time", take("new", "x", 0, 2));
  EXPECT_EQ("xy", take("new", "y", 1, 2));
  EXPECT_EQ("xy", take("1", "y", 1, 2));
  EXPECT_EQ("-", take("0", "y", 1, 2)) << "the oldest one";
}

TEST_F(FragmentsOfTexts, AreForgottenWithTheirConnection)
{
  take("a", "x", 0, 2);
  fragments.clear();
  EXPECT_EQ("-", take("a", "y", 1, 2));
}

}  // namespace
