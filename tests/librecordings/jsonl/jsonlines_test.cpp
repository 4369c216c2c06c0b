#include "librecordings/bits.hpp"
#include "librecordings/randomentries.hpp"
#include "librecordings/support.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/recordings/observationjson.hpp>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <sstream>

namespace
{
using support::Bits;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string written(const KV::recordings::Step& entry)
{
  std::ostringstream stream;
  KV::recordings::JsonLinesWriter(stream).write(entry);
  return stream.str();
}

class JsonLines : public support::RecordingTest
{
protected:
  /// Returns the one step of a recording.
  KV::recordings::Step entryOf(const std::string& line) const
  {
    const auto contents = read(line + "\n");
    EXPECT_EQ("", contents.fatal);
    EXPECT_THAT(contents.badLines, IsEmpty());
    EXPECT_EQ(1u, contents.entries.size());
    return contents.entries.empty() ? KV::recordings::Step() : contents.entries.front();
  }

  float smileOf(const std::string& value) const
  {
    return entryOf(R"({"time":5,"person":1,"observation":{"smile":{"value":)" + value + R"(,"confidence":1}}})")
        .observation.smile.value()
        .value.value;
  }
};

// Reading.

TEST_F(JsonLines, MayHoldATimeAlone)
{
  const auto entry = entryOf(R"({"time":1577836800000000001})");
  EXPECT_EQ(1577836800000000001, support::nanosecondsOf(entry.time));
  EXPECT_FALSE(entry.person);
  EXPECT_TRUE(entry.seen);
  EXPECT_EQ(0, entry.movements);
  EXPECT_FALSE(entry.ambianceActivity);
  EXPECT_TRUE(entry.scopeStarts.empty());
  EXPECT_TRUE(entry.scopeStops.empty());
}

TEST_F(JsonLines, HoldEverythingOfAStep)
{
  const auto entry = entryOf(R"({"time":7,"person":3,"seen":true,"ambiance":{"activity":0.25,"movements":3},)"
                             R"("start":[{"scope":"greeting","samples":5},{"scope":"all"}],"stop":["a","b"]})");
  EXPECT_EQ(3, entry.person.value());
  EXPECT_FLOAT_EQ(0.25f, entry.ambianceActivity.value());
  EXPECT_EQ(3, entry.movements);
  ASSERT_EQ(2u, entry.scopeStarts.size());
  EXPECT_EQ("greeting", entry.scopeStarts[0].name);
  EXPECT_EQ(5, entry.scopeStarts[0].samples);
  EXPECT_EQ("all", entry.scopeStarts[1].name);
  EXPECT_EQ(-1, entry.scopeStarts[1].samples);
  EXPECT_THAT(entry.scopeStops, ElementsAre("a", "b"));
}

TEST_F(JsonLines, KeepTheNameOfAPerson)
{
  const std::string line = R"({"time":7,"person":3,"name":"Zo\u00eb \"Z\""})";
  const auto entry = entryOf(line);
  EXPECT_EQ("Zo\xc3\xab \"Z\"", entry.personName);
  EXPECT_EQ(entry.personName, entryOf(written(entry)).personName);
  EXPECT_EQ("", entryOf(R"({"time":7,"person":3})").personName);
}

TEST_F(JsonLines, HaveAPersonWhoWasNotSeen)
{
  const auto entry = entryOf(R"({"time":7,"person":-3,"seen":false})");
  EXPECT_EQ(-3, entry.person.value());
  EXPECT_FALSE(entry.seen);
}

TEST_F(JsonLines, HoldEveryReadingUnderItsOwnName)
{
  const auto entry = entryOf(
      R"({"time":7,"person":1,"observation":{)"
      R"("lookingAtRobot":{"value":true},"headHeight":{"value":1.5},"distance":{"value":0.75},)"
      R"("gaze":{"yaw":1,"pitch":2},"smile":{"value":0.25,"confidence":0.5},)"
      R"("expressions":{"calm":{"value":0.125,"confidence":1},"surprise":{"value":0.5,"confidence":0.75}},)"
      R"("headPosture":{"yaw":1,"pitch":2,"roll":3},"gender":{"value":true,"confidence":0.5},)"
      R"("age":{"value":33,"confidence":0.5},"faceDetected":{"value":false},)"
      R"("facialPoints":{"points":[[0,1,0.5],[1,1,0],[2,1,0],[3,1,0],[4,1,0],[5,1,0],[6,1,0],[7,1,0],[8,1,0],[9,1,0],)"
      R"([10,1,0],[11,12,0.75]]},"voiceEmotion":{"anger":{"value":0.5,"confidence":0.25}},)"
      R"("asrEmotion":{"value":-0.5},"touchEmotion":{"value":-2},"contextEmotion":{"valence":-1,"lifetime":2.5},)"
      R"("speaking":{"value":true},"robotHeadPosture":{"yaw":4,"pitch":5}}})");
  const auto& observation = entry.observation;
  EXPECT_TRUE(observation.lookingAtRobot.value().value);
  EXPECT_FLOAT_EQ(1.5f, observation.headHeight.value().value);
  EXPECT_FLOAT_EQ(0.75f, observation.distance.value().value);
  EXPECT_FLOAT_EQ(1.f, observation.gaze.value().value.yaw);
  EXPECT_FLOAT_EQ(2.f, observation.gaze.value().value.pitch);
  EXPECT_FLOAT_EQ(0.25f, observation.smile.value().value.value);
  EXPECT_FLOAT_EQ(0.5f, observation.smile.value().value.confidence);
  EXPECT_FLOAT_EQ(0.125f, observation.expressions.value().value.calm.value);
  EXPECT_FLOAT_EQ(0.75f, observation.expressions.value().value.surprise.confidence);
  EXPECT_FLOAT_EQ(0.f, observation.expressions.value().value.joy.confidence);
  EXPECT_FLOAT_EQ(1.f, observation.headPosture.value().value.yaw());
  EXPECT_FLOAT_EQ(2.f, observation.headPosture.value().value.pitch());
  EXPECT_FLOAT_EQ(3.f, observation.headPosture.value().value.roll());
  EXPECT_TRUE(observation.gender.value().value.value);
  EXPECT_EQ(33u, observation.age.value().value.value);
  EXPECT_FALSE(observation.faceDetected.value().value);
  EXPECT_FLOAT_EQ(12.f, observation.facialPoints.value().value.facialPoint(KV::FacialPoint11).value.second);
  EXPECT_FLOAT_EQ(0.75f, observation.facialPoints.value().value.facialPoint(KV::FacialPoint11).confidence);
  EXPECT_FLOAT_EQ(0.5f, observation.voiceEmotion.value().value.anger().value);
  EXPECT_FLOAT_EQ(-0.5f, observation.asrEmotion.value().value);
  EXPECT_EQ(-2, observation.touchEmotion.value().value);
  EXPECT_EQ(-1, observation.contextEmotion.value().value.valence);
  EXPECT_FLOAT_EQ(2.5f, observation.contextEmotion.value().value.lifetime);
  EXPECT_TRUE(observation.speaking.value().value);
  EXPECT_FLOAT_EQ(4.f, observation.robotHeadPosture.value().value.yaw);
  EXPECT_FLOAT_EQ(5.f, observation.robotHeadPosture.value().value.pitch);
}

TEST_F(JsonLines, GiveAReadingTheTimeOfTheLineOrItsOwn)
{
  const auto entry = entryOf(R"({"person":1,"observation":{"distance":{"value":1},"speaking":{"time":3,"value":true}},)"
                             R"("time":7})");
  EXPECT_EQ(support::timeOf(7), entry.observation.distance.value().time);
  EXPECT_EQ(support::timeOf(3), entry.observation.speaking.value().time);
}

TEST_F(JsonLines, HoldNumbersThatJsonHasNoFormFor)
{
  EXPECT_TRUE(std::isnan(smileOf(R"("NaN")")));
  EXPECT_EQ(std::numeric_limits<float>::infinity(), smileOf(R"("Infinity")"));
  EXPECT_EQ(-std::numeric_limits<float>::infinity(), smileOf(R"("-Infinity")"));
}

TEST_F(JsonLines, AreRoundedToSinglePrecisionOnce)
{
  EXPECT_EQ(7.038531e-26f, smileOf("7.038531e-26"));
  EXPECT_EQ(16777216.f, smileOf("16777217"));
  EXPECT_TRUE(std::signbit(smileOf("-0.0")));
}

TEST_F(JsonLines, MayBeEmptyOrBlank)
{
  const auto contents = read("\n{\"time\":1}\r\n  \n\n{\"time\":2}");
  EXPECT_THAT(contents.badLines, IsEmpty());
  EXPECT_EQ(2u, contents.entries.size());
}

TEST_F(JsonLines, AreReadCompressedToo)
{
  EXPECT_EQ(1u, support::contentsOf(folder.writeCompressed("f.jsonl.gz", "{\"time\":1}\n")).entries.size());
}

struct BadLineCase
{
  const char* name;
  const char* line;
  const char* message;
};

void PrintTo(const BadLineCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class BadJsonLine : public JsonLines, public ::testing::WithParamInterface<BadLineCase>
{};

TEST_P(BadJsonLine, IsNamed)
{
  const auto contents = read(std::string("{\"time\":1}\n") + GetParam().line + "\n{\"time\":9}\n");
  EXPECT_EQ(2u, contents.entries.size()) << "the lines around it";
  EXPECT_THAT(contents.badLines, ElementsAre(folder.path("recording") + ":2: " + GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    With, BadJsonLine,
    ::testing::Values(
        BadLineCase{"AnUnknownMember", R"({"time":2,"persn":1})",
                    "persn: there is no such member; expected time, dated, start, ambiance, person, name, seen, "
                    "observation, stop"},
        BadLineCase{
            "AnUnknownReading", R"({"time":2,"person":1,"observation":{"smil":{"value":1}}})",
            "observation.smil: there is no such member; expected lookingAtRobot, headHeight, distance, gaze, "
            "smile, expressions, headPosture, gender, age, faceDetected, facialPoints, voiceEmotion, asrEmotion, "
            "touchEmotion, contextEmotion, speaking, robotHeadPosture"},
        BadLineCase{"AnUnknownMemberOfAReading",
                    R"({"time":2,"person":1,"observation":{"distance":{"value":1,"unit":"m"}}})",
                    "observation.distance.unit: there is no such member; expected time, value"},
        BadLineCase{"AnUnknownExpression", R"({"time":2,"person":1,"observation":{"voiceEmotion":{"surprise":{}}}})",
                    "observation.voiceEmotion.surprise: there is no such member; expected time, calm, anger, joy, "
                    "sorrow, laughter, excitement"},
        BadLineCase{"AMemberTwice", R"({"time":2,"person":1,"time":3})", "time: this member is there twice"},
        BadLineCase{"AReadingTwice",
                    R"({"time":2,"person":1,"observation":{"distance":{"value":1},"distance":{"value":2}}})",
                    "distance: this member is there twice"},
        BadLineCase{"NoTime", R"({"person":1})", "time: is missing"},
        BadLineCase{"ATimeWithAFraction", R"({"time":2.5})",
                    "time: expected a whole number from -9223372036854775808 to 9223372036854775807, found '2.5'"},
        BadLineCase{"ATimeThatIsTooLarge", R"({"time":9223372036854775808})",
                    "time: expected a whole number from -9223372036854775808 to 9223372036854775807, found "
                    "'9223372036854775808'"},
        BadLineCase{"ATimeBefore1970", R"({"time":-1})", "time: is before 1970; such times mean \"never\""},
        BadLineCase{"ATimeThatRunsBackwards", R"({"time":0})",
                    "time: time runs backwards, expected the lines in the order of their times"},
        BadLineCase{"AMissingMember", R"({"time":2,"person":1,"observation":{"smile":{"value":1}}})",
                    "observation.smile.confidence: is missing"},
        BadLineCase{"ATextAsNumber", R"({"time":2,"person":1,"observation":{"smile":{"value":"0.5","confidence":1}}})",
                    R"(observation.smile.value: expected a number, "NaN", "Infinity" or "-Infinity", found '"0.5"')"},
        BadLineCase{"NullAsNumber", R"({"time":2,"person":1,"observation":{"distance":{"value":null}}})",
                    R"(observation.distance.value: expected a number, "NaN", "Infinity" or "-Infinity", found 'null')"},
        BadLineCase{"ANumberAsTruth", R"({"time":2,"person":1,"seen":1})", "seen: expected true or false, found '1'"},
        BadLineCase{"ANumberAsReading", R"({"time":2,"person":1,"observation":{"distance":1}})",
                    "observation.distance: expected an object, found '1'"},
        BadLineCase{"APersonThatIsTooLarge", R"({"time":2,"person":2147483648})",
                    "person: expected a whole number from -2147483648 to 2147483647, found '2147483648'"},
        BadLineCase{"APersonThatIsTooSmall", R"({"time":2,"person":-2147483649})",
                    "person: expected a whole number from -2147483648 to 2147483647, found '-2147483649'"},
        BadLineCase{"ANegativeAge", R"({"time":2,"person":1,"observation":{"age":{"value":-1,"confidence":1}}})",
                    "observation.age.value: expected a whole number from 0 to 4294967295, found '-1'"},
        BadLineCase{"TooFewPoints", R"({"time":2,"person":1,"observation":{"facialPoints":{"points":[[1,2,3]]}}})",
                    "observation.facialPoints.points: expected an array of 12 elements, found '[[1,2,3]]'"},
        BadLineCase{"ABrokenPoint",
                    R"({"time":2,"person":1,"observation":{"facialPoints":{"points":)"
                    R"([[1,2,3],[1,2],0,0,0,0,0,0,0,0,0,0]}}})",
                    "observation.facialPoints.points[1]: expected an array of 3 elements, found '[1,2]'"},
        BadLineCase{"ATextAsStops", R"({"time":2,"stop":"greeting"})", "stop: expected an array, found '\"greeting\"'"},
        BadLineCase{"ANumberAsStop", R"({"time":2,"stop":["greeting",2]})", "stop[1]: expected a text, found '2'"},
        BadLineCase{"AStartWithoutScope", R"({"time":2,"start":[{"samples":2}]})", "start[0].scope: is missing"},
        BadLineCase{"NegativeMovements", R"({"time":2,"ambiance":{"movements":-1}})",
                    "ambiance.movements: expected no negative number, found -1"},
        BadLineCase{"AnObservationOfNobody", R"({"time":2,"observation":{"distance":{"value":1}}})",
                    "person: is missing: whose observation is it?"},
        BadLineCase{"NobodysName", R"({"time":2,"name":"anna"})", "person: is missing: whose name is it?"},
        BadLineCase{"ANumberAsName", R"({"time":2,"person":1,"name":1})", "name: expected a text, found '1'"},
        BadLineCase{"NobodyNotSeen", R"({"time":2,"seen":false})", "person: is missing: who was not seen?"},
        BadLineCase{"AnObservationOfThePersonNotSeen",
                    R"({"time":2,"person":1,"seen":false,"observation":{"distance":{"value":1}}})",
                    "observation: a person who was not seen has no observation"},
        BadLineCase{"NoObject", "[1,2]", "expected a JSON object on one line, found '[1,2]'"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(JsonLines, RefuseWhatIsNoJson)
{
  const auto contents = read("{\"time\":1}\n{\"time\":2,}\n{\"time\":3}}\nnull x\n{'time':5}\n");
  EXPECT_EQ(1u, contents.entries.size());
  ASSERT_EQ(4u, contents.badLines.size());
  EXPECT_THAT(contents.badLines[0], HasSubstr(":2: expected a JSON object on one line, but column 11: syntax error"));
  for (const auto& message : contents.badLines)
    EXPECT_THAT(message, HasSubstr("expected a JSON object on one line, but column"));
}

TEST_F(JsonLines, RefuseNumbersThatSinglePrecisionCannotHold)
{
  const auto contents = read(R"({"time":1,"person":1,"observation":{"distance":{"value":1e39}}})");
  EXPECT_THAT(contents.badLines, ElementsAre(HasSubstr("a number is too large for single precision: ")));
  EXPECT_THAT(contents.badLines, ElementsAre(HasSubstr("1e39")));
}

TEST_F(JsonLines, SayThatTheLastOneMayBeCut)
{
  EXPECT_THAT(read("{\"time\":1}\n{\"time\":2,\"per").badLines,
              ElementsAre(HasSubstr("the last line is not complete: the file may be cut")));
  EXPECT_THAT(read("{\"time\":1}\n{\"time\":2}").badLines, IsEmpty());
}

TEST_F(JsonLines, RefuseWhatIsTooMuchForOneStep)
{
  const std::string message = "is nested too deep, or has too many parts, for one step";
  std::string manyMembers = "{\"time\":1";
  for (int i = 0; i < 100000; ++i)
    manyMembers += ",\"" + std::to_string(i) + "\":0";
  EXPECT_THAT(read(manyMembers + "}").badLines, ElementsAre(HasSubstr(message)));
  EXPECT_THAT(read("{\"time\":1,\"stop\":" + std::string(1000000, '[')).badLines, ElementsAre(HasSubstr(message)));
  std::string manyElements = "{\"time\":1,\"stop\":[\"\"";
  for (int i = 0; i < 100000; ++i)
    manyElements += ",\"\"";
  EXPECT_THAT(read(manyElements + "]}").badLines, ElementsAre(HasSubstr(message)));
}

// Writing.

TEST_F(JsonLines, AreWrittenWithoutWhatGoesWithoutSaying)
{
  KV::recordings::Step entry;
  entry.time = support::timeOf(7);
  EXPECT_EQ("{\"time\":7}\n", written(entry));
  entry.person = 3;
  EXPECT_EQ("{\"time\":7,\"person\":3}\n", written(entry));
  entry.observation.distance.emplace(support::timeOf(7), 0.1f);
  entry.observation.speaking.emplace(support::timeOf(5), false);
  EXPECT_EQ(R"({"time":7,"person":3,"observation":{"distance":{"value":0.1},"speaking":{"time":5,"value":false}}})"
            "\n",
            written(entry));
}

TEST_F(JsonLines, AreWrittenWithTheTextsOfNumbersThatJsonHasNoFormFor)
{
  KV::recordings::Step entry;
  entry.time = support::timeOf(0);
  entry.ambianceActivity = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ("{\"time\":0,\"ambiance\":{\"activity\":\"NaN\"}}\n", written(entry));
  entry.ambianceActivity = -std::numeric_limits<float>::infinity();
  EXPECT_EQ("{\"time\":0,\"ambiance\":{\"activity\":\"-Infinity\"}}\n", written(entry));
}

TEST_F(JsonLines, ReadBackToTheSameBits)
{
  constexpr std::uint32_t seed = 20240229;
  support::RandomEntries random(seed);
  std::vector<KV::recordings::Step> entries;
  std::string text;
  for (int i = 0; i < 2000; ++i)
  {
    entries.push_back(random.next());
    text += written(entries.back());
  }

  const auto contents = read(text);
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  ASSERT_EQ(entries.size(), contents.entries.size());
  std::string textAgain;
  for (std::size_t i = 0; i < entries.size(); ++i)
  {
    ASSERT_EQ(Bits::of(entries[i]), Bits::of(contents.entries[i])) << "seed " << seed << ", step " << i;
    textAgain += written(contents.entries[i]);
  }
  EXPECT_EQ(text, textAgain);
}

TEST_F(JsonLines, SayInTheFirstLineThatTheirDayIsUnknown)
{
  const std::string path =
      folder.write("f", "{\"time\":1577836800000000000,\"dated\":false}\n{\"time\":1577836800100000000}\n");
  const auto reader = KV::recordings::openRecording(path, "", {});
  EXPECT_TRUE(reader->next());
  EXPECT_FALSE(reader->isDated());
  EXPECT_THAT(reader->describe(),
              testing::Contains("times in nanoseconds, of an unknown day; persons by their member person"));
  EXPECT_TRUE(reader->next());
  EXPECT_FALSE(reader->isDated());
}

TEST_F(JsonLines, RefuseToLoseTheirDayInALaterLine)
{
  const std::string path =
      folder.write("f", "{\"time\":1577836800000000000}\n{\"time\":1577836800100000000,\"dated\":false}\n");
  EXPECT_THAT(support::contentsOf(path).badLines,
              ElementsAre(path + ":2: dated: only the first line tells whether the recording has a date"));
}

TEST_F(JsonLines, AreWrittenWithoutADayIfTheStepHasNone)
{
  KV::recordings::Step step;
  step.time = support::timeOf(1577836800000000000);
  EXPECT_EQ("{\"time\":1577836800000000000}\n", written(step));
  step.isDated = false;
  EXPECT_EQ("{\"time\":1577836800000000000,\"dated\":false}\n", written(step));
}

TEST_F(JsonLines, AreRefusedIfTheirTimesAreNoNanoseconds)
{
  EXPECT_EQ(folder.path("f") +
                ":1: time: expected nanoseconds since 1970, found 1700000000; it looks like seconds: "
                "multiply it by 1000000000",
            support::contentsOf(folder.write("f", "{\"time\":1700000000}\n{\"time\":1700000001}\n")).fatal);
  std::string text;
  for (const char* const time : {"0", "1", "2", "3"})
    text += std::string("{\"time\":") + time + ",\"person\":1}\n";
  EXPECT_EQ(folder.path("f") +
                ":4: time: this is the fourth time of person 1 within 3 ns: expected nanoseconds; the "
                "times look like seconds, milliseconds or microseconds",
            support::contentsOf(folder.write("f", text)).fatal);
}

TEST_F(JsonLines, AreRefusedWhereAScoreIsPercent)
{
  const auto errorIn = [this](const std::string& observation) {
    return errorOf("{\"time\":7,\"person\":1,\"observation\":{" + observation + "}}\n");
  };
  const std::string why = "; it looks like percent: divide it by 100";
  EXPECT_EQ("1: observation.smile.value: expected a number from 0 to 1, found 50" + why,
            errorIn(R"("smile":{"value":50,"confidence":1})"));
  EXPECT_EQ("1: observation.smile.confidence: expected a number from 0 to 1, found 95" + why,
            errorIn(R"("smile":{"value":1,"confidence":95})"));
  EXPECT_EQ("1: observation.expressions.joy.value: expected a number from 0 to 1, found 80" + why,
            errorIn(R"("expressions":{"joy":{"value":80,"confidence":1}})"));
  EXPECT_EQ("", errorIn(R"("gaze":{"yaw":80,"pitch":50},"distance":{"value":3},"touchEmotion":{"value":80})"));
  EXPECT_EQ("", errorIn(R"("smile":{"value":1.01,"confidence":1})"));
}

TEST_F(JsonLines, AreRefusedWhereTheTimeOfAReadingIsNoNanoseconds)
{
  const auto contents = read(R"({"time":1700000000000000000,"person":1,)"
                             R"("observation":{"speaking":{"time":1700000000,"value":true}}})"
                             "\n");
  ASSERT_EQ(1u, contents.badLines.size());
  EXPECT_THAT(contents.badLines.front(), HasSubstr("1: observation.speaking.time: expected nanoseconds since 1970"));
}

TEST_F(JsonLines, DescribeThemselvesInTwoLines)
{
  EXPECT_THAT(read("{\"time\":1}\n").description,
              ElementsAre(HasSubstr("angles in degrees"), HasSubstr("nanoseconds")));
}

// Lines of a live stream.

TEST(StreamLine, SetsTheBoundariesThatItNames)
{
  const auto line = KV::recordings::streamLineFromJson(
      R"({"time":1,"boundaries":{"positive":0.1,"negative":-0.2,"confidence":0.3,"lookingAtRobot":0.4,)"
      R"("strictlyLookingAtRobot":0.5,"excited":0.6}})",
      {});
  EXPECT_EQ(0.1f, line.boundaries.positive.value());
  EXPECT_EQ(-0.2f, line.boundaries.negative.value());
  EXPECT_EQ(0.3f, line.boundaries.confidence.value());
  EXPECT_EQ(0.4f, line.boundaries.lookingAtRobot.value());
  EXPECT_EQ(0.5f, line.boundaries.strictlyLookingAtRobot.value());
  EXPECT_EQ(0.6f, line.boundaries.excited.value());

  const auto other = KV::recordings::streamLineFromJson(R"({"time":1,"boundaries":{"excited":0.6}})", {});
  EXPECT_FALSE(other.boundaries.positive);
  EXPECT_EQ(0.6f, other.boundaries.excited.value());
}

}  // namespace
