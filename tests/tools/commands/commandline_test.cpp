#include "support/command.hpp"
#include "support/exportedtable.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <set>
#include <sstream>
#include <string>
#include <vector>

/// \file
/// How the built command reads its first words, and standard input.

namespace
{

using namespace replaytests;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Texts = std::vector<std::string>;

const char* const hint = "\nTry 'skeigiot --help' or 'skeigiot COMMAND --help'.\n";

/// The commands that the help lists.
Texts commandNames()
{
  std::istringstream help(runCommand({"--help"}).output);
  std::string line;
  while (std::getline(help, line) && line != "Subcommands:")
  {}
  Texts names;
  while (std::getline(help, line) && line.rfind("  ", 0) == 0)
    names.push_back(line.substr(2, line.find(' ', 2) - 2));
  return names;
}

std::string listedCommands()
{
  std::string text;
  for (const std::string& name : commandNames())
    text += (text.empty() ? "" : ", ") + name;
  return text;
}

class CommandLine : public ::testing::Test
{
protected:
  /// Runs `skeigiot` with these words, in the folder of the recording.
  CommandResult inFolder(const std::string& words, const std::string& before = "") const
  {
    return runShell("cd \"$1\" && " + before + "$skeigiot " + words, {folder.path("")});
  }

  static void expectRefusal(const CommandResult& result, const std::string& message)
  {
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("", result.output);
    EXPECT_EQ("skeigiot: " + message + hint, result.errors);
  }

  TemporaryFolder folder;
  const std::string table = "time,person,reading,value\n0,1,touchEmotion,1\n1,1,touchEmotion,1\n2,1,touchEmotion,-1\n";
  const std::string recording = folder.write("touch.csv", table);
};

// The command may be missing

TEST_F(CommandLine, ReplaysARecordingWithoutACommand)
{
  const std::string expected = inFolder("replay touch.csv").output;
  EXPECT_THAT(expected, HasSubstr("Person 1"));
  EXPECT_EQ(expected, inFolder("touch.csv").output);
  EXPECT_EQ(expected, inFolder("touch.csv --color never").output);
  EXPECT_EQ(expected, inFolder("--color never touch.csv").output);
  EXPECT_EQ(expected, inFolder("--color=never touch.csv").output);
}

TEST_F(CommandLine, ReplaysAFolderWithoutACommand)
{
  EXPECT_THAT(runCommand({folder.path("")}).output, HasSubstr("Person 1"));
}

TEST_F(CommandLine, TakesAWordThatLooksLikeAPathForARecording)
{
  const CommandResult result = inFolder("tuoch.csv");
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: tuoch.csv: there is no such file\n", result.errors);
}

TEST_F(CommandLine, PrefersItsCommandsToFilesOfTheirNames)
{
  folder.write("types", table);
  EXPECT_THAT(inFolder("types").output, Not(HasSubstr("Person 1")));
  EXPECT_THAT(inFolder("./types").output, HasSubstr("Person 1"));
}

TEST_F(CommandLine, NamesTheNearestCommand)
{
  expectRefusal(runCommand({"repaly"}), "there is no command 'repaly'; did you mean 'replay'?");
  expectRefusal(runCommand({"repaly", recording}), "there is no command 'repaly'; did you mean 'replay'?");
  expectRefusal(runCommand({"wyh"}), "there is no command 'wyh'; did you mean 'why'?");
  expectRefusal(runCommand({"nonsense"}),
                "there is no command 'nonsense'; expected a recording, or one of " + listedCommands());
}

TEST_F(CommandLine, NamesTheNearestOption)
{
  expectRefusal(runCommand({"replay", recording, "--stpe", "2"}),
                "this argument was not expected: --stpe; did you mean '--step'?");
  expectRefusal(runCommand({recording, "--colour=never"}),
                "this argument was not expected: --colour=never; did you mean '--color'?");
  expectRefusal(runCommand({"--versoin"}), "this argument was not expected: --versoin; did you mean '--version'?");
}

TEST_F(CommandLine, SaysWhatItExpectsIfThereIsNoWord)
{
  expectRefusal(runCommand({}), "expected a recording, or one of the commands " + listedCommands());
}

// Help

TEST_F(CommandLine, ShowsItsHelp)
{
  const CommandResult result = runCommand({"help"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(runCommand({"--help"}).output, result.output);
  EXPECT_THAT(result.output, HasSubstr("skeigiot face.csv"));
}

TEST_F(CommandLine, ShowsTheHelpOfACommand)
{
  const Texts names = commandNames();
  EXPECT_THAT(names, testing::IsSupersetOf({"help", "inspect", "replay", "why"}));
  for (const std::string& command : names)
  {
    const CommandResult result = runCommand({"help", command});
    EXPECT_EQ(0, result.status) << command;
    EXPECT_EQ(runCommand({command, "--help"}).output, result.output) << command;
  }
}

TEST_F(CommandLine, NamesTheNearestCommandIfHelpIsAskedOfAnother)
{
  expectRefusal(runCommand({"help", "reprot"}), "there is no command 'reprot'; did you mean 'report'?");
}

// Standard input

TEST_F(CommandLine, ReadsStandardInputWhereARecordingIsRead)
{
  const auto ofFile = [this](const std::string& words) {
    std::string text = inFolder(words).output;
    for (std::size_t at = text.find("touch.csv"); at != std::string::npos; at = text.find("touch.csv"))
      text.replace(at, std::string("touch.csv").size(), "standard input");
    return text;
  };
  const auto ofInput = [this](const std::string& words) {
    const CommandResult result = inFolder(words, "cat touch.csv | ");
    EXPECT_EQ(0, result.status) << result.errors;
    return result.output;
  };
  EXPECT_EQ(ofFile("touch.csv"), ofInput("-"));
  EXPECT_EQ(ofFile("replay touch.csv --csv -"), ofInput("replay - --csv -"));
  EXPECT_EQ(ofFile("inspect touch.csv"), ofInput("inspect -"));
  EXPECT_EQ(ofFile("inspect touch.csv --json"), ofInput("inspect - --json"));
  EXPECT_EQ(ofFile("inspect touch.csv --format tidy"), ofInput("inspect - --format tidy"));
  EXPECT_EQ(ofFile("why touch.csv --json"), ofInput("why - --json"));
  folder.write("anna.csv", "start,end,value\n0,2,positive\n");
  EXPECT_EQ(ofFile("agree touch.csv --labels anna.csv"), ofInput("agree - --labels anna.csv"));
}

TEST_F(CommandLine, UnpacksStandardInputAndMergesItWithFiles)
{
  folder.write("voice.csv", "time,person,reading,value\n0.5,1,voiceEmotion.anger,1\n");
  const std::string ofFiles = inFolder("replay touch.csv voice.csv --csv -").output;
  const std::string ofInput = inFolder("replay - voice.csv --csv -", "gzip -c touch.csv | ").output;
  EXPECT_THAT(ofFiles, EndsWith(",touch.csv + voice.csv\n"));
  EXPECT_THAT(ofInput, EndsWith(",standard input + voice.csv\n"));
  EXPECT_EQ(withoutFile(ofFiles), withoutFile(ofInput));
  EXPECT_EQ(withoutFile(inFolder("replay touch.csv voice.csv --offset touch.csv=0.1 --csv -").output),
            withoutFile(inFolder("replay - voice.csv --offset -=0.1 --csv -", "cat touch.csv | ").output));
}

TEST_F(CommandLine, CallsStandardInputSoInMessages)
{
  const CommandResult unknown = inFolder("inspect -", "echo nothing | ");
  EXPECT_EQ(2, unknown.status);
  EXPECT_THAT(unknown.errors, StartsWith("skeigiot: standard input: the format is not known"));
  EXPECT_EQ("skeigiot: standard input: the file is empty\n", inFolder("replay - -q").errors);
  EXPECT_EQ("skeigiot: standard input:2: value: expected a number, found 'wide'\n",
            inFolder("why -", "printf 'time,person,reading,value\\n0,1,smile,wide\\n' | ").errors);
}

TEST_F(CommandLine, ReadsStandardInputOnce)
{
  expectRefusal(inFolder("replay - - --separately"), "'-' is named twice, but standard input can be read only once");
}

TEST_F(CommandLine, EndsWhenItIsInterruptedWhileItWaitsForStandardInput)
{
  const CommandResult result = runShell(
      "mkfifo \"$1/pipe\"\n"
      "$skeigiot replay - --csv \"$1/export.csv\" < \"$1/pipe\" &\n"
      "command=$!\n"
      "exec 3>\"$1/pipe\"\n"
      "cat \"$1/touch.csv\" >&3\n"
      "looks=0\n"  // for the export, which has another name until it is complete
      "until ls -A \"$1\" | grep -q .skeigiot || [ $((looks += 1)) -gt 5000 ]; do :; done\n"
      "kill -TERM $command\n"
      "wait $command\n",
      {folder.path("")});
  EXPECT_EQ(128 + SIGTERM, result.status);
  EXPECT_THAT((std::set<std::string>{"export.csv", "pipe", "touch.csv"}), testing::IsSupersetOf(folder.names()));
}

}  // namespace
