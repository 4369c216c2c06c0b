#include "report/reportdata.hpp"
#include <skeigiot/session/session.hpp>
#include "report/reportpage.hpp"
#include "support/jsonmembers.hpp"

#include <boost/chrono/duration.hpp>

#include <gmock/gmock.h>

#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>

namespace
{

using boost::chrono::milliseconds;
using ::testing::HasSubstr;
using ::testing::Not;
using Json = nlohmann::ordered_json;

constexpr KV::session::TimePoint beginning{boost::chrono::seconds(1577836800)};

KV::session::ReportOrigin origin()
{
  KV::session::ReportOrigin origin;
  origin.files = {{"face.csv", 1234, "openface"}, {"-", boost::none, ""}};
  origin.options = {"--fps 25"};
  origin.notes = {"a note"};
  origin.version = "1.2.3";
  origin.made = "2026-11-22 10:00 UTC";
  return origin;
}

/// Two updates of person 7: a smile at 0 s, and not visible at 0.5 s; and a scope with this name.
Json dataOf(const std::string& scope)
{
  KV::session::ReportRecorder recorder{KV::session::ReportRecorder::Limits()};
  KV::session::Session session({{scope, KV::session::Duration(0), boost::none}}, {&recorder});
  KV::recordings::Step entry;
  entry.time = beginning;
  entry.person = 7;
  entry.observation.smile = KV::Timestamped(entry.time, KV::Smile(0.5f, 0.9f));
  session.play(entry);
  entry.time += milliseconds(500);
  entry.seen = false;
  entry.observation = {};
  session.play(entry);
  session.finish();
  recorder.finish();
  return KV::session::reportData(recorder, origin());
}

TEST(ReportData, HoldsTheSeriesOfEachPerson)
{
  const Json data = dataOf("greeting");
  ASSERT_EQ(1U, data["persons"].size());
  const Json& person = data["persons"][0];
  EXPECT_EQ(7, person["id"]);
  EXPECT_EQ(2, person["moments"]);
  EXPECT_EQ("AAAAAAAAAAAAAAAAAADgPw==", person["time"]);  // 0 and 0.5 as doubles
  EXPECT_EQ("AQA=", person["seen"]);                      // 1 and 0 as bytes
  EXPECT_EQ("AAAAPwAAwH8=", person["inputs"]["smile"]);   // 0.5 and NaN as floats
  EXPECT_FALSE(person["inputs"].contains("joy"));
}

TEST(ReportData, HasTheMembersThatThePageReads)
{
  EXPECT_EQ(support::eachOnALine(R"(
ambiance ambiance.agitation ambiance.excited ambiance.time begins boundaries boundaries[].description
boundaries[].option boundaries[].value gaps gaps.at gaps.count gaps.longest inputs length notes origin
origin.files origin.files[].bytes origin.files[].format origin.files[].path origin.made origin.options
origin.readAs origin.version persons persons[].attention persons[].attentionChanges
persons[].attentionConfidence persons[].attentionKnown persons[].forces persons[].forces.after
persons[].forces.before persons[].forces.ends persons[].forces.quantity persons[].forces.source
persons[].forces.target persons[].forces.weight persons[].id persons[].inputs persons[].inputs.smile
persons[].moments persons[].name persons[].pleasure persons[].seen persons[].summary persons[].summary.attention
persons[].summary.attentionConfidence persons[].summary.engaged persons[].summary.from
persons[].summary.pleasures persons[].summary.pleasures.negative persons[].summary.pleasures.neutral
persons[].summary.pleasures.positive persons[].summary.pleasures.unknown persons[].summary.strictlyEngaged
persons[].summary.to persons[].summary.updates persons[].summary.valence persons[].summary.valenceConfidence
persons[].summary.visible persons[].summary.zones persons[].summary.zones.LookingAtRobot
persons[].summary.zones.LookingDown persons[].summary.zones.LookingDownLeft
persons[].summary.zones.LookingDownRight persons[].summary.zones.LookingLeft
persons[].summary.zones.LookingRight persons[].summary.zones.LookingUp persons[].summary.zones.LookingUpLeft
persons[].summary.zones.LookingUpRight persons[].summary.zones.Unknown persons[].time persons[].updates
persons[].valence persons[].valenceChanges persons[].valenceConfidence persons[].valenceKnown persons[].zone
pleasureNames scopes scopes[].end scopes[].from scopes[].name scopes[].persons scopes[].persons[].id
scopes[].persons[].updates scopes[].persons[].verdict scopes[].to sourceNames sources stretch trust
updatesPerSecond zoneNames)"),
            support::membersOf(dataOf("greeting")));
}

TEST(ReportData, HoldsVerdictsOnPersonsWithAnUpdateInTheScope)
{
  KV::session::ReportRecorder recorder{KV::session::ReportRecorder::Limits()};
  KV::session::Session session({{"early", KV::session::Duration(0), KV::session::Duration(milliseconds(100))}},
                               {&recorder});
  KV::recordings::Step entry;
  for (const std::int32_t person : {7, 8})
  {
    entry.time = beginning + milliseconds(person == 7 ? 0 : 500);
    entry.person = person;
    session.play(entry);
  }
  session.finish();
  recorder.finish();
  const Json data = KV::session::reportData(recorder, origin());
  ASSERT_EQ(2U, data["persons"].size());
  EXPECT_EQ(R"([{"id":7,"verdict":"unknown","updates":1}])", data["scopes"][0]["persons"].dump());
}

TEST(ReportData, HoldsTheRecordingAsAWhole)
{
  const Json data = dataOf("greeting");
  EXPECT_EQ("face.csv", data["inputs"][0]);
  EXPECT_EQ("a note", data["notes"][0]);
  EXPECT_EQ(0U, data["trust"].get<std::string>().find("seen in 50 % of steps"));
  EXPECT_DOUBLE_EQ(1577836800., data["begins"]);
  EXPECT_DOUBLE_EQ(0.5, data["length"]);
  EXPECT_EQ(6U, data["boundaries"].size());
  EXPECT_EQ("greeting", data["scopes"][0]["name"]);
  EXPECT_EQ(2, data["scopes"][0]["persons"][0]["updates"]);
  EXPECT_THAT(data["sources"].dump(), HasSubstr("Not visible"));
  EXPECT_THAT(data["sourceNames"].dump(), HasSubstr("Not being visible"));
  EXPECT_EQ(data["sources"].size(), data["sourceNames"].size());
}

TEST(ReportData, SaysHowItCameAbout)
{
  KV::session::ReportRecorder recorder{KV::session::ReportRecorder::Limits()};
  recorder.recordingDescribed({"OpenFace: angles", "30 frames/s"});
  recorder.recordingDated(false);
  recorder.finish();

  const Json data = KV::session::reportData(recorder, origin());

  EXPECT_EQ(Json::parse(R"({"files": [{"path": "face.csv", "bytes": 1234, "format": "openface"},
                                      {"path": "-", "bytes": null, "format": ""}],
                            "readAs": ["OpenFace: angles", "30 frames/s"],
                            "options": ["--fps 25"],
                            "version": "1.2.3",
                            "made": "2026-11-22 10:00 UTC"})"),
            data["origin"]);
  EXPECT_TRUE(data["begins"].is_null()) << "it has no date";
}

TEST(ReportData, HoldsNoMeanOfWhatIsUnknown)
{
  KV::session::ReportRecorder recorder{KV::session::ReportRecorder::Limits()};
  KV::session::Snapshot snapshot;
  recorder.personUpdated(snapshot);
  snapshot.sinceStart = milliseconds(100);
  snapshot.attention = {0.5f, 0.25f};
  recorder.personUpdated(snapshot);
  recorder.finish();

  // NaN is written as null.
  const Json person = Json::parse(KV::session::reportData(recorder, origin()).dump())["persons"][0];

  EXPECT_TRUE(person["summary"]["valence"].is_null());
  EXPECT_TRUE(person["summary"]["valenceConfidence"].is_null());
  EXPECT_EQ(0.5, person["summary"]["attention"]);
  EXPECT_EQ("AAA=", person["valenceKnown"]);    // 0 and 0 as bytes
  EXPECT_EQ("AAE=", person["attentionKnown"]);  // 0 and 1
}

TEST(ReportData, LeavesNothingThatCouldEndItsElement)
{
  const std::string name = "</script><script>alert(1)</script><!--";
  const Json data = dataOf(name);
  const std::string text = KV::session::textForScript(data);
  EXPECT_THAT(text, Not(HasSubstr("<")));
  EXPECT_EQ(name, Json::parse(text)["scopes"][0]["name"]);
}

TEST(ReportData, TakesNamesThatAreNoUtf8)
{
  const std::string text = KV::session::textForScript(dataOf("a\xff"));
  EXPECT_EQ("a\xef\xbf\xbd", Json::parse(text)["scopes"][0]["name"]);
}

TEST(ReportPage, PutsTheDataInItsPlace)
{
  std::ostringstream page;
  KV::session::writeReport(page, "<a>/*data*/</a>", "{\"x\":\"/*data*/\"}");
  EXPECT_EQ("<a>{\"x\":\"/*data*/\"}</a>", page.str());
}

TEST(ReportPage, RefusesATemplateWithoutAPlace)
{
  std::ostringstream page;
  EXPECT_THROW(KV::session::writeReport(page, "<a></a>", "{}"), std::logic_error);
}

}  // namespace
