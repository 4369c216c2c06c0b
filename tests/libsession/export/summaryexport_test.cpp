#include "libsession/entries.hpp"

#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/session.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using Rows = std::vector<std::map<std::string, std::string>>;

/// Splits a line without quotes.
std::vector<std::string> fieldsOf(const std::string& line)
{
  std::vector<std::string> fields;
  std::size_t begin = 0;
  for (std::size_t end = line.find(','); end != std::string::npos; end = line.find(',', begin))
  {
    fields.push_back(line.substr(begin, end - begin));
    begin = end + 1;
  }
  fields.push_back(line.substr(begin));
  return fields;
}

class SummaryExport : public ::testing::Test
{
protected:
  SummaryExport() { exporter->writeHeader(); }

  void play(const std::vector<KV::recordings::Step>& steps, const std::vector<KV::session::ScopeSpan>& spans,
            const std::string& error = "")
  {
    exporter->beginSession({1, "face.csv"});
    KV::session::Session session(spans, {exporter.get()});
    for (const KV::recordings::Step& step : steps)
      session.play(step);
    session.finish();
    exporter->endSession(error);
  }

  /// Returns the written values, by the names of the columns.
  Rows rows() const
  {
    std::istringstream lines(file.str());
    std::string line;
    std::getline(lines, line);
    const std::vector<std::string> names = fieldsOf(line);
    Rows rows;
    while (std::getline(lines, line))
    {
      const std::vector<std::string> fields = fieldsOf(line);
      EXPECT_EQ(names.size(), fields.size()) << line;
      auto& row = rows.emplace_back();
      for (std::size_t i = 0; i < std::min(names.size(), fields.size()); ++i)
        row[names[i]] = fields[i];
    }
    return rows;
  }

  std::ostringstream file;
  std::unique_ptr<KV::session::Exporter> exporter = KV::session::exportFormat("summary").make(file);
  const std::vector<KV::session::ScopeSpan> whole = {{"whole recording", inNanoseconds(0.), boost::none}};
};

TEST_F(SummaryExport, HasARowForEachPersonAndScope)
{
  std::vector<KV::session::ScopeSpan> spans = whole;
  spans.push_back({"end", inNanoseconds(1.), boost::none});
  play({seenAt(0., 4), seenAt(0., 7), seenAt(0.5, 4), seenAt(1., 4)}, spans);
  const Rows all = rows();
  ASSERT_EQ(4U, all.size());
  EXPECT_EQ("4", all[0].at("person"));
  EXPECT_EQ("whole recording", all[0].at("scope"));
  EXPECT_EQ("3", all[0].at("updates"));
  EXPECT_EQ("0", all[0].at("first"));
  EXPECT_EQ("1", all[0].at("last"));
  EXPECT_EQ("4", all[1].at("person"));
  EXPECT_EQ("end", all[1].at("scope"));
  EXPECT_EQ("1", all[1].at("start"));
  EXPECT_EQ("1", all[1].at("updates"));
  EXPECT_EQ("7", all[2].at("person"));
  for (const auto& row : all)
  {
    EXPECT_EQ("1", row.at("recording"));
    EXPECT_EQ("face.csv", row.at("file"));
    EXPECT_EQ("complete", row.at("end"));
    EXPECT_EQ("", row.at("error"));
    EXPECT_EQ("", row.at("agitation"));
  }
  EXPECT_EQ("0", all[3].at("updates")) << "person 7 has none in the scope";
  EXPECT_EQ("", all[3].at("seen"));
  EXPECT_EQ("", all[3].at("valence"));
}

TEST_F(SummaryExport, HasWhatTheUpdatesInTheScopeSay)
{
  play({seenAt(0., 1, 1.f), seenAt(1., 1, 1.f), seenAt(2., 1, 1.f)}, whole);
  const auto row = rows().at(0);
  EXPECT_EQ("1", row.at("seen"));
  EXPECT_EQ("positive", row.at("verdict"));
  EXPECT_GT(std::stod(row.at("valence")), 0.);
  EXPECT_GT(std::stod(row.at("valence_confidence")), 0.);
  EXPECT_GT(std::stod(row.at("attention")), 0.5);
  EXPECT_EQ("1", row.at("zone_LookingAtRobot"));
  EXPECT_EQ("0", row.at("zone_LookingDown"));
  double pleasures = 0.;
  for (const char* const name : {"pleasure_positive", "pleasure_neutral", "pleasure_negative", "pleasure_unknown"})
    pleasures += std::stod(row.at(name));
  EXPECT_NEAR(1., pleasures, 1e-12);  // shares that are rounded once each
}

TEST_F(SummaryExport, LeavesEmptyWhatWasNeverKnown)
{
  KV::recordings::Step step = entryAt(0.);
  step.person = 1;
  step.observation.faceDetected.emplace(step.time, true);
  play({step}, whole);
  const auto row = rows().at(0);
  EXPECT_EQ("1", row.at("seen"));
  EXPECT_EQ("0", row.at("attention_known"));
  for (const char* const name : {"attention", "attention_confidence", "engaged", "strictly_engaged"})
    EXPECT_EQ("", row.at(name)) << name;
}

TEST_F(SummaryExport, NamesThePersonWhoHasAName)
{
  KV::recordings::Step step = seenAt(0., 1);
  step.personName = "anna";
  play({step}, whole);
  EXPECT_EQ("anna", rows().at(0).at("name"));
  EXPECT_EQ("1", rows().at(0).at("person"));
}

TEST_F(SummaryExport, HasARowForARecordingWithoutAPersonAndSaysWhy)
{
  play({}, whole, "face.csv: cannot be opened");
  const Rows all = rows();
  ASSERT_EQ(1U, all.size());
  EXPECT_EQ("face.csv", all[0].at("file"));
  EXPECT_EQ("", all[0].at("person"));
  EXPECT_EQ("", all[0].at("updates"));
  EXPECT_EQ("face.csv: cannot be opened", all[0].at("error"));
}

TEST_F(SummaryExport, HasTheAmbianceOfTheRoom)
{
  KV::recordings::Step step = seenAt(0., 1);
  step.ambianceActivity = 0.05f;
  play({step}, whole);
  EXPECT_EQ(rows().at(0).at("agitation"), rows().at(0).at("agitation_at_end"));
  EXPECT_EQ("0.1", rows().at(0).at("agitation").substr(0, 3));
}

TEST_F(SummaryExport, BeginsAnewWithEachSession)
{
  play({seenAt(0., 1), seenAt(1., 1)}, whole);
  play({seenAt(0., 1)}, whole);
  EXPECT_EQ("2", rows().at(0).at("updates"));
  EXPECT_EQ("1", rows().at(1).at("updates"));
}

TEST_F(SummaryExport, WithoutScopesHasARowForEachPerson)
{
  play({seenAt(0., 1)}, {});
  EXPECT_EQ("", rows().at(0).at("scope"));
  EXPECT_EQ("", rows().at(0).at("verdict"));
  EXPECT_EQ("1", rows().at(0).at("updates"));
}

}  // namespace
