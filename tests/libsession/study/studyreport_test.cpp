#include <skeigiot/session/studyreport.hpp>

#include "libsession/study/writtenresults.hpp"
#include "support/jsonmembers.hpp"

#include <skeigiot/recordings/error.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::Not;
using Json = nlohmann::json;
namespace session = KV::session;

class StudyReport : public ::testing::Test
{
protected:
  std::string text() const
  {
    return session::StudyReport(session::StudyResults({results.path()}), {"results.sqlite"}).data();
  }
  Json data() const { return Json::parse(text()); }

  /// Adds persons of one condition, in one transaction.
  void addMany(int sessions) const
  {
    const std::string numbers =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(sessions) + ") ";
    results.run("BEGIN;" + numbers +
                "INSERT INTO sessions (session, participant, condition, status, length, persons)"
                " SELECT printf('s%05d', i), printf('p%05d', i), 'one', 'complete', 10, 1 FROM n;" +
                numbers + "INSERT INTO persons SELECT printf('s%05d', i), 1, '', printf('p%05d', i), '', 1 FROM n;" +
                numbers +
                "INSERT INTO summaries (session, person, number, scope, start, stop, verdict, valence, attention)"
                " SELECT printf('s%05d', i), 1, 1, 'whole recording', 0, 10, 'neutral', (i % 100) / 100.0, 0.5 FROM n;"
                "COMMIT");
  }

  WrittenResults results;
};

TEST_F(StudyReport, HasTheMeansThatComparisonsHave)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "0.25");
  const Json page = data();
  const Json& first = page["comparisons"][0];
  EXPECT_EQ("valence", first["quantity"]);
  EXPECT_EQ("whole recording", first["scope"]);
  EXPECT_EQ("condition", first["by"]);
  EXPECT_EQ(0.375, first["groups"][0]["mean"]);
  EXPECT_EQ(2, first["groups"][0]["count"]);
  EXPECT_EQ(Json::parse("[[0, 0.5, 1], [1, 0.25, 1]]"), first["groups"][0]["persons"]);
  EXPECT_EQ(Json::parse(R"(["p01", "p02"])"), page["participants"]);
}

TEST_F(StudyReport, DrawsACurveOfUpdates)
{
  results.add("p01", "hello", "0.5");
  const std::string update =
      "INSERT INTO updates (session, person, number, time, valence, valence_known, attention,"
      " attention_known) VALUES ('p01/hello', 1, ";
  results.run(update + "1, 0.0, 0.25, 1, 0.5, 1); " + update + "2, 5.0, 0.75, 1, 0.5, 0); " + update +
              "3, 5.5, 0.75, 1, 0.125, 1)");
  const Json person = data()["pictures"]["sessions"][0]["persons"][0];
  ASSERT_EQ(60, person["valenceCurve"].size());
  // 10 s in 60 parts: 6 parts are a second, for which an update counts if no other follows
  EXPECT_EQ(Json::parse("[250, 250, 250, 250, 250, 250, null]"),
            Json(std::vector<Json>(person["valenceCurve"].begin(), person["valenceCurve"].begin() + 7)));
  EXPECT_EQ(Json::parse("[null, 750, 750, 750, 750, 750, 750, 750, 750, 750, null]"),
            Json(std::vector<Json>(person["valenceCurve"].begin() + 29, person["valenceCurve"].begin() + 40)));
  EXPECT_EQ(Json(), person["attentionCurve"][31]) << "the attention of the second update is not known";
  EXPECT_EQ(125, person["attentionCurve"][34]);
  EXPECT_FALSE(person.contains("scopes"));
}

TEST_F(StudyReport, DrawsTheMeansOfScopesWhereThereAreNoUpdates)
{
  results.add("p01", "hello", "0.5");
  EXPECT_EQ(Json::parse("[[0, 0.0, 10.0, 500, 500]]"), data()["pictures"]["sessions"][0]["persons"][0]["scopes"]);
  results.addSummary("p01/hello", 1, 2, "task", "NULL");
  const Json pictures = data()["pictures"];
  EXPECT_EQ(Json::parse("[[1, 0.0, 10.0, null, 500]]"), pictures["sessions"][0]["persons"][0]["scopes"])
      << "the whole recording is drawn only without other scopes";
  EXPECT_EQ(500, pictures["sessions"][0]["persons"][0]["valence"]);
  EXPECT_EQ(Json::parse(R"(["whole recording", "task"])"), pictures["scopeNames"]);
}

TEST_F(StudyReport, DrawsNoMoreScopesOfASessionThanPoints)
{
  results.add("p01", "hello", "0.5");
  for (int i = 0; i < 63; ++i)
    results.addSummary("p01/hello", 1, i + 2, "label", "0.5");
  const Json person = data()["pictures"]["sessions"][0]["persons"][0];
  EXPECT_EQ(60, person["scopes"].size());
  EXPECT_EQ(3, person["moreScopes"]);
}

TEST_F(StudyReport, HasFourPersonsOfASession)
{
  results.addSession("s", "", "");
  for (int person = 1; person <= 6; ++person)
  {
    results.addPerson("s", person, "");
    results.addSummary("s", person, 1, "whole recording", "0.5");
  }
  const Json pictures = data()["pictures"];
  EXPECT_EQ(4, pictures["sessions"][0]["persons"].size());
  EXPECT_EQ(6, pictures["sessions"][0]["personCount"]);
  EXPECT_EQ(2, pictures["withoutPicture"]);
}

TEST_F(StudyReport, KeepsToItsLimitsInALargeStudy)
{
  addMany(10010);
  results.run(
      "BEGIN; INSERT INTO updates (session, person, number, time, valence, valence_known, attention, attention_known)"
      " SELECT session, 1, 1, 0.5, 0.5, 1, 0.5, 1 FROM sessions; COMMIT");
  const std::string written = text();
  const Json page = Json::parse(written);
  EXPECT_EQ(10010, page["pictures"]["sessions"].size());
  EXPECT_EQ(10, page["pictures"]["withoutPicture"]);
  EXPECT_EQ(30, page["pictures"]["stretches"]) << "600000 numbers of 2 * 10000 curves";
  EXPECT_EQ(10010, page["comparisons"][0]["groups"][0]["count"]);
  EXPECT_LT(written.size(), 15e6);
}

TEST_F(StudyReport, ListsTheFirstSessionsOfAVeryLargeStudy)
{
  addMany(20003);
  const Json page = data();
  const Json& sessions = page["pictures"]["sessions"];
  ASSERT_EQ(20000, sessions.size());
  EXPECT_EQ("s00001", sessions.front()["name"]);
  EXPECT_EQ("s20000", sessions.back()["name"]);
  EXPECT_EQ(20003, page["counts"]["sessions"]);
  EXPECT_EQ(10003, page["pictures"]["withoutPicture"]);
  EXPECT_EQ(20003, page["comparisons"][0]["groups"][0]["count"]);
}

TEST_F(StudyReport, ShowsSomePersonsOfALargeGroupAndTheMeanOfAll)
{
  addMany(700);
  const std::string numbers =
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 23),"
      " m(j) AS (SELECT 1 UNION ALL SELECT j + 1 FROM m WHERE j < 12) ";
  results.run(
      "BEGIN;" + numbers +
      "INSERT INTO sessions (session, participant, condition, status, length, persons)"
      " SELECT printf('t%d', i), 'p', printf('other %d', i), 'complete', 10, 1 FROM n;" +
      numbers + "INSERT INTO persons SELECT printf('t%d', i), 1, '', 'p', '', 1 FROM n;" + numbers +
      "INSERT INTO summaries (session, person, number, scope, verdict, start, stop, valence, attention)"
      " SELECT printf('t%d', i), 1, j, iif(j = 1, 'whole recording', printf('label %d', j)), 'neutral', 0, 10, 0.5,"
      " 0.5 FROM n, m; COMMIT");
  const Json page = data();
  const Json group = page["comparisons"][0]["groups"][0];
  ASSERT_EQ("one", group["value"]);
  EXPECT_EQ(700, group["count"]);
  const std::size_t groups = 24 + 11 * 23 + 11;  // of valence: by condition of each scope, and by scope
  EXPECT_EQ(300000 / (2 * groups), group["persons"].size());
  EXPECT_EQ(0., group["persons"].front()[1]);
  EXPECT_EQ(0.99, group["persons"].back()[1]) << "the least and the greatest are among them";
  EXPECT_NEAR(0.495, group["mean"].get<double>(), 1e-9);
}

TEST_F(StudyReport, ComparesTheScopesThatMostSessionsHave)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "0.5");
  for (int i = 0; i < 20; ++i)
    results.addSummary("p01/hello", 1, i + 2, "label " + std::to_string(i), "0.5");
  results.addSummary("p02/hello", 1, 2, "label 19", "0.5");
  const Json page = data();
  ASSERT_EQ(12, page["scopes"].size());
  EXPECT_EQ("whole recording", page["scopes"][0]);
  EXPECT_THAT(page["scopes"].dump(), HasSubstr("\"label 19\""));
  EXPECT_THAT(page["scopes"].dump(), Not(HasSubstr("\"label 15\"")));
  EXPECT_EQ(21, page["counts"]["scopes"]);
}

TEST_F(StudyReport, ComparesTheQuantitiesThatThePageShows)
{
  results.add("p01", "hello", "0.5");
  results.addSummary("p01/hello", 1, 2, "task", "0.25");
  const Json page = data();
  std::vector<std::string> ofConditions;
  std::vector<std::string> ofScopes;
  for (const Json& comparison : page["comparisons"])
    (comparison["by"] == "scope" ? ofScopes : ofConditions).push_back(comparison["quantity"]);
  EXPECT_EQ((std::vector<std::string>{"valence", "attention", "seen", "valence", "attention", "seen"}), ofConditions)
      << "in both scopes; the share of time at the robot is not known";
  EXPECT_EQ((std::vector<std::string>{"valence", "attention"}), ofScopes);
}

TEST_F(StudyReport, ShowsSomeOfManyGroups)
{
  for (int i = 10; i < 40; ++i)
    results.add("p01", "condition " + std::to_string(i), "0.5");
  const Json first = data()["comparisons"][0];
  EXPECT_EQ(24, first["groups"].size());
  EXPECT_EQ(30, first["groupCount"]);
}

TEST_F(StudyReport, HasTheMembersThatThePageReads)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "bye", "0.25", "failed");
  results.addSummary("p01/hello", 1, 2, "positive", "0.5", "positive");
  results.run("INSERT INTO warnings VALUES ('p01/hello', 1, 'recording', 'a gap')");
  EXPECT_EQ(support::eachOnALine(R"(
comparisons comparisons[].by comparisons[].groupCount comparisons[].groups comparisons[].groups[].count
comparisons[].groups[].interval comparisons[].groups[].mean comparisons[].groups[].persons
comparisons[].groups[].role comparisons[].groups[].value comparisons[].quantity comparisons[].scope counts
counts.complete counts.conditions counts.cutShort counts.failed counts.leftOut counts.length counts.persons
counts.scopes counts.sessions factorCount factors files labels labels.agreement labels.agreement.accuracy
labels.agreement.counts labels.agreement.interval labels.agreement.kappa labels.agreement.persons
labels.agreement.unknown labels.agreement.words labels.verdicts labels.verdicts[].counts
labels.verdicts[].counts.neutral labels.verdicts[].counts.positive labels.verdicts[].scope limits
limits.personsOfSession limits.pictures limits.scopesOfPicture options participants pictures pictures.scopeNames
pictures.sessions pictures.sessions[].condition pictures.sessions[].length pictures.sessions[].name
pictures.sessions[].participant pictures.sessions[].personCount pictures.sessions[].persons
pictures.sessions[].persons[].attention pictures.sessions[].persons[].id pictures.sessions[].persons[].name
pictures.sessions[].persons[].participant pictures.sessions[].persons[].role
pictures.sessions[].persons[].scopes pictures.sessions[].persons[].valence pictures.sessions[].status
pictures.stretches pictures.withoutPicture scopes study troubles troubles.attentionUnknown troubles.nobody
troubles.sessions troubles.sessions.all troubles.sessions.rows troubles.valenceUnknown troubles.warnings
troubles.warnings.all troubles.warnings.rows)"),
            support::membersOf(data()));
}

TEST_F(StudyReport, ComparesTheFirstFourPlaceholdersBesidesTheConditionAndCountsAll)
{
  results.add("p01", "hello", "0.5");
  for (const std::string name : {"e", "a", "d", "b", "c"})
    results.run("INSERT INTO factors VALUES ('p01/hello', '" + name + "', 'x')");
  const Json page = data();
  EXPECT_EQ(Json::parse(R"(["a", "b", "c", "d"])"), page["factors"]);
  EXPECT_EQ(5, page["factorCount"]);
  std::set<std::string> compared;
  for (const Json& comparison : page["comparisons"])
    compared.insert(comparison["by"].get<std::string>());
  EXPECT_THAT(compared, ::testing::IsSupersetOf({"a", "d"}));
  EXPECT_THAT(compared, Not(::testing::Contains("e")));
}

TEST_F(StudyReport, ComparesLabelsThatAreNamedAfterAVerdictWithTheVerdict)
{
  results.add("p01", "hello", "0.5");
  results.addSummary("p01/hello", 1, 2, "positive", "0.5", "positive");
  results.addSummary("p01/hello", 1, 3, "mood: Negative", "0.5", "negative");
  results.addSummary("p01/hello", 1, 4, "negative", "0.5", "positive");
  results.addSummary("p01/hello", 1, 5, "negative", "0.5", "unknown");
  results.addSummary("p01/hello", 1, 6, "task", "0.5", "positive");
  const Json agreement = data()["labels"]["agreement"];
  EXPECT_EQ(Json::parse("[[1, 0, 1], [0, 0, 0], [0, 0, 1]]"), agreement["counts"]);
  EXPECT_EQ(1, agreement["unknown"]);
  EXPECT_EQ(1, agreement["persons"]);
  EXPECT_NEAR(2. / 3., agreement["accuracy"].get<double>(), 1e-15);
  EXPECT_NEAR((2. / 3. - 4. / 9.) / (1. - 4. / 9.), agreement["kappa"].get<double>(), 1e-15);
  EXPECT_TRUE(agreement["interval"].is_null()) << "one person";
}

TEST_F(StudyReport, GivesTheAgreementOfSeveralPersonsAnInterval)
{
  for (const char* const participant : {"p01", "p02", "p03"})
  {
    results.add(participant, "hello", "0.5");
    const std::string name = std::string(participant) + "/hello";
    results.addSummary(name, 1, 2, "positive", "0.5", "positive");
    results.addSummary(name, 1, 3, "negative", "0.5", participant[2] == '1' ? "positive" : "negative");
  }
  const Json agreement = data()["labels"]["agreement"];
  EXPECT_EQ(3, agreement["persons"]);
  EXPECT_EQ(1., agreement["interval"][1]);
  EXPECT_EQ(0., agreement["interval"][0]) << "a resample of the first person alone";
}

TEST_F(StudyReport, CountsEachParticipantOnceAndPersonsWithoutOneOnceInEachSession)
{
  results.add("p01", "hello", "0.5");
  results.add("p01", "bye", "0.5");
  for (const char* const name : {"a", "b"})
  {
    results.addSession(name, "", "");
    results.addPerson(name, 1, "");
  }
  EXPECT_EQ(3, data()["counts"]["persons"]);
}

TEST_F(StudyReport, CountsPersonsWithoutAParticipantOnceInEachSessionWhereLabelsAgree)
{
  for (const char* const name : {"a", "b"})
  {
    results.addSession(name, "", "hello");
    for (const int person : {1, 2})
    {
      results.addPerson(name, person, "");
      results.addSummary(name, person, 1, "positive", "0.5", "positive");
    }
  }
  EXPECT_EQ(4, data()["labels"]["agreement"]["persons"]) << "two persons of each of two sessions";
}

TEST_F(StudyReport, HasNoAgreementWithoutLabelsThatAreNamedAfterAVerdict)
{
  results.add("p01", "hello", "0.5");
  results.addSummary("p01/hello", 1, 2, "positively", "0.5", "positive");
  EXPECT_TRUE(data()["labels"]["agreement"].is_null());
}

TEST_F(StudyReport, CountsVerdictsOfCompleteSessions)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "0.5");
  results.add("p03", "hello", "0.5", "cut short");
  EXPECT_EQ(Json::parse(R"([{"scope": "whole recording", "counts": {"neutral": 2}}])"), data()["labels"]["verdicts"]);
}

TEST_F(StudyReport, ListsTheSessionsThatAreNotComparedAndTheWarnings)
{
  results.add("p01", "hello", "NULL");
  results.add("p02", "hello", "0.5", "cut short");
  results.run(
      "UPDATE sessions SET error = 'line 7 is broken' WHERE status = 'cut short';"
      "INSERT INTO warnings VALUES ('p01/hello', 1, 'recording', 'a gap')");
  const Json troubles = data()["troubles"];
  EXPECT_EQ(Json::parse(R"({"all": 1, "rows": [["p02/hello", "cut short", "line 7 is broken"]]})"),
            troubles["sessions"]);
  EXPECT_EQ(Json::parse(R"({"all": 1, "rows": [["p01/hello", "recording", "a gap"]]})"), troubles["warnings"]);
  EXPECT_EQ(1, troubles["valenceUnknown"]);
  EXPECT_EQ(0, troubles["attentionUnknown"]);
}

TEST_F(StudyReport, ListsTheFirstOfManyProblems)
{
  addMany(1200);
  results.run("UPDATE sessions SET status = 'failed'");
  const Json sessions = data()["troubles"]["sessions"];
  EXPECT_EQ(1200, sessions["all"]);
  EXPECT_EQ(1000, sessions["rows"].size());
}

TEST_F(StudyReport, IsTheSameTextEachTime)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "0.25");
  results.add("p03", "bye", "0.125");
  EXPECT_EQ(text(), text());
}

TEST_F(StudyReport, IsSafeInsideAScript)
{
  results.add("</script><b>", "hello", "0.5");
  EXPECT_THAT(text(), Not(HasSubstr("<")));
  EXPECT_EQ("</script><b>", data()["participants"][0]);
}

TEST_F(StudyReport, RefusesResultsWithoutASession)
{
  try
  {
    text();
    FAIL() << "no error";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_STREQ("results.sqlite: has no session: run the study first", error.what());
  }
}

struct ForeignValue
{
  const char* name;
  const char* change;
  const char* error;
};

class StudyReportOfForeignFile : public StudyReport, public ::testing::WithParamInterface<ForeignValue>
{};

template <typename Act>
std::string errorOf(Act&& act)
{
  try
  {
    act();
  }
  catch (const KV::recordings::Error& error)
  {
    return error.what();
  }
  return "no error";
}

TEST_P(StudyReportOfForeignFile, IsRefusedWithTheNameOfTheColumn)
{
  results.add("p01", "hello", "0.5");
  results.run(std::string("UPDATE ") + GetParam().change);
  const std::string error = results.path() + ": " + GetParam().error;
  EXPECT_EQ(error, errorOf([this] { text(); }));
  const std::string change = GetParam().change;
  const std::string table = change.substr(0, change.find(' '));
  std::ostringstream csv;
  EXPECT_EQ(error, errorOf([&] { session::StudyResults({results.path()}).writeCsv(table, csv); }));
  const WrittenResults other;
  other.add("p02", "hello", "0.5");
  EXPECT_EQ(error, errorOf([&] { session::StudyResults({other.path(), results.path()}); }));
}

INSTANTIATE_TEST_SUITE_P(
    Of, StudyReportOfForeignFile,
    ::testing::Values(ForeignValue{"Infinity", "summaries SET valence = 9e999",
                                   "valence: expected a number from -3.4e38 to 3.4e38, found 'Inf'"},
                      ForeignValue{"MinusInfinity", "summaries SET valence = -9e999",
                                   "valence: expected a number from -3.4e38 to 3.4e38, found '-Inf'"},
                      ForeignValue{"MoreThanSinglePrecision", "summaries SET seen = 3.5e38",
                                   "seen: expected a number from -3.4e38 to 3.4e38, found '3.5e+38'"},
                      ForeignValue{"TextAsNumber", "summaries SET attention = 'high'",
                                   "attention: expected a number from -3.4e38 to 3.4e38, found 'high'"},
                      ForeignValue{"BytesAsNumber", "sessions SET length = x'6161'",
                                   "length: expected a number from -3.4e38 to 3.4e38, found 'aa'"},
                      ForeignValue{"TextAsWholeNumber", "sessions SET persons = 'many'",
                                   "persons: expected a whole number, found 'many'"},
                      ForeignValue{"PartOfAPerson", "sessions SET persons = 1.5",
                                   "persons: expected a whole number, found '1.5'"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(StudyReport, TakesTheGreatestNumberOfSinglePrecision)
{
  results.add("p01", "hello", "3.4028234663852886e38");
  results.add("p02", "hello", "3.4028234663852886e38");
  EXPECT_TRUE(data()["comparisons"][0]["groups"][0]["mean"].is_number());
}

TEST_F(StudyReport, WritesThePageAroundTheData)
{
  if (!session::StudyReport::isAvailable())
    GTEST_SKIP() << "built without the page";
  results.add("p01", "hello", "0.5");
  std::ostringstream stream;
  session::StudyReport(session::StudyResults({results.path()}), {"results.sqlite"}).write(stream);
  EXPECT_THAT(stream.str(), HasSubstr(text() + "</script>"));
  EXPECT_THAT(stream.str(), HasSubstr("Content-Security-Policy\" content=\"default-src 'none'; "));
}

}  // namespace
