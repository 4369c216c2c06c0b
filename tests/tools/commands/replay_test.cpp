#include "libsession/entries.hpp"
#include "support/command.hpp"
#include "support/exportedtable.hpp"
#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <vector>

/// \file
/// The built command as a whole.

namespace
{

using namespace replaytests;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Names = std::set<std::string>;

std::string asJsonLines(const std::vector<KV::recordings::Step>& entries)
{
  std::ostringstream file;
  KV::recordings::JsonLinesWriter writer(file);
  for (const KV::recordings::Step& entry : entries)
    writer.write(entry);
  return file.str();
}

/// Two persons over some seconds, one of whom leaves; with an ambiance and a scope of its own.
std::vector<KV::recordings::Step> meeting()
{
  std::vector<KV::recordings::Step> entries;
  for (int i = 0; i < 60; ++i)
  {
    const double time = 0.1 * i;
    entries.push_back(seenAt(time, 1, static_cast<float>(i) / 60.f));
    entries.push_back(i < 30 ? seenAt(time, 2, 0.f) : notSeenAt(time, 2));
  }
  entries.front().scopeStarts.push_back({"greeting", -1});
  entries[40].scopeStops.push_back("greeting");
  entries[10].ambianceActivity = 0.01f;
  return entries;
}

std::size_t linesOf(const std::string& text)
{
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

class CommandTest : public ::testing::Test
{
protected:
  CommandTest() : recording(folder.write("meeting.jsonl", asJsonLines(meeting()))) {}

  CommandResult replay(std::vector<std::string> arguments) const
  {
    arguments.insert(arguments.begin(), "replay");
    return runCommand(arguments);
  }

  TemporaryFolder folder;
  std::string recording;
};

TEST_F(CommandTest, PrintsItsVersion)
{
  const CommandResult result = runCommand({"--version"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("skeigiot " SKEIGIOT_VERSION "\n", result.output);
}

TEST_F(CommandTest, ListsItsCommandsInItsHelp)
{
  const CommandResult result = runCommand({"--help"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.output, HasSubstr("  replay "));
}

TEST_F(CommandTest, ExplainsEveryOptionOfReplay)
{
  const CommandResult result = replay({"--help"});
  EXPECT_EQ(0, result.status);
  for (const char* option : {"--scope NAME=FROM..TO",
                             "--scopes FILE[:TIER]",
                             "--scopes-offset SECONDS",
                             "--eaf FILE",
                             "--audacity FILE",
                             "--beside FILE",
                             "--offset FILE=SECONDS",
                             "--separately",
                             "--jobs NUMBER",
                             "--step SECONDS",
                             "--color WHEN",
                             "--quiet",
                             "--csv FILE",
                             "--jsonl FILE",
                             "--force",
                             "--to-jsonl FILE",
                             "--report FILE",
                             "--format NAME",
                             "--fps HZ",
                             "--mirrored",
                             "--frame FRAME",
                             "--look-at POINT",
                             "--rest REST",
                             "--camera-height METRES",
                             "--min-confidence SHARE",
                             "--au-full-scale INTENSITY",
                             "--skip-bad",
                             "--boundary-positive",
                             "--boundary-negative",
                             "--boundary-confidence",
                             "--boundary-looking-at-robot",
                             "--boundary-strictly-looking-at-robot",
                             "--boundary-excited"})
    EXPECT_THAT(result.output, HasSubstr(std::string(option) + " "));
}

TEST_F(CommandTest, ExplainsEveryFieldOfAnExport)
{
  const std::string help = replay({"--help"}).output;
  std::istringstream header(replay({recording, "--csv", "-"}).output);
  std::string line;
  std::getline(header, line);
  std::istringstream fields(line);
  for (std::string field; std::getline(fields, field, ',');)
    EXPECT_THAT(help, HasSubstr(field));
}

TEST_F(CommandTest, ShowsATimelineAndASummaryOfEachPerson)
{
  const CommandResult result = replay({recording});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_THAT(result.output, HasSubstr("\nPerson 1\n"));
  EXPECT_THAT(result.output, HasSubstr("\nPerson 2\n"));
  EXPECT_THAT(result.output, HasSubstr("not visible 50 %"));
  EXPECT_THAT(result.output, HasSubstr("'greeting' (0:00.0 to 0:02.0, 21 updates)"));
  EXPECT_THAT(result.output, HasSubstr("\nRoom\n"));
}

TEST_F(CommandTest, UsesNoColorsOnAPipe)
{
  EXPECT_THAT(replay({recording}).output, Not(HasSubstr("\033")));
}

TEST_F(CommandTest, UsesColorsOnAPipeIfAsked)
{
  EXPECT_THAT(replay({recording, "--color", "always"}).output, HasSubstr("\033[1m"));
}

TEST_F(CommandTest, SaysNothingIfItIsQuiet)
{
  const CommandResult result = replay({recording, "--quiet"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.output + result.errors);
}

TEST_F(CommandTest, ExportsTheSameInEveryRun)
{
  for (const char* run : {"1", "2"})
    replay({recording, "-q", "--csv", folder.path(std::string(run) + ".csv"), "--jsonl",
            folder.path(std::string(run) + ".jsonl")});
  EXPECT_EQ(121U, linesOf(folder.read("1.csv")));
  EXPECT_EQ(withoutFile(folder.read("1.csv")), withoutFile(folder.read("2.csv")));
  EXPECT_EQ(folder.read("1.jsonl"), folder.read("2.jsonl"));
  EXPECT_EQ((Names{"1.csv", "2.csv", "1.jsonl", "2.jsonl", "meeting.jsonl"}), folder.names());
}

TEST_F(CommandTest, WritesTheRecordingSuchThatItsReplayIsTheSame)
{
  replay({recording, "-q", "--to-jsonl", folder.path("own.jsonl"), "--csv", folder.path("1.csv")});
  replay({folder.path("own.jsonl"), "-q", "--csv", folder.path("2.csv")});
  EXPECT_EQ(folder.read("meeting.jsonl"), folder.read("own.jsonl"));
  EXPECT_EQ(withoutFile(folder.read("1.csv")), withoutFile(folder.read("2.csv")));
}

TEST_F(CommandTest, ExportsToStandardOutputAndThenWritesNothingElseThere)
{
  replay({recording, "-q", "--csv", folder.path("file.csv")});
  EXPECT_EQ(folder.read("file.csv"), replay({recording, "--csv", "-"}).output);
}

TEST_F(CommandTest, ReplaysSeveralRecordingsInSessionsOfTheirOwn)
{
  const CommandResult result = replay({recording, recording, "--separately"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.output, StartsWith(recording + "\n"));
  EXPECT_THAT(result.output, HasSubstr("\n\n" + recording + "\n"));
}

TEST_F(CommandTest, MergesFilesNamedTogetherAndGivesTheSameFromTheOwnFormat)
{
  const std::string voice = folder.write("voice.csv",
                                         "time,person,reading,value,confidence\n"
                                         "0.25,1,voiceEmotion.anger,0.9,0.8\n"
                                         "0.25,1,voiceEmotion.joy,0.1,0.8\n"
                                         "2,2,asrEmotion,-1,\n"
                                         "9,,start,afterwards,\n");
  const CommandResult result = replay(
      {recording, voice, "--offset", voice + "=0.5", "--csv", folder.path("1.csv"), "--to-jsonl", folder.path("own")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_THAT(result.output, StartsWith(recording + " + " + voice + "\n"));
  EXPECT_EQ(121U, linesOf(folder.read("1.csv"))) << "updates are those of the cycles of the first input";
  EXPECT_NE(replay({recording, "--csv", "-"}).output, folder.read("1.csv")) << "the voice has its effect";

  replay({folder.path("own"), "-q", "--csv", folder.path("2.csv")});
  EXPECT_EQ(withoutFile(folder.read("1.csv")), withoutFile(folder.read("2.csv")));
}

TEST_F(CommandTest, NamesTheOptionsThatLetDistantInputsBeReplayed)
{
  const std::string early = folder.write("early.csv", "time,person,reading,value\n0,1,smile,1\n");
  const std::string late = folder.write("late.csv", "time,person,reading,value\n1700000000,1,asrEmotion,1\n");
  const std::string expected =
      late + ": begins at 2023-11-14 22:13:20 UTC, but " + early +
      " at 2020-01-01 00:00:00 UTC: one counts from its start (which is placed at 2020), the other since 1970, or they "
      "are no inputs of one session; --offset " +
      early + "=122163200.000 would let them begin together, --separately replays each as a session of its own\n";
  EXPECT_THAT(replay({early, late}).errors, EndsWith(expected));
  EXPECT_THAT(runCommand({"why", early, late, "--person", "1", "--at", "0"}).errors, EndsWith(expected));
}

TEST_F(CommandTest, NamesTheWaysOutIfFilesNamedTogetherAreOfSeveralPersons)
{
  const std::string clip = folder.write("clip.csv", "time,reading,value\n0,smile,1\n");
  const std::string other = folder.write("other.csv", "time,reading,value\n0,smile,0\n");
  const CommandResult result = replay({clip, other});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: " + other + ": smile: person 0 has this reading at the same time in " + clip +
                ": these are recordings of two persons, or of two sessions; --separately, or naming their folder, "
                "replays each as a session of its own\n",
            result.errors);
  EXPECT_EQ(0, replay({clip, other, "--separately"}).status);
}

TEST_F(CommandTest, GoesOnWithTheOthersOfABatch)
{
  folder.write("a.csv", "time,reading,value\n0,smile,1\n");
  folder.write("b.csv", "time,reading,value\n0,smile,wide\n");
  folder.write("c.csv", "time,reading,value\n0,smile,1\n");
  std::filesystem::create_symlink("loop", folder.path("loop"));
  for (const char* const jobs : {"1", "3"})
  {
    const CommandResult result = replay({folder.path("."), "--jobs", jobs});
    EXPECT_EQ(2, result.status);
    EXPECT_THAT(result.output, HasSubstr("a.csv\n"));
    EXPECT_THAT(result.output, HasSubstr("c.csv\n"));
    EXPECT_THAT(result.errors, HasSubstr("b.csv:2: value: expected a number"));
    EXPECT_THAT(result.errors, HasSubstr("loop: skipped, since it cannot be read: Too many levels"));
  }
}

TEST_F(CommandTest, NamesTheOptionForTheRate)
{
  const std::string path = folder.write("face.csv", "frame,AU12_r\n1,1\n2,1\n");
  EXPECT_THAT(replay({path}).output,
              HasSubstr("there are no time stamps: 30 frames/s are assumed; give the rate of the video (--fps) if it "
                        "was another\n"));
}

TEST_F(CommandTest, ReplaysAFolderOfRecordingsWithTheSameResultWhateverTheNumberOfJobs)
{
  std::filesystem::create_directory(folder.path("recordings"));
  for (const char* name : {"recordings/a.jsonl", "recordings/b.jsonl", "recordings/c.jsonl"})
    folder.write(name, asJsonLines(meeting()));
  folder.write("recordings/b.jsonl", asJsonLines(meeting()) + "oops\n");
  folder.write("recordings/notes.txt", "engaged\n");
  const auto run = [this](const std::string& jobs) {
    return replay({folder.path("recordings"), "--jobs", jobs, "--csv", folder.path(jobs + ".csv")});
  };
  const CommandResult one = run("1");
  const CommandResult four = run("4");
  EXPECT_EQ(2, one.status);
  EXPECT_EQ(one.status, four.status);
  EXPECT_EQ(one.output, four.output);
  EXPECT_EQ(one.errors, four.errors);
  EXPECT_EQ(folder.read("1.csv"), folder.read("4.csv"));
  EXPECT_EQ(361U, linesOf(folder.read("4.csv")));
  EXPECT_THAT(four.errors, HasSubstr("skipped 1 file of unknown format: notes.txt\n"));
  EXPECT_THAT(four.errors, HasSubstr("recordings/b.jsonl:121: "));
}

TEST_F(CommandTest, SetsABoundary)
{
  EXPECT_THAT(replay({recording, "--boundary-confidence", "0.999999"}).output, Not(HasSubstr("pleasure   positive")));
  EXPECT_THAT(replay({recording, "--boundary-positive", "-0.9", "--boundary-negative", "-0.95"}).output,
              HasSubstr("positive  'whole recording'"));
}

// Bad input

TEST_F(CommandTest, ExportsWhatCameBeforeBadInput)
{
  const std::string good = asJsonLines({seenAt(0., 1), seenAt(1., 1)});
  const std::string file = folder.write("cut.jsonl", good + "{\"time\": oops\n" + asJsonLines({seenAt(2., 1)}));
  const CommandResult result = replay({file, "--force", "--csv", folder.path("export.csv")});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, StartsWith("skeigiot: " + file + ":3: "));
  EXPECT_EQ(1U, linesOf(result.errors));
  EXPECT_THAT(result.output, HasSubstr("2 updates"));
  EXPECT_EQ(3U, linesOf(folder.read("export.csv")));
}

TEST_F(CommandTest, PassesOverBadLinesAndCountsThem)
{
  const std::string file =
      folder.write("cut.jsonl", asJsonLines({seenAt(0., 1)}) + "oops\n" + asJsonLines({seenAt(2., 1)}));
  const CommandResult result = replay({file, "--skip-bad"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.errors, StartsWith("skeigiot: " + file + ": skipped 1 bad line, the first: " + file + ":2: "));
  EXPECT_THAT(result.output, HasSubstr("2 updates"));
}

TEST_F(CommandTest, NamesTheColumnOfBadInput)
{
  const std::string file = folder.write(
      "face.csv", "frame,face_id,timestamp,confidence,success,AU12_r\n1,0,0,0.9,1,2\n2,0,0.03,0.9,1,abc\n");
  const CommandResult result = replay({file});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: " + file + ":3: AU12_r: expected a number, found 'abc'\n", result.errors);
}

struct BadFileCase
{
  const char* name;
  const char* file;
};

class BadFile : public CommandTest, public ::testing::WithParamInterface<BadFileCase>
{};

TEST_P(BadFile, IsReportedWithItsNameAndLeavesExportsAlone)
{
  folder.write("empty.csv", "");
  std::filesystem::create_directory(folder.path("folder.csv"));
  folder.write("export.csv", "old");
  const Names before = folder.names();
  const std::string file = folder.path(GetParam().file);

  const CommandResult result = replay({file, "--force", "--csv", folder.path("export.csv")});

  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, StartsWith("skeigiot: " + file + ": "));
  EXPECT_EQ(1U, linesOf(result.errors));
  EXPECT_EQ("old", folder.read("export.csv"));
  EXPECT_EQ(before, folder.names());
}

INSTANTIATE_TEST_SUITE_P(Kinds, BadFile,
                         ::testing::Values(BadFileCase{"Missing", "missing.csv"}, BadFileCase{"Empty", "empty.csv"},
                                           BadFileCase{"AFolder", "folder.csv"}),
                         support::RowName());

struct UsageCase
{
  const char* name;
  std::vector<std::string> arguments;
  const char* message;
};

class WrongUsage : public CommandTest, public ::testing::WithParamInterface<UsageCase>
{};

TEST_P(WrongUsage, IsRefusedWithTheReason)
{
  std::vector<std::string> arguments{recording};
  arguments.insert(arguments.end(), GetParam().arguments.begin(), GetParam().arguments.end());
  const CommandResult result = replay(arguments);
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("", result.output);
  EXPECT_EQ(std::string("skeigiot: ") + GetParam().message + "\nTry 'skeigiot --help' or 'skeigiot COMMAND --help'.\n",
            result.errors);
  EXPECT_EQ((Names{"meeting.jsonl"}), folder.names());
}

INSTANTIATE_TEST_SUITE_P(
    Options, WrongUsage,
    ::testing::Values(
        UsageCase{"ABoundaryOutOfItsInterval",
                  {"--boundary-positive", "1.5"},
                  "--boundary-positive: 1.5 does not lie strictly between -1 and 1"},
        UsageCase{"ABoundaryThatRoundsToItsEnd",
                  {"--boundary-excited", "0.99999999999"},
                  "--boundary-excited: 1 does not lie strictly between 0 and 1"},
        UsageCase{
            "ABoundaryInWords", {"--boundary-excited", "high"}, "--boundary-excited: expected a number, found 'high'"},
        UsageCase{"NoFrames", {"--fps", "0"}, "--fps: expected a number above 0, found '0'"},
        UsageCase{"AConfidenceAboveAll",
                  {"--min-confidence", "2"},
                  "--min-confidence: expected a number from 0 to 1, found '2'"},
        UsageCase{"ATooShortStep", {"--step", "1e-9"}, "--step: expected a number from 0.001 on, found '1e-9'"},
        UsageCase{
            "AnUnknownFrame", {"--frame", "robot"}, "--frame: expected one of line-of-sight, camera, found 'robot'"},
        UsageCase{"APointOfTwoNumbers",
                  {"--look-at", "1,2"},
                  "--look-at: '1,2' is not camera, axis, learned, or metres RIGHT,DOWN,FORWARD from the camera such as "
                  "0,-0.2,0.05"},
        UsageCase{"ASpanOfRestThatRunsBack",
                  {"--rest", "3..2"},
                  "--rest: '3..2' is not learned, none, or a span of seconds such as 2..7.5"},
        UsageCase{"AnUnknownChoiceOfColor",
                  {"--color", "blue"},
                  "--color: expected one of auto, always, never, found 'blue'"},
        UsageCase{
            "AScopeWithoutTimes", {"--scope", "greeting"}, "--scope: 'greeting' is not NAME=FROM..TO: '=' is missing"},
        UsageCase{"SeveralRecordingsIntoOne",
                  {"another.csv", "--separately", "--to-jsonl", "-"},
                  "--to-jsonl: needs a single session: times in a recording never go backwards"},
        UsageCase{"SeveralRecordingsIntoADocument",
                  {"another.csv", "--separately", "--eaf", "-"},
                  "--eaf: needs a single session: a document of ELAN is about one recording"},
        UsageCase{"SeveralRecordingsIntoALabelTrack",
                  {"another.csv", "--separately", "--audacity", "-"},
                  "--audacity: needs a single session: a label track is about one recording"},
        UsageCase{
            "AnOffsetOfScopesInWords", {"--scopes-offset", "late"}, "--scopes-offset: expected a number, found 'late'"},
        UsageCase{"NoJobs", {"--jobs", "0"}, "--jobs: expected a whole number from 1 to 1024, found '0'"},
        UsageCase{"HalfAJob", {"--jobs", "1.5"}, "--jobs: expected a whole number from 1 to 1024, found '1.5'"},
        UsageCase{"OffsetWithoutFile", {"--offset", "0.25"}, "--offset: '0.25' is not FILE=SECONDS"},
        UsageCase{
            "OffsetOfNoInput", {"another.csv", "--offset", "voice.csv=1"}, "--offset: there is no input 'voice.csv'"},
        UsageCase{"OffsetOfTheOnlyInput",
                  {"--offset", "voice.csv=1"},
                  "--offset: an offset needs another input in the same session"},
        UsageCase{"AnInputTwice",
                  {"another.csv", "another.csv"},
                  "one input is named twice: give --separately to replay it twice"},
        UsageCase{"AFileBesideAFolder",
                  {"."},
                  "files named together are one session, but each recording of a folder is a session of its own: "
                  "give --separately to replay each as a session of its own"},
        UsageCase{"AnUnknownOption", {"--speed"}, "this argument was not expected: --speed"}),
    support::RowName());

TEST_F(CommandTest, WantsACommandAndARecording)
{
  EXPECT_EQ(2, runCommand({}).status);
  EXPECT_EQ(2, runCommand({"nonsense"}).status);
  EXPECT_EQ(2, replay({}).status);
}

// Outputs that refuse the text

TEST_F(CommandTest, ReportsAnExportThatCannotBeMade)
{
  const std::string target = folder.path("missing/export.csv");
  const CommandResult result = replay({recording, "--csv", target});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("skeigiot: " + target + ": No such file or directory\n", result.errors);
}

TEST_F(CommandTest, ReportsAFullDisk)
{
  const CommandResult ofExport = replay({recording, "--csv", "/dev/full"});
  EXPECT_EQ(1, ofExport.status);
  EXPECT_EQ("skeigiot: /dev/full: No space left on device\n", ofExport.errors);

  const CommandResult ofOutput = runShell("$skeigiot replay \"$1\" > /dev/full", {recording});
  EXPECT_EQ(1, ofOutput.status);
  EXPECT_EQ("skeigiot: standard output: No space left on device\n", ofOutput.errors);
}

TEST_F(CommandTest, EndsQuietlyWhenItsReaderHasGoneAway)
{
  const CommandResult ofText = runCommandIntoClosedPipe({"replay", recording});
  EXPECT_EQ(1, ofText.status);
  EXPECT_EQ("", ofText.errors);

  const CommandResult ofExport = runCommandIntoClosedPipe({"replay", recording, "--csv", "-"});
  EXPECT_EQ(1, ofExport.status);
  EXPECT_EQ("", ofExport.errors);
}

TEST_F(CommandTest, ExportsThoughTheReaderOfItsTextHasGoneAway)
{
  runCommandIntoClosedPipe({"replay", recording, "--csv", folder.path("1.csv")});
  replay({recording, "--quiet", "--csv", folder.path("2.csv")});
  EXPECT_FALSE(folder.read("1.csv").empty());
  EXPECT_EQ(folder.read("2.csv"), folder.read("1.csv"));
}

TEST_F(CommandTest, ExportsWhatWasReadAndLeavesNoTemporaryFileWhenItIsInterrupted)
{
  // The recording is a pipe that never ends, so the command is in the middle of it when the signal comes.
  const CommandResult result = runShell(
      "mkfifo \"$1/pipe.jsonl\"\n"
      "$skeigiot replay --format jsonl \"$1/pipe.jsonl\" --csv \"$1/export.csv\" &\n"
      "command=$!\n"
      "exec 3>\"$1/pipe.jsonl\"\n"
      "cat \"$2\" >&3\n"
      "looks=0\n"
      "until ls -A \"$1\" | grep -q .skeigiot || [ $((looks += 1)) -gt 5000 ]; do :; done\n"
      "kill -TERM $command\n"
      "wait $command\n",
      {folder.path(""), recording});
  EXPECT_EQ(128 + SIGTERM, result.status);
  EXPECT_EQ((Names{"export.csv", "meeting.jsonl", "pipe.jsonl"}), folder.names());
  const std::string exported = folder.read("export.csv");
  EXPECT_THAT(exported, StartsWith("recording,person,time,"));
  EXPECT_EQ('\n', exported.back());
}

TEST_F(CommandTest, LeavesOutReadingsThatAreNotFiniteAndSaysSo)
{
  std::vector<KV::recordings::Step> entries = meeting();
  KV::VoiceEmotion voice;
  voice.KV::Expressions::joy.value = std::numeric_limits<float>::quiet_NaN();
  for (const std::size_t bad : {std::size_t{8}, std::size_t{20}})
    entries[bad].observation.voiceEmotion.emplace(entries[bad].time, voice);
  const CommandResult result = replay({folder.write("broken.jsonl", asJsonLines(entries))});
  const CommandResult withoutThem = replay({recording});

  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.errors, HasSubstr("broken.jsonl: left out 2 readings with numbers that are not finite, the first "
                                       "of person 1 at 0:00.400"));
  EXPECT_THAT(withoutThem.errors, Not(HasSubstr("left out")));
  const auto withoutName = [](const std::string& output) { return output.substr(output.find('\n')); };
  EXPECT_EQ(withoutName(withoutThem.output), withoutName(result.output));
}

}  // namespace
