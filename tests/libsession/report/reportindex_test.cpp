#include <skeigiot/session/reportindex.hpp>

#include "libsession/entries.hpp"

#include <skeigiot/session/report.hpp>
#include <skeigiot/session/session.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::IndexedRecording;
using KV::session::Report;
using KV::session::ReportOverview;
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;

/// Plays steps and one scope over all of them.
ReportOverview overviewOf(const std::vector<KV::recordings::Step>& steps, bool hasScope = true)
{
  Report report;
  std::vector<KV::session::ScopeSpan> scopes;
  if (hasScope)
    scopes.push_back({"all", KV::session::Duration(0), boost::none});
  KV::session::Session session(scopes, {&report});
  for (const KV::recordings::Step& step : steps)
    session.play(step);
  session.finish();
  return report.overview();
}

/// A smile for a minute, and a person of whom nothing is known.
std::vector<KV::recordings::Step> smileAndStranger()
{
  std::vector<KV::recordings::Step> steps;
  for (int i = 0; i <= 120; ++i)
    steps.push_back(seenAt(0.5 * i, 1));
  for (const double time : {59., 60.})
  {
    steps.push_back(entryAt(time));
    steps.back().person = 2;
  }
  return steps;
}

TEST(ReportOverview, HasThePersonsWithTheirSummariesAndVerdicts)
{
  const ReportOverview overview = overviewOf(smileAndStranger());
  EXPECT_EQ(inNanoseconds(60.), overview.length);
  ASSERT_EQ(2U, overview.persons.size());
  EXPECT_EQ(1, overview.persons[0].number);
  EXPECT_EQ("positive", overview.persons[0].verdict);
  EXPECT_EQ(121U, overview.persons[0].summary.updates());
  EXPECT_EQ(2, overview.persons[1].number);
  EXPECT_EQ("unknown", overview.persons[1].verdict);
}

TEST(ReportOverview, HasNoVerdictWithoutAScope)
{
  EXPECT_EQ("", overviewOf(smileAndStranger(), false).persons[0].verdict);
}

TEST(ReportOverview, HasTheMeanOfEachStretch)
{
  const ReportOverview overview = overviewOf(smileAndStranger());
  const ReportOverview::Person& smiling = overview.persons[0];
  ASSERT_EQ(ReportOverview::stretches, smiling.valence.size());
  ASSERT_EQ(ReportOverview::stretches, smiling.attention.size());
  EXPECT_GT(smiling.valence.back(), 0.5f);
  EXPECT_GT(smiling.attention.back(), 0.5f);
  for (std::size_t i = 1; i < ReportOverview::stretches; ++i)
    EXPECT_GE(smiling.valence[i], smiling.valence[i - 1]) << i << ": the valence approaches its target";
  for (const float valence : overview.persons[1].valence)
    EXPECT_TRUE(std::isnan(valence)) << "never known";
}

TEST(ReportOverview, HoldsAnUpdateForASecondAtMost)
{
  const ReportOverview overview = overviewOf({seenAt(0., 1), seenAt(30., 1), seenAt(60., 1)});
  const std::vector<float>& valence = overview.persons[0].valence;
  EXPECT_FALSE(std::isnan(valence[0]));
  EXPECT_TRUE(std::isnan(valence[1]));
  EXPECT_FALSE(std::isnan(valence[30]));
  EXPECT_TRUE(std::isnan(valence[31]));
}

class ReportIndex : public ::testing::Test
{
protected:
  void SetUp() override
  {
    if (!Report::isAvailable())
      GTEST_SKIP() << "built without the page of the report";
  }

  /// Returns the page.
  static std::string pageOf(const std::vector<IndexedRecording>& recordings)
  {
    std::ostringstream page;
    KV::session::writeReportIndex(page, recordings);
    return page.str();
  }

  /// Returns the list of recordings in the page.
  static Json listIn(const std::string& page)
  {
    const std::size_t from = page.find("{\"recordings\":");
    return from == std::string::npos
               ? Json()
               : Json::parse(page.substr(from, page.find("</script>", from) - from))["recordings"];
  }
};

TEST_F(ReportIndex, ListsTheRecordings)
{
  const std::string page = pageOf({{"a.csv", "a.html", overviewOf(smileAndStranger()), 3, ""},
                                   {"b.csv", "", {}, 0, "b.csv: there is no such file"}});
  EXPECT_THAT(page, StartsWith("<!doctype html>"));
  const Json list = listIn(page);
  ASSERT_EQ(2U, list.size());
  EXPECT_EQ("a.csv", list[0]["file"]);
  EXPECT_EQ("a.html", list[0]["page"]);
  EXPECT_EQ(60., list[0]["length"]);
  EXPECT_EQ(2, list[0]["personCount"]);
  EXPECT_EQ(3, list[0]["warnings"]);
  EXPECT_EQ("", list[0]["error"]);
  EXPECT_EQ((Json{{"file", "b.csv"},
                  {"page", ""},
                  {"length", 0.},
                  {"personCount", 0},
                  {"persons", Json::array()},
                  {"warnings", 0},
                  {"error", "b.csv: there is no such file"}}),
            list[1]);
}

TEST_F(ReportIndex, HasNullForWhatIsNotKnown)
{
  const Json persons = listIn(pageOf({{"a.csv", "a.html", overviewOf(smileAndStranger()), 0, ""}}))[0]["persons"];
  ASSERT_EQ(2U, persons.size());
  EXPECT_EQ(1, persons[0]["id"]);
  EXPECT_EQ("positive", persons[0]["verdict"]);
  EXPECT_EQ(1., persons[0]["seen"]);
  EXPECT_GT(persons[0]["valence"], 0.5);
  EXPECT_EQ(ReportOverview::stretches, persons[0]["valenceCurve"].size());
  EXPECT_TRUE(persons[1]["valence"].is_null());
  EXPECT_TRUE(persons[1]["attention"].is_null());
  EXPECT_EQ(1., persons[1]["seen"]) << "an observation without any reading";
  for (const Json& value : persons[1]["attentionCurve"])
    EXPECT_TRUE(value.is_null());
}

TEST_F(ReportIndex, HasNullForTheShareOfASingleMoment)
{
  const Json recording = listIn(pageOf({{"a.csv", "a.html", overviewOf({seenAt(0., 1)}), 0, ""}}))[0];
  EXPECT_TRUE(recording["persons"][0]["seen"].is_null()) << "no time went by";
}

TEST_F(ReportIndex, RoundsToThousandths)
{
  const Json person = listIn(pageOf({{"a.csv", "a.html", overviewOf(smileAndStranger()), 0, ""}}))[0]["persons"][0];
  for (const Json& value : person["valenceCurve"])
    EXPECT_EQ(value.get<double>(), std::round(value.get<double>() * 1000.) / 1000.);
}

TEST_F(ReportIndex, ShowsFourPersonsOfARecording)
{
  std::vector<KV::recordings::Step> steps;
  for (int person = 1; person <= 5; ++person)
    steps.push_back(seenAt(0., person));
  const Json recording = listIn(pageOf({{"a.csv", "a.html", overviewOf(steps), 0, ""}}))[0];
  EXPECT_EQ(5, recording["personCount"]);
  EXPECT_EQ(4U, recording["persons"].size());
}

}  // namespace
