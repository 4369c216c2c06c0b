#include "terminal/progressline.hpp"
#include "libsession/entries.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>

namespace
{

using KV::tools::ProgressLine;
using replaytests::inNanoseconds;

TEST(ProgressLine, ShowsHowFarTheFileWasRead)
{
  std::ostringstream terminal;
  ProgressLine line(terminal, true, std::chrono::seconds(0));
  EXPECT_TRUE(line.isDue());
  line.show(0.25, inNanoseconds(75.));
  EXPECT_EQ("██████··················  25 %, 1:15 of the recording", terminal.str());
}

TEST(ProgressLine, ShowsHowManyRecordingsAreDone)
{
  std::ostringstream terminal;
  ProgressLine line(terminal, true, std::chrono::seconds(0));
  line.showCount(3, 4);
  EXPECT_EQ("██████████████████······  75 %, 3 of 4 recordings", terminal.str());
}

TEST(ProgressLine, ShowsHowManySessionsAreDoneAndTheTimeThatIsLeft)
{
  std::ostringstream terminal;
  ProgressLine line(terminal, true, std::chrono::seconds(0));
  line.showSessions(3, 4, 1.);
  EXPECT_EQ("████████████████████████ 100 %, 3 of 4 sessions, 0:00 left", terminal.str());
}

TEST(ProgressLine, LeavesOutTheTimeWhileNothingIsDone)
{
  std::ostringstream terminal;
  ProgressLine line(terminal, true, std::chrono::seconds(0));
  line.showSessions(0, 4, 0.0009);
  EXPECT_EQ("························  <1 %, 0 of 4 sessions", terminal.str());
}

TEST(ProgressLine, IsErasedBeforeItIsShownAnewAndAtTheEnd)
{
  std::ostringstream terminal;
  {
    ProgressLine line(terminal, true, std::chrono::seconds(0));
    line.show(0., inNanoseconds(0.));
    line.show(1., inNanoseconds(1.));
  }
  const std::string text = terminal.str();
  const std::string erased = "\r\033[K";
  EXPECT_EQ(text.size() - erased.size(), text.rfind(erased));
  EXPECT_NE(text.find(erased), text.rfind(erased));
}

TEST(ProgressLine, ErasesNothingThatIsNotThere)
{
  std::ostringstream terminal;
  {
    ProgressLine line(terminal, true, std::chrono::seconds(0));
    line.erase();
  }
  EXPECT_EQ("", terminal.str());
}

TEST(ProgressLine, IsNeverDueIfItIsNotShown)
{
  std::ostringstream terminal;
  EXPECT_FALSE(ProgressLine(terminal, false, std::chrono::seconds(0)).isDue());
}

TEST(ProgressLine, IsNotDueBeforeItsInterval)
{
  std::ostringstream terminal;
  EXPECT_FALSE(ProgressLine(terminal, true, std::chrono::hours(1)).isDue());
}

}  // namespace
