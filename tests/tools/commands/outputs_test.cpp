#include "support/command.hpp"
#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/report.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Names = std::set<std::string>;

const char* const smiles = "time,reading,value\n0,smile,0.5\n1,smile,1\n";

/// A face that smiles from 5 s on, in OpenFace's columns.
std::string smilingFace()
{
  std::string text = "frame,timestamp,confidence,success";
  const std::vector<int> units{1, 2, 4, 5, 6, 7, 9, 10, 12, 14, 15, 17, 20, 23, 25, 26, 45};
  for (const int unit : units)
    text += std::string(unit < 10 ? ",AU0" : ",AU") + std::to_string(unit) + "_r";
  for (int frame = 0; frame < 200; ++frame)
  {
    text +=
        "\n" + std::to_string(frame) + "," + std::to_string(frame / 10) + "." + std::to_string(frame % 10) + ",0.95,1";
    for (const int unit : units)
      text += frame >= 50 && (unit == 6 || unit == 12) ? ",5" : ",0";
  }
  return text + "\n";
}

/// A command line that writes a file; INPUT and OUTPUT are replaced by paths.
struct OutputCase
{
  const char* name;
  std::vector<std::string> arguments;
};

class OutputOfACommand : public ::testing::TestWithParam<OutputCase>
{
protected:
  void SetUp() override
  {
    const std::vector<std::string>& arguments = GetParam().arguments;
    const bool isPage = arguments.front() == "report" || std::count(arguments.begin(), arguments.end(), "--report") > 0;
    if (isPage && !KV::session::Report::isAvailable())
      GTEST_SKIP() << "built without the page of the report";
  }

  /// Runs the command with this output, and further arguments.
  CommandResult runInto(const std::string& output, const std::vector<std::string>& more = {}) const
  {
    std::vector<std::string> arguments = GetParam().arguments;
    std::replace(arguments.begin(), arguments.end(), std::string("INPUT"), input);
    std::replace(arguments.begin(), arguments.end(), std::string("LABELS"), labels);
    std::replace(arguments.begin(), arguments.end(), std::string("OUTPUT"), output);
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runCommand(arguments);
  }

  const TemporaryFolder folder;
  const std::string recording = smilingFace();
  const std::string input = folder.write("face.csv", recording);
  const std::string labels = folder.write("labels.csv", "start,end,value\n6,20,positive\n");
};

TEST_P(OutputOfACommand, IsNoInputNeitherByAnotherNameNorByForce)
{
  std::filesystem::create_symlink("face.csv", folder.path("symbolic"));
  std::filesystem::create_hard_link(input, folder.path("hard"));
  const Names before = folder.names();
  for (const char* const name : {"face.csv", "./face.csv", "symbolic", "hard"})
  {
    const std::string output = folder.path(name);
    const std::string expected =
        "skeigiot: " + output + ": is the input " + input + ", which would be overwritten; write to another file\n";
    for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--force"}})
    {
      const CommandResult result = runInto(output, more);
      EXPECT_EQ(2, result.status) << name;
      EXPECT_EQ(expected, result.errors);
      EXPECT_EQ("", result.output);
    }
  }
  EXPECT_EQ(recording, folder.read("face.csv"));
  EXPECT_EQ(before, folder.names());
}

TEST_P(OutputOfACommand, ReplacesAFileOfSomebodyElseByForceOnly)
{
  const std::string other = folder.write("notes.txt", "of years\n");
  const CommandResult refused = runInto(other);
  EXPECT_EQ(2, refused.status);
  EXPECT_EQ("skeigiot: " + other +
                ": exists, and is no export of skeigiot; write to another file, or give --force to "
                "replace it\n",
            refused.errors);
  EXPECT_EQ("of years\n", folder.read("notes.txt"));
  EXPECT_EQ(0, runInto(other, {"--force"}).status);
  EXPECT_NE("of years\n", folder.read("notes.txt"));
}

TEST_P(OutputOfACommand, ReplacesWhatItWroteBeforeUnlessThatIsARecordingOrLabels)
{
  const std::string output = folder.path("output");
  EXPECT_EQ(0, runInto(output).status);
  const std::string written = folder.read("output");
  const bool isRecording = written.rfind("{\"time\":", 0) == 0;
  const std::string& option = GetParam().arguments[2];
  const bool areLabels = option == "--eaf" || option == "--audacity";  // which people edit
  EXPECT_EQ(isRecording || areLabels ? 2 : 0, runInto(output).status);
  EXPECT_EQ(0, runInto(output, {"--force"}).status);
  EXPECT_THAT(folder.read("output"), StartsWith(written.substr(0, 100)));  // a report has the date of its making
}

TEST_P(OutputOfACommand, MayHaveTheLongestNameThatThereCanBe)
{
  const std::string name(255, 'n');
  EXPECT_EQ(0, runInto(folder.path(name)).status);
  EXPECT_EQ(1U, folder.names().count(name));
}

INSTANTIATE_TEST_SUITE_P(Outputs, OutputOfACommand,
                         ::testing::Values(OutputCase{"Csv", {"replay", "INPUT", "--csv", "OUTPUT"}},
                                           OutputCase{"Jsonl", {"replay", "INPUT", "--jsonl", "OUTPUT"}},
                                           OutputCase{"Recording", {"replay", "INPUT", "--to-jsonl", "OUTPUT"}},
                                           OutputCase{"Elan", {"replay", "INPUT", "--eaf", "OUTPUT"}},
                                           OutputCase{"Audacity", {"replay", "INPUT", "--audacity", "OUTPUT"}},
                                           OutputCase{"ReportOfReplay", {"replay", "INPUT", "--report", "OUTPUT"}},
                                           OutputCase{"Report", {"report", "INPUT", "-o", "OUTPUT"}},
                                           OutputCase{"Agreement",
                                                      {"agree", "INPUT", "--labels", "LABELS", "--csv", "OUTPUT"}}),
                         support::RowName());

class OutputsTest : public ::testing::Test
{
protected:
  const TemporaryFolder folder;
  const std::string input = folder.write("face.csv", smiles);
};

TEST_F(OutputsTest, AreNotTheRecordingsOfAFolder)
{
  folder.write("other.csv", smiles);
  const CommandResult result = runCommand({"replay", folder.path(""), "--force", "--csv", folder.path("other.csv")});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, HasSubstr("other.csv: is the input "));
  EXPECT_EQ(smiles, folder.read("other.csv"));
}

TEST_F(OutputsTest, AreNotAPackedRecording)
{
  runShell("gzip \"$1\"", {input});
  const std::string packed = folder.read("face.csv.gz");
  const CommandResult result = runCommand({"replay", input + ".gz", "--force", "--csv", input + ".gz"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ(packed, folder.read("face.csv.gz"));
}

TEST_F(OutputsTest, AreNeitherLabelsNorAMapping)
{
  const std::string labels = folder.write("labels.csv", "start,end,value\n0,1,positive\n");
  EXPECT_THAT(runCommand({"agree", input, "--labels", labels, "--force", "--csv", labels}).errors,
              HasSubstr(labels + ": is the input " + labels));
  const std::string mapping = folder.write("mapping.json", "{}");
  EXPECT_THAT(runCommand({"replay", input, "--mapping", mapping, "--force", "--csv", mapping}).errors,
              HasSubstr(mapping + ": is the input " + mapping));
  EXPECT_EQ("{}", folder.read("mapping.json"));
  EXPECT_THAT(runCommand({"replay", input, "--scopes", labels, "--force", "--csv", labels}).errors,
              HasSubstr(labels + ": is the input " + labels));
  EXPECT_THAT(runCommand({"replay", input, "--beside", labels, "--force", "--eaf", labels}).errors,
              HasSubstr(labels + ": is the input " + labels));
}

TEST_F(OutputsTest, GoToOneFileOnceWhateverItsSpelling)
{
  const CommandResult result =
      runCommand({"replay", input, "--csv", folder.path("al"), "--jsonl", folder.path("./al")});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: " + folder.path("./al") + ": is written twice, also as " + folder.path("al") +
                "; give each output a file of its own\n",
            result.errors);
  EXPECT_EQ((Names{"face.csv"}), folder.names());
}

TEST_F(OutputsTest, GoToStandardOutputOnce)
{
  const CommandResult result = runCommand({"replay", input, "--csv", "-", "--jsonl", "-"});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: standard output: is written twice; give each output a file of its own\n", result.errors);
  EXPECT_EQ("", result.output);
}

TEST_F(OutputsTest, AreNotAppendedToTheirInput)
{
  for (const char* const command : {"replay \"$1\"", "replay \"$1\" --csv -", "inspect \"$1\"",
                                    "why \"$1\" --person 0 --at 1", "agree \"$1\" --labels \"$1\""})
  {
    const CommandResult result = runShell(std::string("$skeigiot ") + command + " >> \"$1\"", {input});
    EXPECT_EQ(2, result.status) << command;
    EXPECT_THAT(result.errors, StartsWith("skeigiot: standard output: is the input " + input)) << command;
    EXPECT_EQ(smiles, folder.read("face.csv")) << command;
  }
}

TEST_F(OutputsTest, OfTextDoNotGoToTheFileOfAnExport)
{
  const CommandResult result = runShell("$skeigiot replay \"$1\" --csv \"$2\" > \"$2\"", {input, folder.path("out")});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("skeigiot: standard output: is written twice, also as " + folder.path("out") +
                "; give each output a file of its own\n",
            result.errors);
}

}  // namespace
