#include <skeigiot/session/inquiry.hpp>

#include "libsession/entries.hpp"
#include "libsession/scriptedreader.hpp"
#include "support/jsonmembers.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/session/explainer.hpp>
#include <skeigiot/session/explanationjson.hpp>
#include <skeigiot/session/sentence.hpp>
#include <skeigiot/session/session.hpp>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::Explanation;
using KV::session::Inquiry;
using KV::session::SpanExplanation;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Json = nlohmann::json;

std::vector<ScriptedReader::Step> scripted(const std::vector<KV::recordings::Step>& steps)
{
  std::vector<ScriptedReader::Step> script;
  for (const KV::recordings::Step& step : steps)
    script.push_back(ScriptedReader::entry(step));
  return script;
}

KV::recordings::Step benAt(double sinceStart)
{
  KV::recordings::Step step = seenAt(sinceStart, 2, 0.f);
  step.personName = "ben";
  return step;
}

Inquiry askedOf(const std::vector<ScriptedReader::Step>& steps, boost::optional<std::int32_t> person = {})
{
  Inquiry inquiry;
  inquiry.open = [steps] {
    return std::make_unique<ScriptedReader>(steps, std::vector<std::string>{"the clock jumps"});
  };
  inquiry.name = "face.csv";
  inquiry.person = person;
  inquiry.cycle = KV::session::parseCycle("recorded");
  return inquiry;
}

/// Returns the error of a question; "no error" if it is answered.
std::string errorOf(const std::function<void()>& ask)
{
  try
  {
    ask();
  }
  catch (const KV::recordings::Error& error)
  {
    return error.what();
  }
  return "no error";
}

const std::vector<KV::recordings::Step> alone = {seenAt(0., 1), seenAt(0.5, 1, 0.f), seenAt(1., 1)};
const std::vector<KV::recordings::Step> together = {seenAt(0., 1), seenAt(0.5, 1, 0.f), seenAt(1., 1), benAt(1.)};

TEST(Inquiry, ExplainsTheLastUpdateAtAMomentOrBeforeIt)
{
  for (const auto& [at, update] : {std::pair(0., 0.), {0.499, 0.}, {0.5, 0.5}, {0.999, 0.5}, {1., 1.}})
    EXPECT_EQ(inNanoseconds(update), explainMoment(askedOf(scripted(alone)), inNanoseconds(at)).after.sinceStart) << at;
  EXPECT_EQ(1, explainMoment(askedOf(scripted(together), 1), inNanoseconds(0.7)).after.person);
}

TEST(Inquiry, RefusesAMomentBehindTheEnd)
{
  EXPECT_EQ("face.csv: 1.25 s is outside the recording, which spans 0 s to 1 s",
            errorOf([] { explainMoment(askedOf(scripted(alone)), inNanoseconds(1.25)); }));
}

TEST(Inquiry, RefusesAMomentBeforeThePersonCame)
{
  EXPECT_EQ("face.csv: person 2 is not known at 0.5 s, but from 1 s on",
            errorOf([] { explainMoment(askedOf(scripted(together), 2), inNanoseconds(0.5)); }));
}

TEST(Inquiry, NeedsThePersonWhereThereAreSeveral)
{
  Inquiry inquiry = askedOf(scripted(together));
  EXPECT_EQ("face.csv: there are several persons: 1, 2 (ben); give the number of one of them",
            errorOf([&] { explainMoment(inquiry, inNanoseconds(1.)); }));
  inquiry.personName = "--person";
  EXPECT_EQ("face.csv: there are several persons: 1, 2 (ben); give the number of one of them (--person)",
            errorOf([&] { explainGreatestChange(inquiry); }));
  inquiry.person = 7;
  EXPECT_EQ("face.csv: there is no person 7; known are: 1, 2 (ben)",
            errorOf([&] { explainSpan(inquiry, inNanoseconds(0.), {}); }));
}

TEST(Inquiry, NamesTheFirstOfVeryManyPersons)
{
  std::vector<KV::recordings::Step> many;
  for (int i = 0; i < 30; ++i)
    many.push_back(seenAt(0.1 * i, 100 + i));
  const std::string error = errorOf([&] { explainGreatestChange(askedOf(scripted(many))); });
  EXPECT_THAT(error, ::testing::StartsWith("face.csv: there are several persons: 100, 101, "));
  EXPECT_THAT(error, ::testing::EndsWith(", ... (30 in all); give the number of one of them"));
}

TEST(Inquiry, SaysThatNobodyWasSeen)
{
  EXPECT_EQ("face.csv: nobody was seen in this recording", errorOf([] {
              explainMoment(askedOf(scripted({entryAt(0.), entryAt(1.)})), inNanoseconds(0.));
            }));
}

TEST(Inquiry, ExplainsTheUpdatesOfASpanWithBothEnds)
{
  const SpanExplanation whole = explainSpan(askedOf(scripted(alone)), inNanoseconds(0.), {});
  EXPECT_EQ(3U, whole.updates);
  EXPECT_EQ(inNanoseconds(0.), whole.first);
  EXPECT_EQ(inNanoseconds(1.), whole.after.sinceStart);
  const SpanExplanation part = explainSpan(askedOf(scripted(alone)), inNanoseconds(0.5), inNanoseconds(1.));
  EXPECT_EQ(2U, part.updates);
  EXPECT_EQ(inNanoseconds(0.5), part.first);
  EXPECT_EQ(inNanoseconds(0.), part.before.sinceStart) << "the state before its first update";
}

TEST(Inquiry, RefusesASpanOutsideTheRecordingOrWithoutAnUpdate)
{
  const auto errorFor = [](double from, double to) {
    return errorOf([&] { explainSpan(askedOf(scripted(alone)), inNanoseconds(from), inNanoseconds(to)); });
  };
  EXPECT_EQ("face.csv: 2 s is outside the recording, which spans 0 s to 1 s", errorFor(2., 3.));
  EXPECT_EQ("face.csv: 3 s is outside the recording, which spans 0 s to 1 s", errorFor(0.5, 3.));
  EXPECT_EQ("face.csv: person 1 was not updated from 0.6 s to 0.9 s, but from 0 s to 1 s", errorFor(0.6, 0.9));
}

TEST(Inquiry, FindsTheGreatestChangeOfAKnownEstimate)
{
  std::vector<KV::recordings::Step> steps;
  for (int i = 0; i < 40; ++i)
    steps.push_back(seenAt(0.1 * i, 1, i < 20 ? 1.f : 0.f));
  std::vector<Explanation> all;
  KV::session::Explainer explainer(1, [&all](const Explanation& explanation) { all.push_back(explanation); });
  KV::session::Session session({}, {&explainer});
  for (const KV::recordings::Step& step : steps)
    session.play(step);
  const auto changeOf = [](const Explanation& one) {
    const auto by = [](float before, float after, bool isKnown) { return isKnown ? std::abs(after - before) : 0.f; };
    return std::max(by(one.before.valence.value, one.after.valence.value, one.before.isValenceKnown()),
                    by(one.before.attention.value, one.after.attention.value, one.before.isAttentionKnown()));
  };
  ASSERT_EQ(40U, all.size());
  const Explanation found = explainGreatestChange(askedOf(scripted(steps)));
  EXPECT_LT(0.f, changeOf(found));
  for (const Explanation& one : all)
    EXPECT_LE(changeOf(one), changeOf(found)) << one.after.sinceStart.count();
}

TEST(Inquiry, HandsOnWarningsAndWhatWasSkipped)
{
  std::vector<ScriptedReader::Step> steps = scripted(alone);
  steps.insert(steps.begin() + 1, ScriptedReader::badLine(3));
  Inquiry inquiry = askedOf(steps);
  std::vector<std::string> notes;
  inquiry.note = [&notes](const std::string& note) { notes.push_back(note); };
  EXPECT_EQ("face.csv:3: pose_Rx: expected a number, found 'abc'", errorOf([&] { explainGreatestChange(inquiry); }));
  notes.clear();
  inquiry.skipBad = true;
  explainGreatestChange(inquiry);
  ASSERT_EQ(2U, notes.size());
  EXPECT_EQ("warning: the clock jumps", notes[0]);
  EXPECT_THAT(notes[1], ::testing::StartsWith("face.csv: "));
  EXPECT_THAT(notes[1], HasSubstr("expected a number, found 'abc'"));
}

TEST(Inquiry, EndsWithTheErrorOfTheRecording)
{
  std::vector<ScriptedReader::Step> steps = scripted(alone);
  steps.push_back(ScriptedReader::damage(9));
  EXPECT_EQ("face.csv:9: damaged", errorOf([&] { explainGreatestChange(askedOf(steps)); }));
  EXPECT_EQ("no error", errorOf([&] { explainMoment(askedOf(steps, 1), inNanoseconds(0.2)); }))
      << "it is read no further than needed";
}

TEST(ExplanationJson, OfAnUpdateHasItsStatesForcesAndSentences)
{
  const Explanation moment = explainMoment(askedOf(scripted(together), 2), inNanoseconds(1.));
  const Json json = Json::parse(explanationJson(moment, "face.csv"));
  EXPECT_EQ("face.csv", json["recording"]);
  EXPECT_EQ(2, json["person"]);
  EXPECT_EQ("ben", json["name"]);
  EXPECT_EQ(1., json["time"]);
  EXPECT_EQ(true, json["seen"]);
  EXPECT_EQ(false, json["before"]["attentionKnown"]);
  EXPECT_EQ(true, json["after"]["attentionKnown"]);
  ASSERT_EQ(moment.forces.size(), json["forces"].size());
  for (std::size_t i = 0; i < moment.forces.size(); ++i)
  {
    EXPECT_EQ(moment.forces[i].source, json["forces"][i]["source"]);
    EXPECT_EQ(moment.forces[i].weight, json["forces"][i]["weight"].get<float>());
    EXPECT_EQ(1., json["forces"][i]["time"]);
  }
  ASSERT_EQ(1U, json["zoneChanges"].size());
  EXPECT_EQ("LookingAtRobot", json["zoneChanges"][0]["to"]);
  ASSERT_EQ(3U, json["sentences"].size());
  EXPECT_THAT(json["sentences"][1].get<std::string>(), ::testing::StartsWith("attention was unknown, and is now "));
  EXPECT_THAT(json["sentences"][2].get<std::string>(), ::testing::StartsWith("the zone changed from "));
}

TEST(ExplanationJson, OfASpanHasSharesThatAddUpToAllForEachQuantity)
{
  const Json json =
      Json::parse(explanationJson(explainSpan(askedOf(scripted(alone)), inNanoseconds(0.), {}), "face.csv"));
  EXPECT_EQ(3, json["updates"]);
  EXPECT_EQ(0., json["first"]);
  EXPECT_EQ(1., json["last"]);
  EXPECT_FALSE(json.contains("name"));
  std::map<std::string, double> sums;
  for (const Json& share : json["shares"])
    if (share["moved"] > 0.)
      sums[share["quantity"]] += share["share"].get<double>();
  EXPECT_THAT(sums, ::testing::Contains(::testing::Key("valence")));
  for (const auto& [quantity, sum] : sums)
    EXPECT_NEAR(1., sum, 1e-9) << quantity;  // sums of some tens of shares
  EXPECT_THAT(json["sentences"], ::testing::SizeIs(2));
}

TEST(ExplanationJson, HasTheMembersThatProgramsRead)
{
  const Explanation moment = explainMoment(askedOf(scripted(together), 2), inNanoseconds(1.));
  EXPECT_EQ(support::eachOnALine(R"(
after after.attention after.attentionConfidence after.attentionKnown after.valence after.valenceConfidence
after.valenceKnown after.zone before before.attention before.attentionConfidence before.attentionKnown
before.valence before.valenceConfidence before.valenceKnown before.zone forces forces[].after forces[].before
forces[].quantity forces[].source forces[].sourceName forces[].target forces[].time forces[].weight name person
recording seen sentences time zoneChanges zoneChanges[].evidence zoneChanges[].from zoneChanges[].time
zoneChanges[].to)"),
            support::membersOf(Json::parse(explanationJson(moment, "face.csv"))));
  const SpanExplanation span = explainSpan(askedOf(scripted(together), 2), inNanoseconds(0.), {});
  EXPECT_EQ(support::eachOnALine(R"(
after after.attention after.attentionConfidence after.attentionKnown after.valence after.valenceConfidence
after.valenceKnown after.zone before before.attention before.attentionConfidence before.attentionKnown
before.valence before.valenceConfidence before.valenceKnown before.zone first last name person recording
sentences shares shares[].forces shares[].moved shares[].net shares[].quantity shares[].share shares[].source
shares[].sourceName updates zoneChanges zoneChanges[].evidence zoneChanges[].from zoneChanges[].time
zoneChanges[].to)"),
            support::membersOf(Json::parse(explanationJson(span, "face.csv"))));
}

TEST(Sentences, NameTheSourcesThatMovedAnEstimateAndTheirWay)
{
  const Explanation moment = explainMoment(askedOf(scripted(together), 1), inNanoseconds(0.5));
  EXPECT_THAT(
      sentencesOn(moment),
      ElementsAre("valence fell from 0.61 to 0.20: facial expressions (neutral) pulled 97 %, body language (neutral) "
                  "pulled 3 %",
                  "attention rose from 0.65 to 0.88: gaze and head pulled 100 %"));
}

TEST(Inquiry, FindsTheGreatestChangeOfTheAttentionWhereTheValenceStays)
{
  std::vector<KV::recordings::Step> steps;
  for (int i = 0; i < 20; ++i)
    steps.push_back(seenAt(0.1 * i, 1, 0.f));
  const Explanation found = explainGreatestChange(askedOf(scripted(steps)));
  EXPECT_EQ(found.before.valence.value, found.after.valence.value);
  EXPECT_GT(found.after.attention.value, found.before.attention.value + 0.2f);
}

}  // namespace
