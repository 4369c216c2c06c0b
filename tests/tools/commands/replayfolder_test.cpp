#include "librecordings/limitedchild.hpp"
#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <algorithm>
#include <cstddef>
#include <string>

/// \file
/// Folders of recordings, as a study has them, through the built command.

namespace
{

using namespace replaytests;

constexpr int many = 5000;

std::string recordingOf(int smiles)
{
  std::string text = "time,person,reading,value\n";
  for (int i = 0; i < smiles; ++i)
    text += std::to_string(0.1 * i) + ",0,smile,0.5\n";
  return text;
}

std::string numberedName(int number)
{
  const std::string digits = std::to_string(10'000 + number);
  return "f" + digits.substr(1) + ".csv";
}

/// The greatest memory of all commands of this process so far.
long peakInKilobytes()
{
  struct rusage usage = {};
  getrusage(RUSAGE_CHILDREN, &usage);
  return usage.ru_maxrss;
}

class LargeFolder : public ::testing::Test
{
protected:
  /// Replays the folder with a limit of 256 open files.
  CommandResult replay(const std::string& options) const
  {
    return runShell("ulimit -n 256; exec \"$skeigiot\" replay \"$1\" " + options + " --csv \"$2\"",
                    {folder.path(""), results.path("all.csv")});
  }

  TemporaryFolder folder;
  TemporaryFolder results;
};

TEST_F(LargeFolder, NeedsFewOpenFilesAndNoMoreMemoryThanASmallOne)
{
  for (int i = 0; i < 20; ++i)
    folder.write(numberedName(i), recordingOf(2));
  ASSERT_EQ(0, replay("--quiet").status);
  const long before = peakInKilobytes();

  for (int i = 0; i < many; ++i)
    folder.write(numberedName(i), recordingOf(2));
  const CommandResult result = replay("--quiet");

  EXPECT_EQ(0, result.status) << result.errors;
  const std::string all = results.read("all.csv");
  EXPECT_EQ(1 + 2 * many, std::count(all.begin(), all.end(), '\n'));
  if (support::memoryCanBeLimited)
  {
    EXPECT_LT(peakInKilobytes() - before, 16 * 1024);
  }
}

TEST_F(LargeFolder, ReplaysNoMoreAtATimeThanCanBeOpen)
{
  for (int i = 0; i < 600; ++i)
    folder.write(numberedName(i), recordingOf(2));
  const CommandResult result = replay("--quiet --jobs 1024");
  EXPECT_EQ(0, result.status) << result.errors;
}

TEST_F(LargeFolder, WaitsForASlowRecordingWithFewOpenFiles)
{
  folder.write(numberedName(0), recordingOf(20'000));
  for (int i = 1; i < 300; ++i)
    folder.write(numberedName(i), recordingOf(700));  // more than a block of export each
  const CommandResult result = replay("--quiet --jobs 32 --jsonl " + results.path("all.jsonl") + " --cycle recorded");
  EXPECT_EQ(0, result.status) << result.errors;
  const std::string all = results.read("all.csv");
  EXPECT_EQ(1 + 20'000 + 299 * 700, std::count(all.begin(), all.end(), '\n'));
}

TEST_F(LargeFolder, ReportsErrorsInTheOrderOfTheFiles)
{
  for (int i = 0; i < 300; ++i)
    folder.write(numberedName(i), i % 100 == 50 ? "time,person,reading,value\nnever,0,smile,1\n" : recordingOf(2));
  const CommandResult result = replay("--quiet");
  EXPECT_EQ(2, result.status);
  const auto placeOf = [&result](int number) { return result.errors.find(numberedName(number) + ":2: time"); };
  EXPECT_NE(std::string::npos, placeOf(250)) << result.errors;
  EXPECT_LT(placeOf(50), placeOf(150));
  EXPECT_LT(placeOf(150), placeOf(250));
  const std::string all = results.read("all.csv");
  EXPECT_EQ(1 + 2 * 297, std::count(all.begin(), all.end(), '\n'));
}

TEST_F(LargeFolder, HasTheFileInEachLineOfItsExports)
{
  folder.write("anna.csv", recordingOf(2));
  folder.write("ben, again.csv", recordingOf(1));
  replay("--quiet --jsonl " + results.path("all.jsonl"));
  const std::string csv = results.read("all.csv");
  EXPECT_THAT(csv, ::testing::HasSubstr(",name,file\n1,0,0,"));
  EXPECT_THAT(csv, ::testing::HasSubstr(",,anna.csv\n2,0,0,"));
  EXPECT_THAT(csv, ::testing::EndsWith(",,\"ben, again.csv\"\n"));
  EXPECT_THAT(results.read("all.jsonl"), ::testing::HasSubstr("\"file\":\"ben, again.csv\"}\n"));
}

TEST_F(LargeFolder, IsSummedUpInATableAndInAFileForStatistics)
{
  folder.write("anna.csv", recordingOf(3));
  folder.write("bad.csv", "time,person,reading,value\nnever,0,smile,1\n");
  folder.write("two.csv", "time,person,reading,value\n0,zoe,touchEmotion,1\n0,yve,smile,1\n0.5,zoe,smile,1\n");
  const CommandResult result = replay("--summary " + results.path("summary.csv") + " --scope end=0.1..");
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.output,
              ::testing::HasSubstr("\n3 recordings  length  persons   seen  valence  attention  verdict"));
  EXPECT_THAT(result.output, ::testing::ContainsRegex("\nanna.csv +0:00.2 +1 +100 % +unknown +unknown +unknown\n"));
  EXPECT_THAT(result.output, ::testing::ContainsRegex("\nbad.csv .*not read"));
  EXPECT_THAT(result.output, ::testing::ContainsRegex("\ntwo.csv +0:00.5 +2 +100 % +[+]"));
  EXPECT_THAT(result.output, ::testing::HasSubstr("\nzoe (person 0)\n"));
  const std::string summary = results.read("summary.csv");
  EXPECT_EQ(1 + 2 + 1 + 4, std::count(summary.begin(), summary.end(), '\n')) << summary;
  EXPECT_THAT(summary,
              ::testing::HasSubstr("\n1,anna.csv,0,,whole recording,0,0.2,complete,unknown,3,0,0.2,1,,,0,,,0,,,"));
  EXPECT_THAT(summary, ::testing::HasSubstr("\n2,bad.csv,,,,"));
  EXPECT_THAT(summary, ::testing::HasSubstr("bad.csv:2: time: expected a number, found 'never'\"\n"));
  EXPECT_THAT(summary, ::testing::HasSubstr("\n3,two.csv,0,zoe,end,0.1,0.5,complete,"));
}

TEST_F(LargeFolder, IsSummedUpAlikeWhateverTheNumberOfJobs)
{
  for (int i = 0; i < 30; ++i)
    folder.write(numberedName(i), recordingOf(1 + i));
  const CommandResult one = replay("--jobs 1 --summary " + results.path("one.csv"));
  const CommandResult more = replay("--jobs 4 --summary " + results.path("more.csv"));
  EXPECT_EQ(one.output, more.output);
  EXPECT_EQ(results.read("one.csv"), results.read("more.csv"));
}

TEST_F(LargeFolder, NamedFileByFileIsNoSession)
{
  for (int i = 0; i < 65; ++i)
    folder.write(numberedName(i), recordingOf(2));
  const CommandResult result = runShell("\"$skeigiot\" replay \"$1\"/*.csv", {folder.path("")});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, ::testing::HasSubstr(
                                 "65 files named together are inputs of one session, which takes 64 at most: name "
                                 "their folder instead, or give --separately, to replay each as a session of its own"));
  EXPECT_EQ(0, runShell("\"$skeigiot\" replay --separately \"$1\"/*.csv", {folder.path("")}).status);
}

}  // namespace
