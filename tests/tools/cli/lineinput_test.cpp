#include "cli/lineinput.hpp"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace
{

using KV::tools::LineInput;
using testing::ElementsAre;
using testing::IsEmpty;

/// Takes all lines that are there; a line that was too long is shown as "...".
std::vector<std::string> takenFrom(LineInput& input)
{
  std::vector<std::string> lines;
  std::string_view line;
  for (auto kind = input.take(line); kind != LineInput::Line::NotYetHere; kind = input.take(line))
    lines.push_back(kind == LineInput::Line::TooLong ? "..." : std::string(line));
  return lines;
}

class LineInputTest : public ::testing::Test
{
protected:
  std::vector<std::string> taken() { return takenFrom(input); }

  LineInput input{5};
};

TEST_F(LineInputTest, CutsAPieceIntoLines)
{
  input.add("one\ntwo\r\n\nthree\n");
  EXPECT_THAT(taken(), ElementsAre("one", "two", "", "three"));
}

TEST_F(LineInputTest, HoldsALineBackUntilItIsComplete)
{
  input.add("o");
  EXPECT_THAT(taken(), IsEmpty());
  input.add("ne");
  EXPECT_THAT(taken(), IsEmpty());
  input.add("\ntw");
  EXPECT_THAT(taken(), ElementsAre("one"));
  input.add("o\n");
  EXPECT_THAT(taken(), ElementsAre("two"));
}

TEST_F(LineInputTest, TakesAnEndWithoutALineEndForOne)
{
  input.add("one\ntwo");
  input.end();
  EXPECT_THAT(taken(), ElementsAre("one", "two"));
  EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(LineInputTest, SeesNoLineBehindTheLastLineEnd)
{
  input.add("one\n");
  input.end();
  EXPECT_THAT(taken(), ElementsAre("one"));
}

TEST_F(LineInputTest, TakesALineOfTheGreatestLength)
{
  input.add("12345\n");
  EXPECT_THAT(taken(), ElementsAre("12345"));
}

TEST_F(LineInputTest, ReportsALineThatIsTooLongOnce)
{
  input.add("123456\nnext\n");
  EXPECT_THAT(taken(), ElementsAre("...", "next"));
}

TEST_F(LineInputTest, ReportsALongLineInPiecesWhenItEnds)
{
  for (int i = 0; i < 1000; ++i)
  {
    input.add("12345678");
    EXPECT_THAT(taken(), IsEmpty());
  }
  input.add("9\nnext\n");
  EXPECT_THAT(taken(), ElementsAre("...", "next"));
}

TEST_F(LineInputTest, ReportsALongLineThatTheInputEndsIn)
{
  input.add("1234567");
  EXPECT_THAT(taken(), IsEmpty());
  input.end();
  EXPECT_THAT(taken(), ElementsAre("..."));
  EXPECT_THAT(taken(), IsEmpty());
}

// Every text of up to seven characters of these three, in pieces of every length.
TEST_F(LineInputTest, TakesTheSameLinesWhateverThePieces)
{
  constexpr std::size_t length = 7;
  for (std::size_t number = 0; number < 2187; ++number)  // 3 to the power of 7
  {
    std::string text;
    for (std::size_t rest = number; text.size() < length; rest /= 3)
      text.push_back("a\r\n"[rest % 3]);
    for (std::size_t piece = 1; piece <= length; ++piece)
    {
      LineInput whole(3);
      LineInput inPieces(3);
      whole.add(text);
      whole.end();
      std::vector<std::string> lines;
      for (std::size_t i = 0; i < length; i += piece)
      {
        inPieces.add(std::string_view(text).substr(i, piece));
        const auto here = takenFrom(inPieces);
        lines.insert(lines.end(), here.begin(), here.end());
      }
      inPieces.end();
      const auto last = takenFrom(inPieces);
      lines.insert(lines.end(), last.begin(), last.end());
      ASSERT_EQ(takenFrom(whole), lines) << testing::PrintToString(text) << " in pieces of " << piece;
    }
  }
}

TEST_F(LineInputTest, ReadsFromAPipeToItsEnd)
{
  int ends[2];
  ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
  ASSERT_EQ(6, write(ends[1], "one\ntw", 6));
  EXPECT_TRUE(input.readFrom(ends[0]));
  EXPECT_THAT(taken(), ElementsAre("one"));
  close(ends[1]);
  EXPECT_FALSE(input.readFrom(ends[0]));
  EXPECT_THAT(taken(), ElementsAre("tw"));
  close(ends[0]);
}

TEST_F(LineInputTest, ThrowsIfItCannotRead)
{
  EXPECT_THROW(input.readFrom(-1), std::system_error);
}

}  // namespace
