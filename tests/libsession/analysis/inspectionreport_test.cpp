#include <skeigiot/session/inspectionreport.hpp>

#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <sstream>
#include <string>

namespace
{

using namespace replaytests;
using KV::recordings::Error;
using KV::session::InspectionReport;
using KV::session::Progress;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Json = nlohmann::ordered_json;

const std::string head = "time,person,reading,value\n";

Json asJson(const InspectionReport& report)
{
  std::ostringstream text;
  KV::session::writeAsJson(text, report);
  EXPECT_EQ('\n', text.str().back());
  return Json::parse(text.str());
}

class InspectionReportTest : public ::testing::Test
{
protected:
  InspectionReport inspect(const std::string& text, const std::string& format = "") const
  {
    return KV::session::inspect(folder.write("a.csv", text), format, {});
  }

  TemporaryFolder folder;
};

TEST_F(InspectionReportTest, SaysWhatARecordingHolds)
{
  const InspectionReport report = inspect(head + "0,1,smile,0.25\n0.5,1,smile,0.75\n2.5,2,smile,1\n");
  EXPECT_EQ(folder.path("a.csv"), report.path);
  EXPECT_EQ("tidy", report.format);
  EXPECT_EQ(3U, report.contents.steps());
  EXPECT_FALSE(report.isDated);
  EXPECT_EQ("", report.error);
  const Json json = asJson(report);
  EXPECT_EQ("tidy", json["format"]);
  EXPECT_EQ(Json(report.description), json["readAs"]);
  EXPECT_EQ(KV::session::trustIn(report.contents), json["trust"]);
  EXPECT_TRUE(json["begins"].is_null()) << "its times have no date";
  EXPECT_EQ(2.5, json["length"]);
  EXPECT_EQ(3, json["steps"]);
  EXPECT_EQ((Json{{"count", 1}, {"longest", 2.}, {"at", 0.5}}), json["gaps"]);
  EXPECT_EQ((Json{{"seen", 2}, {"notSeen", 0}, {"from", 0.}, {"to", 0.5}}), json["persons"].value("1", Json()))
      << "a person without a name has none";
  EXPECT_EQ((Json{{"seen", 1}, {"notSeen", 0}, {"from", 2.5}, {"to", 2.5}}), json["persons"].value("2", Json()));
  EXPECT_EQ((Json{{"count", 3}, {"least", 0.25}, {"mean", 2. / 3.}, {"greatest", 1.}}),
            json["readings"].value("smile", Json()));
  EXPECT_EQ((Json{{"count", 0}, {"first", ""}}), json["badLines"]);
  EXPECT_THAT(json["warnings"], IsEmpty());
  EXPECT_EQ("", json["error"]);
}

TEST_F(InspectionReportTest, HasNamesDatesAndScopes)
{
  const InspectionReport report = inspect(
      R"({"time":1577836800500000000,"person":1,"name":"anna","observation":{"smile":{"value":1,"confidence":1}}})"
      "\n"
      R"({"time":1577836801000000000,"start":[{"scope":"greeting","samples":-1}]})"
      "\n");
  EXPECT_EQ("jsonl", report.format);
  const Json json = asJson(report);
  EXPECT_EQ(1577836800.5, json["begins"]);
  EXPECT_EQ("anna", json["persons"].value("1", Json()).value("name", ""));
  EXPECT_EQ((Json{{"greeting", 1}}), json["scopes"]);
}

TEST_F(InspectionReportTest, HasListsOfPersonsAndReadingsThoughThereAreNone)
{
  const Json json = asJson(inspect(R"({"time":1577836801000000000,"start":[{"scope":"greeting","samples":-1}]})"
                                   "\n"));
  EXPECT_EQ(Json::object(), json["persons"]);
  EXPECT_EQ(Json::object(), json["readings"]);
}

TEST_F(InspectionReportTest, GoesOnBehindBadLines)
{
  const InspectionReport report = inspect(head + "0,1,smile,1\n0.5,1,smile,wide\n1,1,smile,wide\n1.5,1,smile,0\n");
  EXPECT_EQ(2U, report.contents.steps());
  EXPECT_EQ(2U, report.badLines);
  EXPECT_THAT(report.firstBadLine, HasSubstr(folder.path("a.csv:3: ")));
  EXPECT_EQ((Json{{"count", 2}, {"first", report.firstBadLine}}), asJson(report)["badLines"]);
}

TEST_F(InspectionReportTest, HasAReadingWithoutNumbers)
{
  const Json readings =
      asJson(inspect(R"({"time":0,"person":1,"observation":{"headPosture":{"yaw":"NaN","pitch":1,"roll":2}}})"
                     "\n"))["readings"];
  EXPECT_EQ((Json{{"count", 0}}), readings.value("headPosture.yaw", Json()));
  EXPECT_EQ((Json{{"count", 1}, {"least", 1.}, {"mean", 1.}, {"greatest", 1.}}),
            readings.value("headPosture.pitch", Json()));
}

TEST_F(InspectionReportTest, TakesTheFormatThatIsNamed)
{
  EXPECT_EQ("tidy", inspect(head + "0,1,smile,1\n", "tidy").format);
  EXPECT_THAT(support::textThrownBy<Error>([this] { inspect(head + "0,1,smile,1\n", "openface"); }),
              HasSubstr(folder.path("a.csv")));
}

TEST_F(InspectionReportTest, RefusesWhatCannotBeOpened)
{
  EXPECT_THAT(support::textThrownBy<Error>([this] { KV::session::inspect(folder.path("gone.csv"), "", {}); }),
              HasSubstr(folder.path("gone.csv")));
}

TEST_F(InspectionReportTest, CountsALineThatIsCutAsBad)
{
  const InspectionReport report =
      inspect("{\"time\":1577836800500000000,\"person\":1,\"observation\":{}}\n{\"time\":15778368");
  EXPECT_EQ(1U, report.contents.steps());
  EXPECT_EQ(1U, report.badLines);
  EXPECT_THAT(report.firstBadLine, HasSubstr(folder.path("a.csv:2")));
  EXPECT_EQ("", report.error);
}

TEST_F(InspectionReportTest, AsksWhetherToGoOn)
{
  std::size_t asked = 0;
  const InspectionReport report =
      KV::session::inspect(folder.write("a.csv", head + "0,1,smile,1\n1,1,smile,1\n2,1,smile,1\n"), "", {},
                           [&asked](const Progress&) { return ++asked < 2; });
  EXPECT_EQ(2U, report.contents.steps());
}

TEST_F(InspectionReportTest, ReadsAStreamAsAFile)
{
  const std::string text = head + "0,1,smile,0.25\n0.5,1,smile,0.75\n";
  std::istringstream stream(text);
  const InspectionReport report = KV::session::inspect(stream, folder.path("a.csv"), "", {});
  EXPECT_EQ(folder.path("a.csv"), report.path);
  EXPECT_EQ("tidy", report.format);
  EXPECT_EQ(asJson(inspect(text)), asJson(report));
}

TEST_F(InspectionReportTest, HasTheColumnsOfATable)
{
  const InspectionReport report = inspect("time,person,reading,value,unheard\n0,1,smile,1,7\n");
  EXPECT_THAT(report.columns.ignored, ElementsAre("unheard"));
  const Json json = asJson(report);
  EXPECT_EQ(Json(report.columns.used), json["columns"]["used"]);
  EXPECT_EQ(Json{"unheard"}, json["columns"]["ignored"]);
}

}  // namespace
