#include "libsession/entries.hpp"

#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/session.hpp>
#include <skeigiot/session/stream.hpp>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <sstream>

namespace
{

using namespace replaytests;
using KV::session::Stream;
using KV::session::StreamTimes;
using nlohmann::json;
using testing::HasSubstr;

class StreamTest : public ::testing::Test
{
protected:
  json answer(const std::string& line)
  {
    const std::string text = stream.answer(line);
    EXPECT_EQ(text.size() - 1, text.find('\n')) << "an answer is one line: " << text;
    return json::parse(text);
  }

  Stream stream{StreamTimes::Lines, [] { return start; }};
};

std::string lineOf(const KV::recordings::Step& entry)
{
  return KV::recordings::stepToJson(entry);
}

TEST_F(StreamTest, AnswersWithTheStateThatAReplayExports)
{
  const auto entry = [](int i) {
    return i % 10 == 9 ? notSeenAt(0.1 * i, 3) : seenAt(0.1 * i, 3, 0.02f * static_cast<float>(i));
  };
  std::stringstream exported;
  {
    const auto replayed = KV::session::exportFormat("jsonl").make(exported);
    KV::session::Session session({}, {replayed.get()});
    for (int i = 0; i < 50; ++i)
      session.play(entry(i));
  }
  for (int i = 0; i < 50; ++i)
  {
    std::string line;
    ASSERT_TRUE(std::getline(exported, line));
    json expected = json::parse(line);
    json found = answer(lineOf(entry(i)));
    EXPECT_EQ(i + 1, found["line"]);
    for (const char* const name : {"recording", "file", "time", "clock"})
      expected.erase(name);
    EXPECT_EQ(true, found["updated"]);
    for (const char* const name : {"line", "time", "updated"})
      found.erase(name);
    EXPECT_EQ(expected, found);
  }
}

TEST_F(StreamTest, KnowsThePersonByTheNameThatALineGave)
{
  KV::recordings::Step named = seenAt(0., 3);
  named.personName = "anna";
  named.scopeStarts.push_back({"talk", -1});
  EXPECT_EQ("anna", answer(lineOf(named))["name"]);
  EXPECT_EQ("anna", answer(lineOf(seenAt(0.05, 3)))["name"]) << "a line that gives none";
  EXPECT_EQ(0U, answer(lineOf(seenAt(0.06, 4))).count("name")) << "another person";
  KV::recordings::Step last = seenAt(0.2, 3);
  last.scopeStops.emplace_back("talk");
  EXPECT_EQ("anna", answer(lineOf(last))["verdicts"][0]["persons"][0]["name"]);
  answer(R"({"time":)" + std::to_string(last.time.time_since_epoch().count()) + R"(,"leave":[3]})");
  EXPECT_EQ(0U, answer(lineOf(seenAt(0.3, 3))).count("name")) << "somebody new";
}

TEST_F(StreamTest, SaysWhichLineUpdatesAndAnswersTheOthersWithTheStateThatHolds)
{
  const json first = answer(lineOf(seenAt(0., 3, 0.f)));
  EXPECT_EQ(true, first["updated"]);
  const json second = answer(lineOf(seenAt(0.05, 3, 1.f)));
  EXPECT_EQ(false, second["updated"]);
  EXPECT_EQ(3, second["person"]);
  EXPECT_EQ(true, second["seen"]);
  EXPECT_EQ(first["valence"], second["valence"]);
  EXPECT_EQ(first["attention"], second["attention"]);
  const json third = answer(lineOf(notSeenAt(0.1, 3)));
  EXPECT_EQ(true, third["updated"]);
  EXPECT_EQ(true, third["seen"]) << "the person was seen within the cycle";
  EXPECT_GT(third["valence"], second["valence"]);
  EXPECT_EQ(false, answer(lineOf(notSeenAt(0.15, 3)))["seen"]);
  EXPECT_EQ(false, answer(lineOf(notSeenAt(0.2, 99)))["updated"]) << "nobody knows this person";
  EXPECT_FALSE(answer(lineOf(entryAt(0.3))).contains("updated"));
}

TEST_F(StreamTest, AnswersForThePersonOfTheLineThoughAnotherOneIsUpdatedToo)
{
  answer(lineOf(seenAt(0., 3, 0.f)));
  answer(lineOf(seenAt(0.05, 3, 1.f)));
  const json other = answer(lineOf(seenAt(0.5, 4, 0.f)));
  EXPECT_EQ(4, other["person"]);
  EXPECT_EQ(0., other["valence"]);
  EXPECT_FALSE(answer(lineOf(entryAt(0.6))).contains("person"));
}

TEST_F(StreamTest, AnswersWithTheTimeInNanoseconds)
{
  EXPECT_EQ(1577836802500000000, answer(lineOf(entryAt(2.5)))["time"]);
}

TEST_F(StreamTest, SaysNothingOfPersonsInALineAboutNobody)
{
  EXPECT_FALSE(answer(lineOf(entryAt(1.))).contains("person"));
  EXPECT_FALSE(answer(lineOf(notSeenAt(2., 4))).contains("person")) << "who was never seen is nobody";
}

TEST_F(StreamTest, AnswersWithTheRoom)
{
  KV::recordings::Step entry = entryAt(1.);
  entry.ambianceActivity = 0.9f;
  const json found = answer(lineOf(entry));
  EXPECT_GT(found["agitation"], 0.);
  EXPECT_EQ(true, found["excited"]);
  EXPECT_FALSE(answer(lineOf(entryAt(2.))).contains("agitation"));
}

TEST_F(StreamTest, AnswersWithTheVerdictsOfStoppedScopes)
{
  KV::recordings::Step first = seenAt(0., 3);
  first.scopeStarts = {{"greeting", -1}, {"short", 1}};
  answer(lineOf(first));
  answer(lineOf(seenAt(0.1, 5)));
  KV::recordings::Step last = seenAt(0.2, 3);
  last.scopeStops = {"short", "greeting", "other"};

  const json verdicts = answer(lineOf(last))["verdicts"];
  ASSERT_EQ(3u, verdicts.size());
  EXPECT_EQ("short", verdicts[0]["scope"]);
  EXPECT_EQ(1, verdicts[0]["persons"][0]["updates"]);
  EXPECT_EQ("greeting", verdicts[1]["scope"]);
  EXPECT_EQ(3, verdicts[1]["persons"][0]["person"]);
  EXPECT_EQ(2, verdicts[1]["persons"][0]["updates"]);
  EXPECT_THAT(verdicts[1]["persons"][0]["verdict"], testing::AnyOf("positive", "unknown", "neutral"));
  EXPECT_EQ(5, verdicts[1]["persons"][1]["person"]);
  EXPECT_EQ("error", verdicts[2]["verdict"]);
  EXPECT_FALSE(answer(lineOf(entryAt(0.3))).contains("verdicts")) << "a verdict is sent once";
}

TEST_F(StreamTest, PassesTheWarningsOfTheLibraryOn)
{
  KV::recordings::Step old = entryAt(4.);
  old.person = 3;
  old.observation.voiceEmotion.emplace(start, KV::VoiceEmotion());
  const json found = answer(lineOf(old));
  ASSERT_TRUE(found.contains("warnings")) << found;
  EXPECT_THAT(found["warnings"][0], HasSubstr("old observation from 4 s ago of Voice Emotion"));
  EXPECT_FALSE(answer(lineOf(seenAt(4.1, 3))).contains("warnings"));
}

TEST_F(StreamTest, LeavesOutReadingsThatAreNotFinite)
{
  answer(lineOf(seenAt(0., 3)));
  KV::recordings::Step bad = seenAt(0.5, 3);
  bad.observation.gaze->value.yaw = std::numeric_limits<float>::quiet_NaN();
  const json found = answer(lineOf(bad));

  EXPECT_EQ(json({"left out 1 reading with numbers that are not finite, the first of person 3 at 0:00.500"}),
            found["warnings"]);
  EXPECT_TRUE(found["attention"].is_number());
  EXPECT_FALSE(answer(lineOf(seenAt(1., 3))).contains("warnings"));
}

TEST_F(StreamTest, GoesOnBehindABadLine)
{
  answer(lineOf(seenAt(0., 3)));
  const json bad = answer(R"({"time":1577836801000000000,"person":3,"observation":{"smile":{"value":"wide"}}})");
  EXPECT_EQ(2, bad["line"]);
  EXPECT_EQ("observation.smile.value", bad["error"]["field"]);
  EXPECT_THAT(bad["error"]["message"], HasSubstr("expected a number"));
  EXPECT_EQ(2u, bad.size());
  EXPECT_EQ(3, answer(lineOf(seenAt(0.5, 3)))["line"]);
}

TEST_F(StreamTest, RefusesTimesThatAreNoNanoseconds)
{
  const json bad = answer(R"({"time":1700000000,"person":3})");
  EXPECT_EQ("time", bad["error"]["field"]);
  EXPECT_EQ("expected nanoseconds since 1970, found 1700000000; it looks like seconds: multiply it by 1000000000",
            bad["error"]["message"]);
  for (const char* const line : {R"({"time":1,"person":3})", R"({"time":2,"person":3})", R"({"time":3,"person":3})"})
    EXPECT_FALSE(answer(line).contains("error")) << line;
  EXPECT_EQ("time", answer(R"({"time":4,"person":3})")["error"]["field"]);
}

TEST_F(StreamTest, RefusesTimesThatAreNoNanosecondsOnArrival)
{
  Stream onArrival(StreamTimes::Arrival, [] { return start; });
  for (const char* const time : {"1700000000", "1700000000000", "1700000000000000"})
  {
    const json bad = json::parse(onArrival.answer(std::string("{\"time\":") + time + ",\"person\":3}"));
    EXPECT_EQ("time", bad["error"]["field"]) << time;
  }
}

TEST_F(StreamTest, RefusesScoresInPercent)
{
  const json bad =
      answer(R"({"time":1577836801000000000,"person":3,"observation":{"smile":{"value":50,"confidence":1}}})");
  EXPECT_EQ("observation.smile.value", bad["error"]["field"]);
  EXPECT_EQ("expected a number from 0 to 1, found 50; it looks like percent: divide it by 100",
            bad["error"]["message"]);
}

TEST_F(StreamTest, ReportsALineThatIsNotJsonWithoutAField)
{
  for (const char* const text : {"x", "[1,2]", "{\"time\":1", "\xff\xfe", "{\"\xc3\x28\":1}", "{\"time\":1e999}"})
  {
    const json bad = answer(text);
    EXPECT_FALSE(bad["error"].contains("field")) << text;
    EXPECT_FALSE(bad["error"]["message"].get<std::string>().empty()) << text;
  }
}

TEST_F(StreamTest, RefusesALineThatIsTooLong)
{
  answer(lineOf(entryAt(0.)));
  const json bad = json::parse(stream.answerToLongLine(1000));
  EXPECT_EQ(2, bad["line"]);
  EXPECT_EQ("is longer than 1000 bytes", bad["error"]["message"]);
}

TEST_F(StreamTest, ChangesNothingByALineThatItRefuses)
{
  const json bad = answer(R"({"time":1577836801000000000,"start":[{"scope":"s"}],"stop":["s",1]})");
  EXPECT_TRUE(bad.contains("error"));
  KV::recordings::Step stop = entryAt(2.);
  stop.scopeStops = {"s"};
  EXPECT_EQ("error", answer(lineOf(stop))["verdicts"][0]["verdict"]);
}

}  // namespace
