#include "libsession/entries.hpp"

#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/liveview.hpp>
#include <skeigiot/session/session.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <string>

namespace
{

using namespace replaytests;
using KV::session::LiveInput;
using KV::session::LiveView;
using KV::session::Session;
using Json = nlohmann::json;
using ::testing::HasSubstr;

class LiveViewTest : public ::testing::Test
{
protected:
  Json news(double sinceStart, const LiveInput* input = nullptr)
  {
    return Json::parse(view.takeNews(start + inNanoseconds(sinceStart), input));
  }

  Json facts() const { return Json::parse(view.facts()); }

  LiveView view;
  Session session{{}, {&view}};
};

TEST_F(LiveViewTest, HasNoNewsAtFirst)
{
  EXPECT_FALSE(view.hasNews());
  EXPECT_EQ(Json::parse(R"({"now":0})"), news(0.));
}

TEST_F(LiveViewTest, SendsAnUpdateWithItsReadingsAndForces)
{
  session.play(seenAt(0., 3));
  EXPECT_TRUE(view.hasNews());

  const Json sent = news(0.25);

  EXPECT_EQ(250'000'000, sent["now"]);
  ASSERT_EQ(1U, sent["persons"].size());
  const Json& person = sent["persons"][0];
  EXPECT_EQ(3, person["id"]);
  EXPECT_EQ(0, person["time"]);
  EXPECT_EQ(1, person["updates"]);
  EXPECT_EQ(true, person["seen"]);
  EXPECT_GT(person["valence"][0], 0.);
  EXPECT_EQ(true, person["valence"][2]);
  EXPECT_EQ("LookingAtRobot", person["zone"]);
  EXPECT_EQ("unknown", person["pleasure"]) << "one update is not enough";
  EXPECT_EQ(1., person["inputs"]["smile"]);
  EXPECT_FALSE(person["inputs"].contains("distance"));
  ASSERT_FALSE(person["forces"].empty());
  const std::size_t source = person["forces"][0][0];
  EXPECT_LT(source, sent["sources"].size());
  EXPECT_EQ(sent["sources"].size(), sent["sourceNames"].size());
  EXPECT_FALSE(view.hasNews());
  EXPECT_FALSE(news(0.25).contains("persons"));
}

TEST_F(LiveViewTest, SendsNumbersThatReadBackAsTheSame)
{
  KV::session::Snapshot snapshot = snapshotAt(0., 0.1f, 1.f / 3.f);
  view.personUpdated(snapshot);
  const Json sent = news(0.);
  EXPECT_EQ(0.1f, sent["persons"][0]["valence"][0].get<float>());
  EXPECT_EQ(1.f / 3.f, sent["persons"][0]["attention"][0].get<float>());
}

TEST_F(LiveViewTest, SendsTheLastOfSeveralUpdatesAndTheirCount)
{
  session.play(seenAt(0., 3, 1.f));
  session.play(seenAt(0.1, 3, 0.f));
  session.play(seenAt(0.2, 3, 0.25f));
  const Json sent = news(0.2);
  ASSERT_EQ(1U, sent["persons"].size());
  EXPECT_EQ(3, sent["persons"][0]["updates"]);
  EXPECT_EQ(200'000'000, sent["persons"][0]["time"]);
  EXPECT_EQ(0.25, sent["persons"][0]["inputs"]["smile"]);
}

TEST_F(LiveViewTest, LetsPersonsLeaveWhoWereNotSeenForAMinute)
{
  session.play(seenAt(0., 3));
  news(0.);
  EXPECT_FALSE(news(60.).contains("left")) << "exactly a minute";
  EXPECT_EQ(Json({3}), news(60.001)["left"]);
  EXPECT_FALSE(news(60.002).contains("left"));
}

TEST_F(LiveViewTest, LetsPersonsLeaveAndComeBack)
{
  session.play(seenAt(0., 3));
  view.remove(3);
  EXPECT_TRUE(view.hasNews());
  session.play(seenAt(1., 3));
  const Json sent = news(1.);
  EXPECT_EQ(Json({3}), sent["left"]);
  EXPECT_EQ(1, sent["persons"][0]["updates"]);
  view.remove(4);
  EXPECT_FALSE(view.hasNews()) << "nobody of that number was there";
}

TEST_F(LiveViewTest, ShowsABoundedNumberOfPersonsAndCountsTheOthers)
{
  for (std::int32_t person = 0; person < 100; ++person)
    session.play(seenAt(0., person));
  const LiveInput input;
  const Json sent = news(0., &input);
  EXPECT_EQ(LiveView::mostPersons, sent["persons"].size());
  EXPECT_EQ(100 - LiveView::mostPersons, sent["input"]["others"]);
  EXPECT_EQ(0, news(0., &input)["input"]["others"]);
}

TEST_F(LiveViewTest, SendsTheRoomScopesAndVerdicts)
{
  auto step = seenAt(0., 3);
  step.scopeStarts.push_back({"greeting", -1});
  step.ambianceActivity = 0.5f;
  session.play(step);
  Json sent = news(0.);
  EXPECT_EQ(Json({"greeting"}), sent["scopes"]);
  EXPECT_TRUE(sent["room"].contains("agitation"));
  step = entryAt(1.);
  step.scopeStops.push_back("greeting");
  session.play(step);
  sent = news(1.);
  EXPECT_EQ(Json::array(), sent["scopes"]);
  ASSERT_EQ(1U, sent["verdicts"].size());
  EXPECT_EQ("greeting", sent["verdicts"][0]["scope"]);
  EXPECT_EQ("complete", sent["verdicts"][0]["end"]);
  EXPECT_EQ(3, sent["verdicts"][0]["persons"][0]["id"]);
  EXPECT_EQ(sent["verdicts"], facts()["verdicts"]) << "for pages that come later";
  EXPECT_EQ(sent["scopes"], facts()["scopes"]);
}

TEST_F(LiveViewTest, KeepsABoundedNumberOfWarnings)
{
  for (int i = 1; i <= 60; ++i)
    view.warn("warning " + std::to_string(i));
  const Json sent = news(0.);
  EXPECT_EQ(LiveView::mostKept, sent["warnings"].size());
  EXPECT_EQ("warning 60", sent["warnings"].back()["text"]);
  EXPECT_EQ(60, sent["warnings"].back()["number"]);
  EXPECT_EQ(sent["warnings"], facts()["warnings"]);
}

TEST_F(LiveViewTest, WritesTextsThatAreNotUtf8)
{
  view.warn("\xff");
  EXPECT_THAT(view.takeNews(start, nullptr), HasSubstr("\xEF\xBF\xBD"));
}

TEST_F(LiveViewTest, SendsTheStateOfTheInput)
{
  LiveInput input;
  input.name = "face.csv";
  input.lines = 7;
  input.refused = 2;
  input.lastError = "line 5: is no JSON";
  input.rate = 12.5;
  EXPECT_EQ(nullptr, news(0., &input)["input"]["delay"]);
  EXPECT_EQ("lines", news(0., &input)["input"]["unit"]);
  input.unit = "steps";
  input.delay = 0.25;
  const Json sent = news(0., &input)["input"];
  EXPECT_EQ("face.csv", sent["name"]);
  EXPECT_EQ("steps", sent["unit"]);
  EXPECT_EQ(7, sent["lines"]);
  EXPECT_EQ(2, sent["refused"]);
  EXPECT_EQ("line 5: is no JSON", sent["lastError"]);
  EXPECT_EQ(12.5, sent["rate"]);
  EXPECT_EQ(0.25, sent["delay"]);
  EXPECT_EQ(false, sent["ended"]);
}

TEST_F(LiveViewTest, PutsBoundariesBack)
{
  const KV::session::SavedBoundaries asBefore;
  const KV::session::Boundary& boundary = KV::session::boundaries().front();
  const float before = boundary.get();
  boundary.set(0.5f);
  view.boundariesChanged();
  EXPECT_EQ(0.5f, news(0.)["boundaries"][0]["value"].get<float>());
  view.putBoundariesBack();
  EXPECT_EQ(before, boundary.get());
  EXPECT_EQ(before, news(0.)["boundaries"][0]["value"].get<float>());
  EXPECT_EQ(KV::session::boundaries().size(), facts()["boundaries"].size());
}

}  // namespace
