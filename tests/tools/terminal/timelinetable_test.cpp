#include "terminal/timelinetable.hpp"
#include "libsession/entries.hpp"
#include "terminal/text.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::TimelineRow;
using KV::tools::Style;
using KV::tools::timelineTable;

TimelineRow rowOf(const KV::session::Snapshot& snapshot)
{
  TimelineRow row(snapshot.sinceStart);
  row.add(snapshot);
  return row;
}

TimelineRow withHeadUp(KV::session::Snapshot snapshot)
{
  snapshot.ease = {-0.5f, 0.5f};
  TimelineRow row = rowOf(snapshot);
  row.add(KV::session::HeadDirections{1, 0, 0, 0, 0});
  return row;
}

TimelineRow withHeadRight(const KV::session::Snapshot& snapshot)
{
  TimelineRow row = rowOf(snapshot);
  row.add(KV::session::HeadDirections{0, 0, 0, 1, 0});
  return row;
}

std::vector<std::string> linesOf(const std::string& text)
{
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

KV::session::Snapshot longestWords(double sinceStart)
{
  KV::session::Snapshot snapshot = snapshotAt(sinceStart, -1.f, 1.f);
  snapshot.zone = ko::human::AttentionState::LookingDownRight;
  snapshot.pleasure = KV::PleasurePositive;
  snapshot.ease = {0.5f, 0.5f};
  return snapshot;
}

TEST(TimelineTable, ShowsARowForPeopleToRead)
{
  KV::session::Snapshot snapshot = snapshotAt(62., 0.5f, 0.25f);
  snapshot.zone = ko::human::AttentionState::LookingAtRobot;
  snapshot.pleasure = KV::PleasurePositive;
  const auto lines = linesOf(timelineTable({rowOf(snapshot)}, inNanoseconds(1.), 80, Style(false)));
  ASSERT_EQ(2U, lines.size());
  EXPECT_EQ("  time  valence  0 +1  conf  attention  conf  looking       pleasure  body", lines[0]);
  EXPECT_EQ("1:02.0  +0.50 ···│█▌·  ████  0.25 █···  ████  at the robot  positive  -", lines[1]);
}

TEST(TimelineTable, NamesWhatTheBodyLanguageSawAndHasRoomForItsMeaningInAWideTerminal)
{
  const std::vector<TimelineRow> rows{withHeadUp(snapshotAt(62., 0.5f, 0.25f))};
  const auto narrow = linesOf(timelineTable(rows, inNanoseconds(1.), 80, Style(false)));
  EXPECT_EQ("1:02.0  +0.50 ···│█▌·  ████  0.25 █···  ████  no zone       neutral   head up", narrow.at(1));
  const auto wide = linesOf(timelineTable(rows, inNanoseconds(1.), 100, Style(false)));
  EXPECT_EQ("  time  valence     0    +1  conf  attention   1  conf  looking       pleasure  body language",
            wide.at(0));
  EXPECT_EQ("1:02.0  +0.50 ······│███···  ████  0.25 ██······  ████  no zone       neutral   head up, uneasy",
            wide.at(1));
}

TEST(TimelineTable, ShowsBothConfidences)
{
  KV::session::Snapshot snapshot = snapshotAt(0., 0.f, 0.f);
  snapshot.valence.confidence = 0.25f;
  snapshot.attention.confidence = 0.75f;
  const auto lines = linesOf(timelineTable({rowOf(snapshot)}, inNanoseconds(1.), 80, Style(false)));
  EXPECT_EQ("0:00.0   0.00 ···│···  █···  0.00 ····  ███·  no zone       neutral   -", lines.at(1));
}

TEST(TimelineTable, ColorsWhatItShows)
{
  KV::session::Snapshot snapshot = longestWords(0.);
  const std::string table = timelineTable({withHeadUp(snapshot)}, inNanoseconds(1.), 80, Style(true));
  EXPECT_NE(std::string::npos, table.find("\033[32m-1.00 ███│···\033[0m")) << "valence by the state of pleasure";
  EXPECT_NE(std::string::npos, table.find("\033[36m1.00 ████\033[0m")) << "attention in a colour of its own";
  EXPECT_NE(std::string::npos, table.find("\033[2m████\033[0m")) << "confidence dim";
  EXPECT_NE(std::string::npos, table.find("\033[31mhead up\033[0m"));
}

TEST(TimelineTable, FoldsRowsThatLookTheSame)
{
  std::vector<TimelineRow> rows;
  for (const double time : {0., 1., 2., 3.})
    rows.push_back(rowOf(snapshotAt(time, 0.5f + static_cast<float>(time) * 0.005f)));
  rows.push_back(rowOf(snapshotAt(4., 0.6f)));
  rows.push_back(rowOf(snapshotAt(5., 0.6f)));
  const auto lines = linesOf(timelineTable(rows, inNanoseconds(1.), 80, Style(false)));
  ASSERT_EQ(5U, lines.size());
  EXPECT_EQ("0:00.0  +0.50", lines[1].substr(0, 13));
  EXPECT_EQ("0:01.0  the same until 0:04.0", lines[2]);
  EXPECT_EQ("0:04.0  +0.60", lines[3].substr(0, 13));
  EXPECT_EQ("0:05.0  +0.60", lines[4].substr(0, 13)) << "one row says more than a line in its place";
}

TEST(TimelineTable, FoldsRowsOnlyWhereAllOfThemAreThereAndNothingIsExplained)
{
  const auto linesWith = [](const std::vector<TimelineRow>& rows) {
    return linesOf(timelineTable(rows, inNanoseconds(1.), 80, Style(false))).size();
  };
  const TimelineRow first = rowOf(snapshotAt(0.));
  const TimelineRow second = rowOf(snapshotAt(1.));
  const TimelineRow third = rowOf(snapshotAt(2.));
  EXPECT_EQ(3U, linesWith({first, second, third}));

  EXPECT_EQ(5U, linesWith({first, second, rowOf(snapshotAt(7.))})) << "a gap, which has a line of its own";

  KV::session::Changes changes;
  changes.add("Touch emotion", KV::ValenceQuantity, 1.f, 0.f, 0.75f);
  TimelineRow explained = second;
  explained.add(changes);
  EXPECT_EQ(5U, linesWith({first, explained, third}));

  KV::session::Snapshot unseen = snapshotAt(1.);
  unseen.seen = false;
  EXPECT_EQ(4U, linesWith({first, rowOf(unseen), third}));

  KV::session::Snapshot elsewhere = snapshotAt(1.);
  elsewhere.zone = ko::human::AttentionState::LookingUp;
  EXPECT_EQ(4U, linesWith({first, rowOf(elsewhere), third}));

  KV::session::Snapshot unsure = snapshotAt(1.);
  unsure.attention.confidence = 0.5f;
  EXPECT_EQ(4U, linesWith({first, rowOf(unsure), third}));
}

TEST(TimelineTable, NeverGetsWiderThanItMay)
{
  for (const double sinceStart : {0., 3600., 360000.})
  {
    for (const int width : {80, 90, 100})
    {
      const auto lines =
          linesOf(timelineTable({withHeadRight(longestWords(sinceStart))}, inNanoseconds(0.001), width, Style(false)));
      for (const std::string& line : lines)
        EXPECT_LE(KV::tools::displayWidth(line), static_cast<std::size_t>(width)) << line;
    }
  }
}

TEST(TimelineTable, UsesTheWidthThatItMay)
{
  const auto lines = linesOf(timelineTable({withHeadRight(longestWords(0.))}, inNanoseconds(1.), 100, Style(false)));
  EXPECT_GE(KV::tools::displayWidth(lines.at(1)), 98U);
}

TEST(TimelineTable, AlignsTheColumnsOfAllRows)
{
  const auto lines = linesOf(
      timelineTable({rowOf(snapshotAt(0., 0.f, 0.f)), rowOf(longestWords(1.))}, inNanoseconds(1.), 100, Style(false)));
  const auto columnOf = [&lines](std::size_t line, const std::string& text) {
    return KV::tools::displayWidth(lines.at(line).substr(0, lines.at(line).find(text)));
  };
  EXPECT_EQ(columnOf(0, "looking"), columnOf(1, "no zone"));
  EXPECT_EQ(columnOf(0, "looking"), columnOf(2, "down right"));
  EXPECT_EQ(columnOf(0, "pleasure"), columnOf(1, "neutral"));
  EXPECT_EQ(columnOf(0, "pleasure"), columnOf(2, "positive"));
  EXPECT_EQ(columnOf(0, "0"), columnOf(1, "│"));
}

TEST(TimelineTable, SaysThatAPersonWasNotVisible)
{
  KV::session::Snapshot snapshot = longestWords(0.);
  snapshot.seen = false;
  const std::string table = timelineTable({rowOf(snapshot)}, inNanoseconds(1.), 80, Style(false));
  EXPECT_NE(std::string::npos, table.find("not visible"));
  EXPECT_EQ(std::string::npos, table.find("down right"));
}

TEST(TimelineTable, SaysWhereAnEstimateIsUnknownAndDrawsNoBar)
{
  KV::session::Snapshot snapshot = snapshotAt(0.);
  snapshot.valence.confidence = 0.f;
  snapshot.attention.confidence = 0.f;
  const auto lines = linesOf(timelineTable({rowOf(snapshot)}, inNanoseconds(1.), 80, Style(false)));
  EXPECT_EQ("0:00.0  unknown              unknown          no zone       neutral   -", lines.at(1));
}

TEST(TimelineTable, SaysWhereThereAreNoUpdates)
{
  const auto lines =
      linesOf(timelineTable({rowOf(snapshotAt(0.)), rowOf(snapshotAt(5.))}, inNanoseconds(1.), 80, Style(false)));
  ASSERT_EQ(4U, lines.size());
  EXPECT_EQ("0:01.0  no updates until 0:05.0", lines[2]);
}

TEST(TimelineTable, ShowsAsManyDecimalsAsTheStepNeeds)
{
  const auto lines = linesOf(timelineTable({rowOf(snapshotAt(0.25))}, inNanoseconds(0.25), 80, Style(false)));
  EXPECT_EQ("0:00.25", lines.at(1).substr(0, 7));
}

TEST(TimelineTable, ShowsBelowARowWhatMovedItMost)
{
  KV::session::Changes changes;
  changes.add("Touch emotion", KV::ValenceQuantity, 1.f, 0.f, 0.75f);
  changes.add("Not visible", KV::ValenceQuantity, 0.f, 0.75f, 0.25f);
  changes.add("Smile", KV::ValenceQuantity, 1.f, 0.25f, 0.5f);
  changes.add("Voice emotion", KV::ValenceQuantity, 1.f, 0.5f, 0.625f);
  changes.add("Not visible", KV::AttentionQuantity, 0.f, 0.25f, 0.f);
  changes.add("No observation", KV::AttentionQuantity, 0.f, 0.f, 0.001f);
  TimelineRow row = rowOf(snapshotAt(0.));
  row.add(changes);
  const auto lines = linesOf(timelineTable({row, rowOf(snapshotAt(1.))}, inNanoseconds(1.), 100, Style(false)));
  ASSERT_EQ(5U, lines.size());
  EXPECT_EQ("        valence: touch +0.75, not being visible -0.50, smile +0.25; attention: not being visible",
            lines[2]);
  EXPECT_EQ("        -0.25", lines.at(3));
}

TEST(TimelineTable, HasNoMarksWithoutColors)
{
  const std::vector<TimelineRow> rows{rowOf(longestWords(0.))};
  EXPECT_EQ(std::string::npos, timelineTable(rows, inNanoseconds(1.), 80, Style(false)).find('\033'));
  EXPECT_NE(std::string::npos, timelineTable(rows, inNanoseconds(1.), 80, Style(true)).find("\033[32m"));
}

TEST(TimelineTable, OfNothingIsNothing)
{
  EXPECT_EQ("", timelineTable({}, inNanoseconds(1.), 80, Style(false)));
}

}  // namespace
