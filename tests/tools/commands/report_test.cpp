#include "support/command.hpp"
#include "support/exportedtable.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/report.hpp>

#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <string>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class ReportCommand : public ::testing::Test
{
protected:
  void SetUp() override
  {
    if (!KV::session::Report::isAvailable())
      GTEST_SKIP() << "built without the page of the report";
  }

  TemporaryFolder folder;
  const std::string smiles = "time,reading,value\n0,smile,0.5\n1,smile,1\n";
};

TEST_F(ReportCommand, WritesOnePageWithEverythingInIt)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const CommandResult result = runCommand({"report", recording, "-o", folder.path("report.html")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.output);
  EXPECT_EQ("", result.errors);
  const std::string page = folder.read("report.html");
  EXPECT_THAT(page, StartsWith("<!doctype html>"));
  EXPECT_THAT(page, HasSubstr("\"name\":\"whole recording\""));
  EXPECT_THAT(page, Not(HasSubstr("src=")));
  EXPECT_THAT(page, Not(HasSubstr("href=\"http")));
}

TEST_F(ReportCommand, WritesToStandardOutputAsWell)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const CommandResult result = runCommand({"report", recording, "-o", "-"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.output, StartsWith("<!doctype html>"));
}

TEST_F(ReportCommand, SaysHowTheFileWasRead)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const CommandResult result = runCommand({"report", recording, "--min-confidence", "0.5", "--boundary-positive", "0.3",
                                           "--mirrored", "--scope", "my scope=0..1", "-o", "-"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.output, HasSubstr("\"bytes\":" + std::to_string(smiles.size()) + ",\"format\":\"tidy\"}"));
  EXPECT_THAT(result.output, HasSubstr(R"("readAs":["Tidy CSV: )"));
  EXPECT_THAT(result.output, HasSubstr(R"("--mirrored")"));
  EXPECT_THAT(result.output, HasSubstr(R"("--min-confidence 0.5")"));
  EXPECT_THAT(result.output, HasSubstr(R"("--boundary-positive 0.3")"));
  EXPECT_THAT(result.output, HasSubstr(R"("--scope 'my scope=0..1'")"));
  EXPECT_THAT(result.output, Not(HasSubstr("-o -")));
  EXPECT_THAT(result.output, HasSubstr("\"version\":\"" SKEIGIOT_VERSION "\",\"made\":\"20"));
}

TEST_F(ReportCommand, HasNoDateWhereTheRecordingHasNone)
{
  const std::string undated = folder.write("undated.csv", smiles);
  EXPECT_THAT(runCommand({"report", undated, "-o", "-"}).output, HasSubstr("\"begins\":null"));
  const std::string dated = folder.write("dated.csv", "time,reading,value\n1700000000,smile,0.5\n");
  EXPECT_THAT(runCommand({"report", dated, "-o", "-"}).output, HasSubstr("\"begins\":1700000000"));
}

TEST_F(ReportCommand, HasTheWarningsOfTheTerminal)
{
  const std::string recording = folder.write("frames.csv", "frame,confidence,success,AU12_r\n1,1,1,2\n2,1,1,2\n");
  const CommandResult result = runCommand({"report", recording, "-o", "-"});
  EXPECT_THAT(result.output, HasSubstr(R"("notes":["warning: there are no time stamps: 30 frames/s are assumed)"));
}

TEST_F(ReportCommand, TakesANameFromTheCommandLineAsAName)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const CommandResult result =
      runCommand({"report", recording, "--scope", "<script>alert(1)</script>=0..1", "-o", "-"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.output, HasSubstr(R"(\u003cscript>alert(1)\u003c/script>)"));
  EXPECT_THAT(result.output, Not(HasSubstr("<script>alert(1)")));
}

TEST_F(ReportCommand, ShowsWhatCameBeforeABadLineAndSaysSo)
{
  const std::string recording = folder.write("smiles.csv", smiles + "2,smile,wide\n");
  const CommandResult result = runCommand({"report", recording, "-o", folder.path("report.html")});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, HasSubstr("smiles.csv:4: value: expected a number"));
  EXPECT_THAT(folder.read("report.html"), HasSubstr("smiles.csv:4: value: expected a number"));
}

TEST_F(ReportCommand, LeavesNoPageOfAFileThatCannotBeRead)
{
  const std::string recording = folder.write("other.txt", "nothing that is known\n");
  const CommandResult result = runCommand({"report", recording, "-o", folder.path("report.html")});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ((std::set<std::string>{"other.txt"}), folder.names());
}

TEST_F(ReportCommand, ShowsLabelsOfCoders)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const std::string labels = folder.write("anna.csv", "start,end,value\n0,1,smiling\n0,1,waving\n");
  const CommandResult result =
      runCommand({"report", recording, "--labels", labels, "--label", "smiling=positive", "-o", "-"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_THAT(result.output, HasSubstr(R"("coder":"anna","quantity":"pleasure")"));
  EXPECT_THAT(result.output, HasSubstr(R"("texts":["positive"])"));
  EXPECT_THAT(result.output, HasSubstr(R"("texts":["waving"])"));
}

TEST_F(ReportCommand, SaysWhichLabelsThePageDoesNotShow)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const std::string labels = folder.write("anna.csv", "start,end,value,person\n0,1,positive,9\n");
  const CommandResult result = runCommand({"report", recording, "--labels", labels, "-o", folder.path("r.html")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("skeigiot: warning: labels of persons who are not in the recording left out: '9' (1)\n", result.errors);
  EXPECT_EQ(2, runCommand({"report", recording, "--labels", recording + "x", "-o", "-"}).status);
}

TEST_F(ReportCommand, NamesAVideoByItsPathRelativeToThePage)
{
  std::filesystem::create_directory(folder.path("pages"));
  const std::string recording = folder.write("smiles.csv", smiles);
  const std::string video = folder.write("a \"b\" 50%#?é<.webm", "");
  const CommandResult result = runCommand(
      {"report", recording, "--video", video, "--video-offset", "-1.5", "-o", folder.path("pages/report.html")});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(folder.read("pages/report.html"),
              HasSubstr(R"("video":{"address":"../a%20%22b%22%2050%25%23%3F%C3%A9%3C.webm","offset":-1.5})"));
}

TEST_F(ReportCommand, RefusesAVideoThatIsNotThere)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const CommandResult result =
      runCommand({"report", recording, "--video", folder.path("none.webm"), "-o", folder.path("report.html")});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, HasSubstr("none.webm: there is no such video file"));
  EXPECT_EQ((std::set<std::string>{"smiles.csv"}), folder.names());
}

TEST_F(ReportCommand, OfAFolderIsAPageOfEachRecordingAndAnIndex)
{
  folder.write("a b.csv", smiles);
  folder.write("bad.csv", smiles + "2,smile,wide\n");
  folder.write("index", "time,person,reading,value\n0,anna,touchEmotion,1\n1,anna,smile,1\n");
  TemporaryFolder pages;
  const std::string target = pages.path("new/pages");
  const CommandResult result = runCommand({"report", folder.path(""), "-o", target});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("", result.output);
  EXPECT_THAT(result.errors, HasSubstr("bad.csv:4: value: expected a number"));
  const std::string index = pages.read("new/pages/index.html");
  EXPECT_THAT(index, StartsWith("<!doctype html>"));
  EXPECT_THAT(index, HasSubstr("{\"recordings\":[{\"file\":\"a b.csv\",\"page\":\"a%20b.csv.html\",\"length\":1.0,"
                               "\"personCount\":1,\"persons\":[{\"id\":0,\"name\":\"\",\"verdict\":\"unknown\","
                               "\"seen\":1.0,\"valence\":null,\"attention\":null,"));
  EXPECT_THAT(index, HasSubstr("\"page\":\"index-2.html\""));
  EXPECT_THAT(index, HasSubstr("\"name\":\"anna\""));
  EXPECT_THAT(index, HasSubstr(":4: value: expected a number, found 'wide'\"}"));
  EXPECT_THAT(pages.read("new/pages/a b.csv.html"), HasSubstr("\"name\":\"whole recording\""));
  EXPECT_THAT(pages.read("new/pages/bad.csv.html"), HasSubstr(":4: value: expected a number"));
  EXPECT_THAT(pages.read("new/pages/index-2.html"), HasSubstr("\"name\":\"anna\""));

  const CommandResult again = runCommand({"report", folder.path(""), "-o", target});
  EXPECT_EQ(2, again.status) << "pages of ours are replaced";
  EXPECT_EQ(result.errors, again.errors);
}

TEST_F(ReportCommand, OfAFolderHasNoPageOfWhatCannotBeRead)
{
  folder.write("a.csv", smiles);
  folder.write("b.csv", "time,reading\n");
  TemporaryFolder pages;
  EXPECT_EQ(2, runCommand({"report", folder.path(""), "-o", pages.path("")}).status);
  EXPECT_EQ((std::set<std::string>{"a.csv.html", "index.html"}), pages.names());
  EXPECT_THAT(pages.read("index.html"), HasSubstr("\"file\":\"b.csv\",\"page\":\"\""));
}

TEST_F(ReportCommand, OfAFolderGoesToAFolder)
{
  folder.write("a.csv", smiles);
  for (const std::string& target : {std::string("-"), folder.path("a.csv"), folder.path("report.html")})
  {
    const CommandResult result = runCommand({"report", folder.path(""), "-o", target});
    EXPECT_EQ(2, result.status);
    EXPECT_THAT(result.errors, HasSubstr("-o: each recording of a folder gets a report: name a folder for them, not"));
  }
  EXPECT_EQ((std::set<std::string>{"a.csv"}), folder.names());
}

TEST_F(ReportCommand, OfAFolderLeavesFilesOfOthersAlone)
{
  folder.write("a.csv", smiles);
  TemporaryFolder pages;
  pages.write("index.html", "somebody's\n");
  const CommandResult result = runCommand({"report", folder.path(""), "-o", pages.path("")});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ((std::set<std::string>{"index.html"}), pages.names());
  EXPECT_EQ("somebody's\n", pages.read("index.html"));
}

TEST_F(ReportCommand, IsWhatAReplayWritesBesideWhatItShows)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  runCommand({"report", recording, "-o", folder.path("alone.html")});
  const CommandResult shown = runCommand({"replay", recording});
  const CommandResult result = runCommand({"replay", recording, "--report", folder.path("beside.html")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(shown.output, result.output);
  EXPECT_EQ(shown.errors, result.errors);
  EXPECT_EQ(folder.read("alone.html"), folder.read("beside.html"));
}

TEST_F(ReportCommand, OfAReplayReadsItsInputOnce)
{
  const std::string recording = folder.write("smiles.csv", smiles);
  const CommandResult result = runShell(
      "cat \"$1\" | $skeigiot replay --format tidy /dev/stdin --csv \"$2/piped.csv\" --report \"$2/piped.html\"",
      {recording, folder.path("")});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  runCommand({"replay", recording, "-q", "--csv", folder.path("file.csv"), "--report", folder.path("file.html")});
  EXPECT_EQ(withoutFile(folder.read("file.csv")), withoutFile(folder.read("piped.csv")));
  EXPECT_THAT(folder.read("piped.html"), HasSubstr("\"name\":\"whole recording\""));
}

TEST_F(ReportCommand, OfAReplaySaysOnlyOnceWhatWasBad)
{
  const std::string recording = folder.write("smiles.csv", smiles + "2,smile,wide\n");
  const CommandResult without = runCommand({"replay", recording, "-q"});
  const CommandResult result = runCommand({"replay", recording, "-q", "--report", folder.path("report.html")});
  EXPECT_EQ(2, result.status);
  EXPECT_EQ(without.errors, result.errors);
  EXPECT_THAT(folder.read("report.html"), HasSubstr("smiles.csv:4: value: expected a number"));
}

TEST_F(ReportCommand, OfAReplayNeedsOneSessionOfFilesAndAFileToWrite)
{
  folder.write("a.csv", smiles);
  folder.write("b.csv", smiles);
  const auto errorOf = [&](const std::string& recording, const std::string& file) {
    const CommandResult result = runCommand({"replay", recording, "--report", file});
    EXPECT_EQ(2, result.status);
    return result.errors;
  };
  EXPECT_THAT(errorOf(folder.path(""), folder.path("c.html")), HasSubstr("--report: writes one session"));
  EXPECT_THAT(errorOf(folder.path("a.csv"), "-"), HasSubstr("--report: needs a file"));
  const CommandResult twice =
      runCommand({"replay", folder.path("a.csv"), "--csv", folder.path("x"), "--report", folder.path("x")});
  EXPECT_THAT(twice.errors, HasSubstr("x: is written twice; give each output a file of its own"));
  EXPECT_EQ((std::set<std::string>{"a.csv", "b.csv"}), folder.names());
}

}  // namespace
