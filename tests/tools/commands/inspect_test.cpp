#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;
using Texts = std::vector<std::string>;

class InspectCommand : public ::testing::Test
{
protected:
  CommandResult inspect(const std::string& text, const Texts& options = {}) const
  {
    Texts arguments{"inspect", folder.write("recording.csv", text)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runCommand(arguments);
  }

  Json inspectedAsJson(const std::string& text) const
  {
    return Json::parse(inspect(text, {"--json", "--rest", "none", "--au-full-scale", "5"}).output);
  }

  TemporaryFolder folder;
  const std::string face =
      "frame,face_id,timestamp,confidence,success,AU12_r,note,AU12_c\n"
      "1,3,0,0.9,1,2.5,a,1\n"
      "2,3,0.1,0.9,1,5,b,1\n"
      "3,3,0.2,0.9,0,0,c,0\n"
      "33,3,3.2,0.9,1,0,d,0\n";
};

TEST_F(InspectCommand, DescribesARecordingAndHowItIsRead)
{
  const CommandResult result = inspect(face);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_THAT(result.output, StartsWith(folder.path("recording.csv") + "\n  person 3  seen in 3 steps, not seen in "));
  EXPECT_THAT(result.output, HasSubstr("\n  span      0:03.2, "));
  EXPECT_THAT(result.output, HasSubstr("\n  format    openface\n  read as   OpenFace: "));
  EXPECT_LT(result.output.find("\n  person 3"), result.output.find("\n    smile  "));
  EXPECT_LT(result.output.find("\n    smile  "), result.output.find("\n  span  "));
  EXPECT_LT(result.output.find("\n  span  "), result.output.find("\n  format  "));
  EXPECT_THAT(result.output,
              HasSubstr("  columns   6 columns used: frame, face_id, timestamp, confidence, success, AU12_r\n"
                        "            2 columns not read: note, AU12_c\n"));
}

TEST_F(InspectCommand, HasTheSameContentsAsJson)
{
  const Json json = inspectedAsJson(face);
  EXPECT_EQ("openface", json["format"]);
  EXPECT_EQ(2U, json["readAs"].size());
  EXPECT_TRUE(json["begins"].is_null());
  EXPECT_DOUBLE_EQ(3.2, json["length"]);
  EXPECT_EQ(3, json["persons"]["3"]["seen"]);
  EXPECT_EQ((Texts{"note", "AU12_c"}), json["columns"]["ignored"].get<Texts>());
  EXPECT_DOUBLE_EQ(0.5, json["readings"]["smile"]["mean"]);
  EXPECT_DOUBLE_EQ(1., json["readings"]["smile"]["greatest"]);
  EXPECT_EQ("", json["error"]);
}

TEST_F(InspectCommand, ReportsColumnsAndWarningsOfATableOfReadings)
{
  const std::string table = "time,reading,value,mood\n0,smile,0.5,x\n5,smile,1,x\n";
  const Json json = inspectedAsJson(table);
  EXPECT_EQ((Texts{"time", "reading", "value"}), json["columns"]["used"].get<Texts>());
  EXPECT_EQ((Texts{"mood"}), json["columns"]["ignored"].get<Texts>());
  EXPECT_EQ((Texts{"columns that are not read: mood"}), json["warnings"].get<Texts>());
  EXPECT_EQ(1, json["gaps"]["count"]);
  EXPECT_THAT(inspect(table).output, HasSubstr("1 gap of a second or more, the longest of 5 s at 0:00.0\n"));
}

TEST_F(InspectCommand, NamesColumnsThatDifferInANumberAsOneUnlessAllAreWanted)
{
  const std::string table =
      "frame,timestamp,AU12_r,eye_lmk_x_0,eye_lmk_x_1,eye_lmk_x_2,AU12_c\n"
      "1,0,1,0,0,0,1\n";
  EXPECT_THAT(inspect(table).output, HasSubstr("            4 columns not read: eye_lmk_x_0..2, AU12_c\n"));
  EXPECT_THAT(inspect(table, {"--columns"}).output,
              HasSubstr("            4 columns not read: eye_lmk_x_0, eye_lmk_x_1, eye_lmk_x_2, AU12_c\n"));
}

TEST_F(InspectCommand, SaysNothingOfColumnsWhereThereAreNone)
{
  EXPECT_THAT(inspect("{\"time\":5}\n").output, Not(HasSubstr("column")));
}

TEST_F(InspectCommand, SkipsBadLinesAndReportsThem)
{
  const std::string table = "time,reading,value\n0,smile,0.5\n1,smile,wide\n2,smiling,1\n3,smile,1\n";
  const CommandResult result = inspect(table);
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.output, HasSubstr("2 lines that cannot be used, the first: "));
  EXPECT_THAT(result.output, HasSubstr("seen in 2 steps"));
  const Json badLines = inspectedAsJson(table)["badLines"];
  EXPECT_EQ(2, badLines["count"]);
  EXPECT_EQ(folder.path("recording.csv") + ":3: value: expected a number, found 'wide'", badLines["first"]);
}

TEST_F(InspectCommand, HasALineForEachRecordingOfAFolder)
{
  folder.write("a.csv", face);
  folder.write("b.csv", "time,reading,value\n0,smile,0.5\n1,smile,wide\n");
  folder.write("c.csv", "time,reading\n");
  folder.write("notes.txt", "nothing that is known\n");
  const CommandResult result = runCommand({"inspect", folder.path("")});
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.errors, HasSubstr("skipped 1 file of unknown format: notes.txt"));
  EXPECT_THAT(result.errors, HasSubstr("c.csv:1: there is no row below the header"));
  EXPECT_THAT(result.output,
              ::testing::StartsWith("3 recordings  format    length  steps/s  persons   seen  readings"));
  EXPECT_THAT(result.output, ::testing::ContainsRegex("\na.csv +openface +0:03.2 +10 +1 +[0-9]+ % +expressions, "));
  EXPECT_THAT(result.output, ::testing::ContainsRegex("\nb.csv +tidy +0:00.0 +1 +100 % +smile +1 bad line\n"));
  EXPECT_THAT(result.output, ::testing::ContainsRegex("\nc.csv +not read: see the message\n"));
}

TEST_F(InspectCommand, ReportsAFolderAsJson)
{
  folder.write("a.csv", face);
  folder.write("b.csv", face);
  const Json json = Json::parse(runCommand({"inspect", folder.path(""), "--json"}).output);
  ASSERT_EQ(2U, json.size());
  EXPECT_EQ(folder.path("b.csv"), json[1]["path"]);
}

TEST_F(InspectCommand, NamesThePersonWhoHasAName)
{
  const std::string table = "time,person,reading,value\n0,anna,smile,0.5\n";
  EXPECT_THAT(inspect(table).output, HasSubstr("\n  person 0  anna: seen in 1 step"));
  EXPECT_EQ("anna", inspectedAsJson(table)["persons"]["0"]["name"]);
}

TEST_F(InspectCommand, NamesAFileThatCannotBeRead)
{
  const CommandResult result = inspect("nothing that is known\n");
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("", result.output);
  EXPECT_THAT(result.errors, HasSubstr("skeigiot: " + folder.path("recording.csv") + ": the format is not known"));
}

TEST_F(InspectCommand, TakesTheOptionsOnReading)
{
  EXPECT_THAT(inspect(face, {"--fps", "10"}).output, HasSubstr("10 frames/s as given, instead of time stamps"));
}

}  // namespace
