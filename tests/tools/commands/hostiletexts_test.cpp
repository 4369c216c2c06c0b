#include "support/command.hpp"
#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"
#include "terminal/shown.hpp"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

// Names that try to steer the terminal, in every input that the command reads and shows.

namespace
{

using namespace replaytests;
using KV::tools::shown;
using ::testing::HasSubstr;

/// Sets the title, takes another color, turns the direction of writing, and hides.
const std::string hostile = "x\033]0;PWN\a\u009b31m\u202e\u200by";
const std::string harmless = "]0;PWN";  // the safe form of it; quotes have question marks around it, others escapes
const std::string inJson = nlohmann::json(hostile).dump();

struct Hostile
{
  const char* name;
  std::string file;  ///< of the folder in which the command runs
  std::string text;  ///< its contents
  std::string script;
};

class HostileTexts : public ::testing::TestWithParam<Hostile>
{};

void expectHarmless(const std::string& text)
{
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    EXPECT_EQ(shown(line), line);
}

TEST_P(HostileTexts, AreShownAsEscapes)
{
  const TemporaryFolder folder;
  std::filesystem::create_directories(std::filesystem::path(folder.path(GetParam().file)).parent_path());
  folder.write(GetParam().file, GetParam().text);
  const CommandResult result = runShell("cd \"$1\" && " + GetParam().script, {folder.path(""), hostile});
  EXPECT_THAT(result.output + result.errors, HasSubstr(harmless)) << "what the test is about was not shown";
  expectHarmless(result.output);
  expectHarmless(result.errors);
}

const std::string steps =
    "{\"time\":1600000000000000000,\"person\":1,\"start\":[{\"scope\":" + inJson +
    "}],\"observation\":{\"gaze\":{\"yaw\":0,\"pitch\":0}}}\n{\"time\":1600000001000000000,\"person\":1}\n";
const std::string table = "frame,face_id,timestamp,confidence,success,AU12_r," + hostile + "\n1,3,0,0.9,1,2.5,a\n";
const std::string named = "frame,name,timestamp,confidence,success,AU12_r\n1," + hostile + ",0,0.9,1,2.5\n";
const std::string labels = "start,end,value,coder\n0,1,positive," + hostile + "\n0,1,neutral,b\n";

INSTANTIATE_TEST_SUITE_P(
    Of, HostileTexts,
    ::testing::Values(
        Hostile{"MembersInAnAnswer", "in", "{" + inJson + ":1}\n", "$skeigiot stream < in"},
        Hostile{"MembersOfARecording", "in.jsonl", "{\"time\":5," + inJson + ":1}\n", "$skeigiot replay in.jsonl"},
        Hostile{"MembersInAnInspection", "in.jsonl", "{\"time\":5," + inJson + ":1}\n", "$skeigiot inspect in.jsonl"},
        Hostile{"MembersThatAreSkipped", "in.jsonl", steps + "{\"time\":1600000005000000000," + inJson + ":1}\n",
                "$skeigiot replay --skip-bad in.jsonl"},
        Hostile{"ScopesInAReplay", "in.jsonl", steps, "$skeigiot replay in.jsonl"},
        Hostile{"ScopesInAnInspection", "in.jsonl", steps, "$skeigiot inspect in.jsonl"},
        Hostile{"ScopesInAnInspectionAsJson", "in.jsonl", steps, "$skeigiot inspect --json in.jsonl"},
        Hostile{"ScopesInAnAnswer", "in", "{\"stop\":[" + inJson + "]}\n", "$skeigiot stream < in"},
        Hostile{"ColumnsInAnInspection", "in.csv", table, "$skeigiot inspect in.csv"},
        Hostile{"ColumnsInAnInspectionAsJson", "in.csv", table, "$skeigiot inspect --json in.csv"},
        Hostile{"CellsOfATable", "in.csv", "time,reading,value\n0,smile," + hostile + "\n", "$skeigiot replay in.csv"},
        Hostile{"ReadingsOfATable", "in.csv", "time,reading,value\n0," + hostile + ",1\n", "$skeigiot replay in.csv"},
        Hostile{"FilesInAFolder", "recordings/" + hostile + ".jsonl", steps, "$skeigiot replay recordings"},
        Hostile{"FilesThatAreMissing", "in.jsonl", steps, "$skeigiot replay \"$2\""},
        Hostile{"FilesThatAreExplained", hostile + ".jsonl", steps, "$skeigiot why \"$2.jsonl\" --at 700"},
        Hostile{"FilesThatAreInspected", hostile + ".jsonl", steps, "$skeigiot inspect \"$2.jsonl\""},
        Hostile{"FilesThatAreReported", hostile + ".jsonl", "{", "$skeigiot report \"$2.jsonl\" -o report.html"},
        Hostile{"FilesOfLabels", hostile + ".csv", "a\n", "$skeigiot agree in.jsonl --labels \"$2.csv\""},
        Hostile{"FilesThatCannotBeWritten", "in.jsonl", steps, "$skeigiot replay in.jsonl --csv \"nowhere/$2\""},
        Hostile{"CodersOfLabels", "in.csv", labels,
                "printf '{\"time\":0,\"person\":1}\\n{\"time\":900000000,\"person\":1}\\n' > in.jsonl; "
                "$skeigiot agree in.jsonl --labels in.csv"},
        Hostile{"PersonsInAReplay", "in.csv", named, "$skeigiot replay --person-from name in.csv"},
        Hostile{"PersonsInAnExplanation", "in.csv", named, "$skeigiot why --person-from name in.csv --at 0"},
        Hostile{"Types", "in", "", "$skeigiot types \"$2\""}, Hostile{"Options", "in", "", "$skeigiot \"--$2\""},
        Hostile{"Mappings", "in.csv", table + "\n",
                "printf '{%s:1}' '" + inJson + "' > m; $skeigiot replay --mapping m in.csv"}),
    support::RowName());

TEST(HostileTextsInColor, LeaveTheColorsOfTheCommandAlone)
{
  const TemporaryFolder folder;
  const CommandResult result = runCommand({"replay", "--color", "always", folder.write("in.jsonl", steps)});
  EXPECT_THAT(result.output, HasSubstr("\033[1m"));
  EXPECT_THAT(result.output, HasSubstr(harmless));
  EXPECT_EQ(KV::tools::shownPage(result.output), result.output);
}

}  // namespace
