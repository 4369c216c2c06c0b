#include "terminal/terminal.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace
{

using KV::tools::ColorChoice;

/// A terminal of 77 columns; and no setting of colours in the environment other than those that the test makes.
class TerminalTest : public ::testing::Test
{
protected:
  TerminalTest()
  {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 77;
    opened = openpty(&controller, &terminal, nullptr, nullptr, &size) == 0;
    unsetenv("NO_COLOR");
    setenv("TERM", "xterm", 1);
  }

  void SetUp() override { ASSERT_TRUE(opened); }

  ~TerminalTest() override
  {
    close(terminal);
    close(controller);
    unsetenv("NO_COLOR");
  }

  static int notATerminal() { return -1; }

  bool opened = false;
  int controller = -1;
  int terminal = -1;
};

TEST_F(TerminalTest, IsDistinguishedFromAFile)
{
  EXPECT_TRUE(KV::tools::isTerminal(terminal));
  EXPECT_FALSE(KV::tools::isTerminal(notATerminal()));
}

TEST_F(TerminalTest, SaysHowWideItIs)
{
  EXPECT_EQ(77, KV::tools::terminalWidth(terminal, 100));
}

TEST_F(TerminalTest, IsAsWideAsAssumedIfItIsNone)
{
  EXPECT_EQ(100, KV::tools::terminalWidth(notATerminal(), 100));
}

TEST_F(TerminalTest, IsAsWideAsAssumedIfItDoesNotKnow)
{
  const winsize unknown{};
  ASSERT_EQ(0, ioctl(terminal, TIOCSWINSZ, &unknown));
  EXPECT_EQ(100, KV::tools::terminalWidth(terminal, 100));
}

TEST_F(TerminalTest, GetsColorsByItself)
{
  EXPECT_TRUE(KV::tools::useColors(ColorChoice::Auto, terminal));
}

TEST_F(TerminalTest, AloneGetsColors)
{
  EXPECT_FALSE(KV::tools::useColors(ColorChoice::Auto, notATerminal()));
}

TEST_F(TerminalTest, GetsNoColorsAgainstTheUsersWish)
{
  setenv("NO_COLOR", "1", 1);
  EXPECT_FALSE(KV::tools::useColors(ColorChoice::Auto, terminal));
}

TEST_F(TerminalTest, GetsColorsIfTheWishIsEmpty)
{
  setenv("NO_COLOR", "", 1);
  EXPECT_TRUE(KV::tools::useColors(ColorChoice::Auto, terminal));
}

TEST_F(TerminalTest, GetsNoColorsIfItIsDumb)
{
  setenv("TERM", "dumb", 1);
  EXPECT_FALSE(KV::tools::useColors(ColorChoice::Auto, terminal));
}

TEST_F(TerminalTest, IsOverruledByTheOption)
{
  setenv("NO_COLOR", "1", 1);
  EXPECT_TRUE(KV::tools::useColors(ColorChoice::Always, notATerminal()));
  unsetenv("NO_COLOR");
  EXPECT_FALSE(KV::tools::useColors(ColorChoice::Never, terminal));
}

TEST(Style, MarksTextOnlyIfItMayUseColors)
{
  EXPECT_EQ("\033[32mgood\033[0m", KV::tools::Style(true).green("good"));
  EXPECT_EQ("good", KV::tools::Style(false).green("good"));
}

}  // namespace
