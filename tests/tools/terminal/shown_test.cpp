#include "terminal/shown.hpp"
#include "cli/messages.hpp"
#include "support/tablename.hpp"
#include "terminal/terminalstream.hpp"
#include "terminal/text.hpp"
#include "terminal/texttable.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>
#include <sstream>
#include <string>

namespace
{

using KV::tools::shown;
using KV::tools::shownMessage;
using KV::tools::shownPage;

struct Shown
{
  const char* name;
  std::string text;
  std::string expected;
};

class ShownTest : public ::testing::TestWithParam<Shown>
{};

TEST_P(ShownTest, HasEscapesForWhatSteersATerminal)
{
  EXPECT_EQ(GetParam().expected, shown(GetParam().text));
  EXPECT_EQ(GetParam().expected, shown(shown(GetParam().text))) << "what is shown stays as it is";
}

INSTANTIATE_TEST_SUITE_P(
    Of, ShownTest,
    ::testing::Values(
        Shown{"Nothing", "", ""}, Shown{"PlainText", "face 1.csv", "face 1.csv"},
        Shown{"Letters", "Jürgen Ωμέγα 王小明 שרה 🙂", "Jürgen Ωμέγα 王小明 שרה 🙂"},
        Shown{"SelectorsOfALook", "❤️", "❤️"}, Shown{"Backslashes", R"(C:\new)", R"(C:\new)"},
        Shown{"Escape", "\033]0;title\a", R"(\u001b]0;title\u0007)"},
        Shown{"Null", std::string("a\0b", 3), R"(a\u0000b)"}, Shown{"LineEnd", "a\nb", R"(a\nb)"},
        Shown{"Return", "a\rb", R"(a\rb)"}, Shown{"Tab", "a\tb", R"(a\tb)"}, Shown{"Backspace", "a\b", R"(a\u0008)"},
        Shown{"Delete", "a\x7f", R"(a\u007f)"}, Shown{"ControlSequenceIntroducer", "\u009b31m", R"(\u009b31m)"},
        Shown{"LastOfC1", "\u009f", R"(\u009f)"}, Shown{"FirstBehindC1", "\u00a0", "\u00a0"},
        Shown{"SoftHyphen", "\u00ad", R"(\u00ad)"}, Shown{"RightToLeftOverride", "a\u202egpj", R"(a\u202egpj)"},
        Shown{"Isolate", "\u2066", R"(\u2066)"}, Shown{"ArabicLetterMark", "\u061c", R"(\u061c)"},
        Shown{"ZeroWidthSpace", "a\u200bb", R"(a\u200bb)"}, Shown{"ByteOrderMark", "\ufeff", R"(\ufeff)"},
        Shown{"LineSeparator", "\u2028", R"(\u2028)"}, Shown{"HangulFiller", "\u3164", R"(\u3164)"},
        Shown{"Tag", "\U000e0041", R"(\udb40\udc41)"}, Shown{"MusicalFormat", "\U0001d173", R"(\ud834\udd73)"},
        Shown{"LoneByteOfC1", "\x9b", R"(\x9b)"}, Shown{"CutCharacter", "a\xe2\x82", R"(a\xe2\x82)"},
        Shown{"OverlongEscape", "\xc0\x9b", R"(\xc0\x9b)"}, Shown{"Surrogate", "\xed\xa0\x80", R"(\xed\xa0\x80)"},
        Shown{"BeyondUnicode", "\xf4\x90\x80\x80", R"(\xf4\x90\x80\x80)"}),
    support::RowName());

TEST(Shown, MeansTheSameInJson)
{
  const nlohmann::json text = "\u009b31m \u202e \U000e0041 \x7f";
  EXPECT_EQ(text, nlohmann::json::parse(shown(text.dump())));
}

TEST(ShownPage, KeepsLineEndsAndItsOwnMarks)
{
  const std::string page = "\033[1mPerson 1\033[0m\n\033[32mgood\033[0m\n\033[90mold\033[0m\r\033[K";
  EXPECT_EQ(page, shownPage(page));
}

TEST(ShownPage, KeepsNoOtherSequences)
{
  EXPECT_EQ(R"(\u001b[2J\u001b[8mhidden\u001b[41m\u001b[999m\u001b[m\u001b]0;title\u0007\r)",
            shownPage("\033[2J\033[8mhidden\033[41m\033[999m\033[m\033]0;title\a\r"));
  EXPECT_EQ(R"(\u009b\x9b\u202e\u001b[)", shownPage("\u009b\x9b\u202e\033["));
}

TEST(ShownMessage, HasItsFurtherLinesIndented)
{
  EXPECT_EQ("no format fits:\n  csv: no\n    jsonl: no\n", shownMessage("no format fits:\ncsv: no\n    jsonl: no\n"));
  EXPECT_EQ(R"(\u001b[1m)"
            "\n  skeigiot: fine",
            shownMessage("\033[1m\nskeigiot: fine"));
}

TEST(Messages, ShowWhatTheyQuote)
{
  std::ostringstream stream;
  KV::tools::Messages(stream, false).error("unknown member 'a\033]0;PWN\a'");
  KV::tools::Messages(stream, false).note("file \u202e");
  EXPECT_EQ("skeigiot: unknown member 'a\\u001b]0;PWN\\u0007'\nskeigiot: file \\u202e\n", stream.str());
}

TEST(TextTable, ShowsItsCells)
{
  KV::tools::TextTable table({{"a\033[2J"}, {"b"}});
  table.add({"\u202e\n", "1"});
  EXPECT_EQ("a\\u001b[2J  b\n\\u202e\\n    1\n", table.text(KV::tools::Style(false)));
}

TEST(Wrapped, ShowsItsWords)
{
  EXPECT_EQ("one \\u001b[31mtwo\n  three", KV::tools::wrapped("one \033[31mtwo\nthree", 17, 2));
}

/// The text that a buffer passes on.
struct Passed
{
  std::stringbuf target;
  KV::tools::TerminalBuffer buffer{target};
  std::ostream stream{&buffer};

  std::string text() { return target.str(); }
};

TEST(TerminalBuffer, PassesTextOnWhenItIsFlushed)
{
  Passed passed;
  passed.stream << "name \033[2J" << std::flush;
  EXPECT_EQ("name \\u001b[2J", passed.text());
}

TEST(TerminalBuffer, PutsTogetherWhatComesInPieces)
{
  Passed passed;
  for (const char byte : std::string("\033[1m王\033[0m \u202e🙂\r\033[K\n"))
    passed.stream << byte << std::flush;
  EXPECT_EQ("\033[1m王\033[0m \\u202e🙂\r\033[K\n", passed.text());
}

TEST(TerminalBuffer, DoesNotWaitForMoreWhereTextIsComplete)
{
  for (const std::string text : {"a", "a\033[0m", "王", "\r\033[K", "🙂"})
  {
    Passed passed;
    passed.stream << text << std::flush;
    EXPECT_EQ(text, passed.text());
  }
}

TEST(TerminalBuffer, PassesLongTextsOnWithoutAFlush)
{
  Passed passed;
  for (int i = 0; i < 100'000; ++i)
    passed.stream << "é";
  EXPECT_LT(100'000U, passed.text().size());
  passed.stream << std::flush;
  EXPECT_EQ(200'000U, passed.text().size());
  EXPECT_EQ(std::string::npos, passed.text().find('\\'));
}

}  // namespace
