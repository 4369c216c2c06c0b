#include <skeigiot/session/report.hpp>

#include "libsession/entries.hpp"

#include <skeigiot/session/session.hpp>

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(Report, IsAPageOfTheSessionThatItWatched)
{
  if (!KV::session::Report::isAvailable())
    GTEST_SKIP() << "built without the page of the report";
  KV::session::Report report;
  {
    KV::session::Session session({{"greeting", KV::session::Duration(0), boost::none}}, {&report});
    session.play(seenAt(0., 7));
    session.finish();
  }
  std::ostringstream page;
  report.write(page, {"face.csv"}, {"a note"});
  EXPECT_THAT(page.str(), StartsWith("<!doctype html>"));
  EXPECT_THAT(page.str(), HasSubstr("\"inputs\":[\"face.csv\"],\"notes\":[\"a note\"]"));
  EXPECT_THAT(page.str(), HasSubstr("\"name\":\"greeting\""));
  EXPECT_THAT(page.str(), HasSubstr("\"id\":7"));
  EXPECT_THAT(page.str(), HasSubstr("\"sources\":[\"")) << "it watches the forces";
}

TEST(Report, ShowsWhatIsAddedToTheSession)
{
  if (!KV::session::Report::isAvailable())
    GTEST_SKIP() << "built without the page of the report";
  KV::session::Report report;
  {
    KV::session::Session session({}, {&report});
    session.play(seenAt(0., 7));
    session.finish();
  }
  KV::session::ReportAdditions additions;
  additions.learned = {"rest of person 7: AU12"};
  additions.labels.emplace_back();
  additions.labels.back().spans = {{0., 1., "positive", "7", "anna", ""}, {0., 1., "positive", "8", "anna", ""}};
  additions.video = "face.webm";
  additions.videoOffset = 0.5;
  const std::vector<std::string> warnings = report.add(additions);
  EXPECT_THAT(warnings, ::testing::ElementsAre("labels of persons who are not in the recording left out: '8' (1)"));
  std::ostringstream page;
  report.write(page, {"face.csv"}, {});
  EXPECT_THAT(page.str(), HasSubstr(R"("learned":["rest of person 7: AU12"])"));
  EXPECT_THAT(page.str(), HasSubstr(R"("coder":"anna","quantity":"pleasure")"));
  EXPECT_THAT(page.str(), HasSubstr(R"("video":{"address":"face.webm","offset":0.5})"));
}

TEST(Report, SaysWhatItWasToldOfTheRecording)
{
  if (!KV::session::Report::isAvailable())
    GTEST_SKIP() << "built without the page of the report";
  KV::session::Report report;
  report.recordingDated(false);
  report.recordingDescribed({"angles in degrees"});
  {
    KV::session::Session session({}, {&report});
    KV::recordings::Step step = seenAt(0., 7);
    step.ambianceActivity = 0.5f;
    session.play(step);
    session.finish();
  }
  std::ostringstream page;
  report.write(page, {"face.csv"}, {});
  EXPECT_THAT(page.str(), HasSubstr("\"begins\":null")) << "its times have no date";
  EXPECT_THAT(page.str(), HasSubstr("angles in degrees"));
  EXPECT_THAT(page.str(), ::testing::Not(HasSubstr("\"ambiance\":[]"))) << "it watches the room";
}

}  // namespace
