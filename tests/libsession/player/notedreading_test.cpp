#include "player/notedreading.hpp"
#include "libsession/entries.hpp"
#include "libsession/scriptedreader.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::NotedReading;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Read = NotedReading::Read;

/// Reads to the end; returns the result for each step.
std::vector<Read> stepsOf(NotedReading& reading)
{
  std::vector<Read> steps;
  boost::optional<KV::recordings::Step> entry;
  do
  {
    steps.push_back(reading.next(entry));
    EXPECT_EQ(steps.back() == Read::Taken, entry.has_value());
  } while (steps.back() != Read::End);
  return steps;
}

TEST(NotedReading, HasNothingToSayOfAGoodRecording)
{
  ScriptedReader reader({ScriptedReader::entry(entryAt(0)), ScriptedReader::entry(entryAt(1))});
  NotedReading reading(reader, false);
  EXPECT_THAT(stepsOf(reading), ElementsAre(Read::Taken, Read::Taken, Read::End));
  EXPECT_FALSE(reading.notes().error);
  EXPECT_THAT(reading.notes().warningLines(), IsEmpty());
  EXPECT_EQ("", reading.notes().skippedText());
}

TEST(NotedReading, EndsAtABadLineAndKeepsItsError)
{
  ScriptedReader reader({ScriptedReader::badLine(7), ScriptedReader::entry(entryAt(0))});
  NotedReading reading(reader, false);
  EXPECT_THAT(stepsOf(reading), ElementsAre(Read::End));
  ASSERT_TRUE(reading.notes().error);
  EXPECT_EQ(7u, reading.notes().error->place().line);
  EXPECT_STREQ("face.csv:7: pose_Rx: expected a number, found 'abc'", reading.notes().error->what());
}

TEST(NotedReading, SkipsBadLinesWhereItMayAndCountsThem)
{
  ScriptedReader reader({ScriptedReader::badLine(2), ScriptedReader::entry(entryAt(0)), ScriptedReader::badLine(4)});
  NotedReading reading(reader, true);
  EXPECT_THAT(stepsOf(reading), ElementsAre(Read::Skipped, Read::Taken, Read::Skipped, Read::End));
  EXPECT_FALSE(reading.notes().error);
  EXPECT_EQ("skipped 2 bad lines, the first: face.csv:2: pose_Rx: expected a number, found 'abc'",
            reading.notes().skippedText());
}

TEST(NotedReading, EndsWhereTheFileIsDamagedThoughItMaySkipBadLines)
{
  ScriptedReader reader({ScriptedReader::damage(3)});
  NotedReading reading(reader, true);
  EXPECT_THAT(stepsOf(reading), ElementsAre(Read::End));
  ASSERT_TRUE(reading.notes().error);
  EXPECT_STREQ("face.csv:3: damaged", reading.notes().error->what());
}

TEST(NotedReading, KeepsTheFirstTenWarningsAndCountsTheRest)
{
  std::vector<std::string> warnings;
  for (int number = 1; number <= 12; ++number)
    warnings.push_back("warning " + std::to_string(number));
  ScriptedReader reader({}, warnings);
  NotedReading reading(reader, false);
  stepsOf(reading);
  const std::vector<std::string> lines = reading.notes().warningLines();
  ASSERT_EQ(11u, lines.size());
  EXPECT_EQ("warning 1", lines.front());
  EXPECT_EQ("warning 10", lines[9]);
  EXPECT_EQ("2 more warnings", lines.back());
}

}  // namespace
