#include "libsession/entries.hpp"
#include "support/temporaryfolder.hpp"
#include "support/terminalprocess.hpp"

#include <skeigiot/recordings/observationjson.hpp>

#include <gmock/gmock.h>

#include <csignal>
#include <limits>
#include <string>

namespace
{

using namespace replaytests;
using livetests::TerminalProcess;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string leavesThePage = "\033[?1049l";
const std::string down = "\033OB";

class WatchProcess : public ::testing::Test
{
protected:
  TerminalProcess process{{"watch", "--times", "lines"}};
};

std::string lineAbout(std::int32_t person, double time = 0., float smile = 1.f)
{
  return KV::recordings::stepToJson(seenAt(time, person, smile)) + "\n";
}

TEST_F(WatchProcess, SaysWhatItWaitsFor)
{
  EXPECT_TRUE(process.sees("Waiting for the first line on standard input"));
  EXPECT_TRUE(process.sees("q quits"));
  process.press("q");
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, ShowsARowForEachPersonUntilItIsQuit)
{
  ASSERT_TRUE(process.sees("q quits"));
  process.write(lineAbout(12) + lineAbout(345));
  EXPECT_TRUE(process.sees("12"));
  EXPECT_TRUE(process.sees("LookingAtRobot"));
  EXPECT_TRUE(process.sees("345"));
  EXPECT_TRUE(process.sees("LookingAtRobot"));
  process.press("q");
  EXPECT_TRUE(process.sees(leavesThePage));
  EXPECT_EQ(0, process.status());
  EXPECT_TRUE(process.isRestored());
}

TEST_F(WatchProcess, ShowsWhatMovedAPersonMost)
{
  process.resize(200);
  process.write(lineAbout(12));
  EXPECT_TRUE(process.sees(", valence +"));
  EXPECT_TRUE(process.sees(" by facial expressions"));
  process.press("q");
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, ShowsForcesAndReadingsOfThePersonWhoIsChosen)
{
  process.write(lineAbout(12) + lineAbout(345));
  EXPECT_TRUE(process.sees("Person 12, "));
  EXPECT_TRUE(process.sees("forces of the last update"));
  EXPECT_TRUE(process.sees("readings"));
  process.press(down);
  EXPECT_TRUE(process.sees("345, "));
  process.press("q");
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, ShowsItsHelp)
{
  ASSERT_TRUE(process.sees("q quits"));
  process.press("?");
  EXPECT_TRUE(process.sees("choose a person"));
  process.press("q");
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, TakesItsInputWhileItPauses)
{
  process.write(lineAbout(12));
  ASSERT_TRUE(process.sees("LookingAtRobot"));
  process.press(" ");
  ASSERT_TRUE(process.sees("paused"));
  process.write(lineAbout(345));
  process.closeInput();
  process.press("?");
  ASSERT_TRUE(process.sees("choose a person")) << "the page was drawn anew";
  EXPECT_THAT(process.drawn(), Not(HasSubstr("345")));
  process.press("? ");
  EXPECT_TRUE(process.sees("345"));
  process.press("q");
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, ShowsWhatIsWrongWithALine)
{
  process.write("{\"person\":\"Ada\"}\n");
  EXPECT_TRUE(process.sees("line 1: time: is missing"));
  process.press("q");
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, IsNotSteeredByALine)
{
  process.write("{\"time\":1,\"a\\u001b]0;PWN\\u0007\\u202e\":1}\n");
  EXPECT_TRUE(process.sees(R"(a\u001b]0;PWN\u0007\u202e)"));
  process.press("q");
  EXPECT_TRUE(process.sees(leavesThePage));
  EXPECT_THAT(process.drawn(), Not(HasSubstr("\033]0;")));
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, SaysAtItsEndWhatItLeftOut)
{
  KV::recordings::Step entry = seenAt(0., 12);
  entry.observation.smile->value.value = std::numeric_limits<float>::quiet_NaN();
  process.write(KV::recordings::stepToJson(entry) + "\n");
  ASSERT_TRUE(process.sees("LookingAtRobot"));
  process.press("q");
  EXPECT_TRUE(process.sees(leavesThePage));
  EXPECT_TRUE(process.sees("left out 1 reading with numbers that are not finite"));
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, StaysWhenItsInputEnds)
{
  process.write(lineAbout(12));
  process.closeInput();
  EXPECT_TRUE(process.sees("the input has ended"));
  process.press("q");
  EXPECT_TRUE(process.sees(leavesThePage));
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, DrawsThePageAnewInAnotherSize)
{
  process.write(lineAbout(12));
  ASSERT_TRUE(process.sees("LookingAtRobot"));
  process.resize(200);
  EXPECT_TRUE(process.sees("LookingAtRobot")) << "on a wide terminal the zone stands further to the right";
  process.press("q");
  EXPECT_EQ(0, process.status());
}

TEST_F(WatchProcess, GivesTheTerminalBackWhenItIsTerminated)
{
  ASSERT_TRUE(process.sees("q quits"));
  process.signal(SIGTERM);
  EXPECT_TRUE(process.sees(leavesThePage));
  EXPECT_EQ(-SIGTERM, process.status());
  EXPECT_TRUE(process.isRestored());
}

TEST_F(WatchProcess, GivesTheTerminalBackWhenItIsInterruptedByAKey)
{
  ASSERT_TRUE(process.sees("q quits"));
  process.press("\003");
  EXPECT_TRUE(process.sees(leavesThePage));
  EXPECT_EQ(-SIGINT, process.status());
  EXPECT_TRUE(process.isRestored());
}

TEST(WatchOfARecording, PlaysItToItsEnd)
{
  const TemporaryFolder folder;
  const std::string path = folder.write("in.jsonl", lineAbout(12) + lineAbout(345, 5.) + lineAbout(345, 6.));
  TerminalProcess process({"watch", path, "--speed", "100"});
  EXPECT_TRUE(process.sees("at speed 100"));
  EXPECT_TRUE(process.sees("the recording has ended"));
  EXPECT_TRUE(process.sees("345"));
  process.press("q");
  EXPECT_TRUE(process.sees(leavesThePage));
  EXPECT_EQ(0, process.status());
}

TEST(WatchOfARecording, SaysWhyItCannotBePlayed)
{
  TerminalProcess process({"watch", "missing.csv"}, TerminalProcess::Input::Terminal);
  EXPECT_TRUE(process.sees("skeigiot: missing.csv: "));
  EXPECT_EQ(2, process.status());
}

TEST(WatchAtATerminal, SaysWhatItNeeds)
{
  TerminalProcess process({"watch"}, TerminalProcess::Input::Terminal);
  EXPECT_TRUE(process.sees("expected observations on standard input, or a recording; try 'skeigiot watch --help'"));
  EXPECT_EQ(2, process.status());
}

TEST(StreamAtATerminal, SaysWhatItWaitsFor)
{
  TerminalProcess process({"stream"}, TerminalProcess::Input::Terminal);
  EXPECT_TRUE(process.sees("waiting for lines of JSON"));
  EXPECT_TRUE(process.sees("Ctrl-D ends the input"));
  process.press("{\"person\":1}\n");
  EXPECT_TRUE(process.sees("\"updated\":true"));
  process.press("\004");
  EXPECT_EQ(0, process.status());
}

}  // namespace
