#include "librecordings/bits.hpp"
#include "librecordings/support.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>

namespace
{
using support::secondsOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class TidyCsv : public support::RecordingTest
{
protected:
  /// Returns the one step of a file with all columns, of one row at 0 s about person 1.
  KV::recordings::Step entryOf(const std::string& reading, const std::string& cells) const
  {
    const auto contents = read(allColumns + "0,1," + reading + "," + cells + "\n");
    EXPECT_EQ("", contents.fatal);
    EXPECT_THAT(contents.badLines, IsEmpty());
    EXPECT_EQ(1u, contents.entries.size()) << reading;
    return contents.entries.empty() ? KV::recordings::Step() : contents.entries.front();
  }

  const std::string allColumns = "time,person,reading,value,confidence,yaw,pitch,roll,valence,lifetime,x,y,samples\n";
};

TEST_F(TidyCsv, HoldsAReadingInEachRow)
{
  const auto contents = read(
      "time,person,reading,value,confidence\n"
      "0.5,3,smile,0.25,0.5\n"
      "1.75,4,asrEmotion,-1,\n");
  EXPECT_THAT(contents.badLines, IsEmpty());
  ASSERT_EQ(2u, contents.entries.size());
  const auto& smile = contents.entries[0];
  EXPECT_EQ(3, smile.person.value());
  EXPECT_TRUE(smile.seen);
  EXPECT_DOUBLE_EQ(0.5, secondsOf(smile));
  EXPECT_EQ(smile.time, smile.observation.smile.value().time);
  EXPECT_FLOAT_EQ(0.25f, smile.observation.smile.value().value.value);
  EXPECT_FLOAT_EQ(0.5f, smile.observation.smile.value().value.confidence);
  EXPECT_FLOAT_EQ(-1.f, contents.entries[1].observation.asrEmotion.value().value);
  EXPECT_EQ(4, contents.entries[1].person.value());
}

TEST_F(TidyCsv, CountsPersonsWhoHaveNames)
{
  const auto contents = read("time,person,reading,value\n0,anna,smile,1\n0,01_ben,smile,1\n1,anna,smile,1\n");
  EXPECT_THAT(contents.badLines, IsEmpty());
  ASSERT_EQ(3u, contents.entries.size());
  EXPECT_EQ(0, contents.entries[0].person.value());
  EXPECT_EQ("anna", contents.entries[0].personName);
  EXPECT_EQ(1, contents.entries[1].person.value());
  EXPECT_EQ("01_ben", contents.entries[1].personName);
  EXPECT_EQ("anna", contents.entries[2].personName);
  EXPECT_EQ("", read("time,person,reading,value\n0,3,smile,1\n").entries.at(0).personName);
}

TEST_F(TidyCsv, MakesOneStepOfTheRowsOfATimeAndAPerson)
{
  const auto contents = read(
      "time,person,reading,value\n"
      "1,8,voiceEmotion.joy,0.75\n"
      "1,3,speaking,true\n"
      "1.0,8,voiceEmotion.calm,0.25\n"
      "1,8,asrEmotion,1\n"
      "2,8,asrEmotion,1\n");
  ASSERT_EQ(3u, contents.entries.size());
  EXPECT_EQ(3, contents.entries[0].person.value());
  const auto& step = contents.entries[1];
  EXPECT_EQ(8, step.person.value());
  EXPECT_FLOAT_EQ(0.75f, step.observation.voiceEmotion.value().value.joy().value);
  EXPECT_FLOAT_EQ(0.25f, step.observation.voiceEmotion.value().value.calm().value);
  EXPECT_FLOAT_EQ(0.f, step.observation.voiceEmotion.value().value.anger().confidence);
  EXPECT_TRUE(step.observation.asrEmotion);
  EXPECT_DOUBLE_EQ(2., secondsOf(contents.entries[2]));
}

// Every reading, with its name in JSON Lines.

struct SameAsJson
{
  const char* name;
  const char* reading;
  const char* cells;  // value,confidence,yaw,pitch,roll,valence,lifetime,x,y,samples
  const char* json;
};

class TidyReading : public TidyCsv, public ::testing::WithParamInterface<SameAsJson>
{};

TEST_P(TidyReading, SaysWhatTheSameReadingSaysInJsonLines)
{
  const auto entry = entryOf(GetParam().reading, GetParam().cells);
  const auto expected =
      read("{\"time\":1577836800000000000,\"person\":1,\"observation\":{" + std::string(GetParam().json) + "}}\n");
  ASSERT_EQ(1u, expected.entries.size());
  EXPECT_EQ(support::Bits::of(expected.entries.front()), support::Bits::of(entry));
}

INSTANTIATE_TEST_SUITE_P(
    OfAllKinds, TidyReading,
    ::testing::Values(
        SameAsJson{"LookingAtRobot", "lookingAtRobot", "True,,,,,,,,,", R"("lookingAtRobot":{"value":true})"},
        SameAsJson{"HeadHeight", "headHeight", "1.65,,,,,,,,,", R"("headHeight":{"value":1.65})"},
        SameAsJson{"Distance", "distance", "+1.2,,,,,,,,,", R"("distance":{"value":1.2})"},
        SameAsJson{"Gaze", "gaze", ",,3.5,-1,,,,,,", R"("gaze":{"yaw":3.5,"pitch":-1})"},
        SameAsJson{"Smile", "smile", "0.4,0.9,,,,,,,,", R"("smile":{"value":0.4,"confidence":0.9})"},
        SameAsJson{"SureSmile", "smile", "0.4,,,,,,,,,", R"("smile":{"value":0.4,"confidence":1})"},
        SameAsJson{"Calm", "expressions.calm", "0.4,0.9,,,,,,,,",
                   R"("expressions":{"calm":{"value":0.4,"confidence":0.9}})"},
        SameAsJson{"Anger", "expressions.anger", "0.4,0.9,,,,,,,,",
                   R"("expressions":{"anger":{"value":0.4,"confidence":0.9}})"},
        SameAsJson{"Joy", "expressions.joy", "0.4,0.9,,,,,,,,",
                   R"("expressions":{"joy":{"value":0.4,"confidence":0.9}})"},
        SameAsJson{"Sorrow", "expressions.sorrow", "0.4,0.9,,,,,,,,",
                   R"("expressions":{"sorrow":{"value":0.4,"confidence":0.9}})"},
        SameAsJson{"Laughter", "expressions.laughter", "0.4,0.9,,,,,,,,",
                   R"("expressions":{"laughter":{"value":0.4,"confidence":0.9}})"},
        SameAsJson{"Excitement", "expressions.excitement", "0.4,0.9,,,,,,,,",
                   R"("expressions":{"excitement":{"value":0.4,"confidence":0.9}})"},
        SameAsJson{"Surprise", "expressions.surprise", "0.4,0.9,,,,,,,,",
                   R"("expressions":{"surprise":{"value":0.4,"confidence":0.9}})"},
        SameAsJson{"HeadPosture", "headPosture", ",,-4.5,2,1,,,,,", R"("headPosture":{"yaw":-4.5,"pitch":2,"roll":1})"},
        SameAsJson{"Gender", "gender", "1,0.6,,,,,,,,", R"("gender":{"value":true,"confidence":0.6})"},
        SameAsJson{"Age", "age", "33.0,0.5,,,,,,,,", R"("age":{"value":33,"confidence":0.5})"},
        SameAsJson{"FaceDetected", "faceDetected", "false,,,,,,,,,", R"("faceDetected":{"value":false})"},
        SameAsJson{"VoiceCalm", "voiceEmotion.calm", "0.7,0.4,,,,,,,,",
                   R"("voiceEmotion":{"calm":{"value":0.7,"confidence":0.4}})"},
        SameAsJson{"VoiceAnger", "voiceEmotion.anger", "0.7,0.4,,,,,,,,",
                   R"("voiceEmotion":{"anger":{"value":0.7,"confidence":0.4}})"},
        SameAsJson{"VoiceJoy", "voiceEmotion.joy", "0.7,0.4,,,,,,,,",
                   R"("voiceEmotion":{"joy":{"value":0.7,"confidence":0.4}})"},
        SameAsJson{"VoiceSorrow", "voiceEmotion.sorrow", "0.7,0.4,,,,,,,,",
                   R"("voiceEmotion":{"sorrow":{"value":0.7,"confidence":0.4}})"},
        SameAsJson{"VoiceLaughter", "voiceEmotion.laughter", "0.7,0.4,,,,,,,,",
                   R"("voiceEmotion":{"laughter":{"value":0.7,"confidence":0.4}})"},
        SameAsJson{"VoiceExcitement", "voiceEmotion.excitement", "0.7,0.4,,,,,,,,",
                   R"("voiceEmotion":{"excitement":{"value":0.7,"confidence":0.4}})"},
        SameAsJson{"Speech", "asrEmotion", "-0.5,1,,,,,,,,", R"("asrEmotion":{"value":-0.5})"},
        SameAsJson{"Touch", "touchEmotion", "-2,,,,,,,,,", R"("touchEmotion":{"value":-2})"},
        SameAsJson{"Context", "contextEmotion", ",,,,,-1,2.5,,,", R"("contextEmotion":{"valence":-1,"lifetime":2.5})"},
        SameAsJson{"Speaking", "speaking", "0,,,,,,,,,", R"("speaking":{"value":false})"},
        SameAsJson{"RobotHead", "robotHeadPosture", ",,10,5,,,,,,", R"("robotHeadPosture":{"yaw":10,"pitch":5})"}),
    support::RowName());

TEST_F(TidyCsv, HoldsFacialPointsOneByOne)
{
  const auto contents = read(
      "time,reading,x,y,confidence\n"
      "0,facialPoints.0,297.5,186,0.9\n"
      "0,facialPoints.11,333.5,260.5,\n");
  ASSERT_EQ(1u, contents.entries.size());
  const KV::FacialPoints& points = contents.entries.front().observation.facialPoints.value().value;
  EXPECT_FLOAT_EQ(297.5f, points.facialPoint(KV::FacialPoint0).value.first);
  EXPECT_FLOAT_EQ(186.f, points.facialPoint(KV::FacialPoint0).value.second);
  EXPECT_FLOAT_EQ(0.9f, points.facialPoint(KV::FacialPoint0).confidence);
  EXPECT_FLOAT_EQ(260.5f, points.facialPoint(KV::FacialPoint11).value.second);
  EXPECT_FLOAT_EQ(1.f, points.facialPoint(KV::FacialPoint11).confidence);
  EXPECT_FLOAT_EQ(0.f, points.facialPoint(KV::FacialPoint5).confidence);
}

TEST_F(TidyCsv, ReportsWhoWasNotSeen)
{
  EXPECT_FALSE(entryOf("seen", "false,,,,,,,,,").seen);
  EXPECT_TRUE(entryOf("seen", "true,,,,,,,,,").seen);
}

TEST_F(TidyCsv, StartsScopesBeforeEverythingOfATimeAndStopsThemAfter)
{
  const auto contents = read(
      "time,person,reading,value,samples\n"
      "1,,stop,greeting,\n"
      "1,5,speaking,1,\n"
      "1,,start,talk,20\n"
      "1,,start,all,\n"
      "1,4,speaking,1,\n"
      "1,,ambiance.activity,0.25,\n"
      "1,,ambiance.movements,3,\n"
      "2,,stop,talk,\n");
  ASSERT_EQ(3u, contents.entries.size());
  const auto& first = contents.entries[0];
  EXPECT_EQ(4, first.person.value());
  ASSERT_EQ(2u, first.scopeStarts.size());
  EXPECT_EQ("talk", first.scopeStarts[0].name);
  EXPECT_EQ(20, first.scopeStarts[0].samples);
  EXPECT_EQ("all", first.scopeStarts[1].name);
  EXPECT_EQ(-1, first.scopeStarts[1].samples);
  EXPECT_FLOAT_EQ(0.25f, first.ambianceActivity.value());
  EXPECT_EQ(3, first.movements);
  EXPECT_THAT(first.scopeStops, IsEmpty());
  EXPECT_EQ(5, contents.entries[1].person.value());
  EXPECT_THAT(contents.entries[1].scopeStops, ElementsAre("greeting"));
  EXPECT_FALSE(contents.entries[2].person);
  EXPECT_THAT(contents.entries[2].scopeStops, ElementsAre("talk"));
}

TEST_F(TidyCsv, NeedsNoPersonWhereThereIsOne)
{
  const auto contents = read("time,reading,value\n0,speaking,1\n");
  EXPECT_EQ(0, contents.entries.front().person.value());
  EXPECT_THAT(contents.description[1], ::testing::HasSubstr("all rows are person 0, since there is no column person"));
}

TEST_F(TidyCsv, CountsTimesFromTheStartOrSince1970)
{
  const auto fromTheStart = read("time,reading,value\n12.5,speaking,1\n");
  EXPECT_DOUBLE_EQ(12.5, secondsOf(fromTheStart.entries.front()));
  EXPECT_FALSE(fromTheStart.isDated);
  const auto since1970 = read("time,reading,value\n1700000000.25,speaking,1\n");
  EXPECT_EQ(1700000000250000000, support::nanosecondsOf(since1970.entries.front().time));
  EXPECT_THAT(since1970.description[1], StartsWith("times in seconds since 1970;"));
  EXPECT_TRUE(since1970.isDated);
}

// In the form of pandas: an index without a name, NaN or nothing for unknown values, whole numbers with a fraction.
TEST_F(TidyCsv, TakesAPauseOfAMonth)
{
  EXPECT_DOUBLE_EQ(3e6, support::secondsOf(read("time,reading,value\n0,smile,1\n3e6,smile,1\n").entries.at(1)));
}

TEST_F(TidyCsv, TakesWhatPandasWrites)
{
  const auto contents = read(
      ",time,person,reading,value,yaw,pitch\r\n"
      "0,0.0,1.0,speaking,True,,\r\n"
      "1,0.5,1.0,smile,,,\r\n"
      "2,0.5,1.0,gaze,NaN,3.0,4.0\r\n"
      "3,1e1,1.0,touchEmotion,1.0,,\r\n");
  EXPECT_THAT(contents.badLines, IsEmpty());
  EXPECT_THAT(contents.warnings, IsEmpty());
  ASSERT_EQ(3u, contents.entries.size());
  EXPECT_TRUE(contents.entries[0].observation.speaking.value().value);
  EXPECT_FALSE(contents.entries[1].observation.smile);
  EXPECT_TRUE(contents.entries[1].observation.gaze);
  EXPECT_EQ(1, contents.entries[2].observation.touchEmotion.value().value);
  EXPECT_DOUBLE_EQ(10., secondsOf(contents.entries[2]));
}

TEST_F(TidyCsv, ReportsNothingOfAPersonWithoutReadings)
{
  EXPECT_THAT(read("time,person,reading,value\n0,1,smile,\n").entries, IsEmpty());
}

TEST_F(TidyCsv, WarnsOfColumnsThatItDoesNotRead)
{
  EXPECT_THAT(read("time,reading,value,confidense,note\n0,smile,1,0.5,x\n").warnings,
              ElementsAre("columns that are not read: confidense, note"));
}

TEST_F(TidyCsv, ContinuesAfterABadRowWithoutLosingTheOthersOfItsTime)
{
  const auto contents = read(
      "time,reading,value\n"
      "0,voiceEmotion.joy,0.5\n"
      "0,voiceEmotion.calm,much\n"
      "0,voiceEmotion.anger,0.25\n");
  EXPECT_EQ(1u, contents.badLines.size());
  ASSERT_EQ(1u, contents.entries.size());
  const KV::VoiceEmotion& voice = contents.entries.front().observation.voiceEmotion.value().value;
  EXPECT_FLOAT_EQ(0.5f, voice.joy().value);
  EXPECT_FLOAT_EQ(0.25f, voice.anger().value);
  EXPECT_FLOAT_EQ(0.f, voice.calm().confidence);
}

struct BadTidyCase
{
  const char* name;
  const char* text;
  const char* error;  // after the name of the file
};

TEST_F(TidyCsv, TakesNumbersALittleBeyondTheirRange)
{
  const support::Contents found =
      read("time,reading,value,yaw,pitch\n0,smile,1.2,,\n0,gaze,,190,-181\n0,distance,-0.1,,\n");
  EXPECT_EQ("", found.fatal);
  EXPECT_THAT(found.badLines, testing::IsEmpty());
}

class BadTidyCsv : public TidyCsv, public ::testing::WithParamInterface<BadTidyCase>
{};

TEST_P(BadTidyCsv, IsRefusedWithItsLineAndColumn)
{
  EXPECT_EQ(GetParam().error, errorOf(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    OfAllKinds, BadTidyCsv,
    ::testing::Values(
        BadTidyCase{"NoRows", "time,reading,value\n", "1: there is no row below the header"},
        BadTidyCase{"DoubledColumn", "time,reading,value,value\n0,smile,1,1\n", "1: value: this column is there twice"},
        BadTidyCase{"Semicolons", "time;reading;value\n0;smile;1\n",
                    "1: the columns are separated by semicolons; expected commas, and numbers with a decimal point"},
        BadTidyCase{"TooFewFields", "time,reading,value\n0,smile\n0,smile,1\n",
                    "2: 2 fields, expected 3 as in the header"},
        BadTidyCase{"Cut", "time,reading,value\n0,smile,1\n1,smi",
                    "3: 2 fields, expected 3 as in the header; the last line is not complete: the file may be cut"},
        BadTidyCase{"UnknownReading", "time,reading,value\n0,smiling,1\n", "2: reading: there is no reading 'smiling'"},
        BadTidyCase{"GroupInsteadOfScore", "time,reading,value\n0,voiceEmotion,1\n",
                    "2: reading: there is no reading 'voiceEmotion'"},
        BadTidyCase{"NoTime", "time,reading,value\n,smile,1\n", "2: time: is missing"},
        BadTidyCase{"TimeWithoutNumber", "time,reading,value\nsoon,smile,1\n",
                    "2: time: expected a number, found 'soon'"},
        BadTidyCase{"TimeBeyondTheClock", "time,reading,value\n1e11,smile,1\n",
                    "2: time: expected seconds, from the start of the recording or since 1970, found '1e11'"},
        BadTidyCase{"ATimeThatIsNoNumber", "time,reading,value\n-nan,smile,1\n",
                    "2: time: expected seconds, found '-nan'"},
        BadTidyCase{"Nanoseconds", "time,reading,value\n1577836800000000000,smile,1\n",
                    "2: time: expected seconds, from the start of the recording or since 1970, found "
                    "'1577836800000000000'; it looks like nanoseconds: divide it by 1000000000"},
        BadTidyCase{"Microseconds", "time,reading,value\n1577836800000000,smile,1\n",
                    "2: time: expected seconds, from the start of the recording or since 1970, found "
                    "'1577836800000000'; it looks like microseconds: divide it by 1000000"},
        BadTidyCase{"Milliseconds", "time,reading,value\n1577836800000,smile,1\n",
                    "2: time: expected seconds, from the start of the recording or since 1970, found "
                    "'1577836800000'; it looks like milliseconds: divide it by 1000"},
        BadTidyCase{"NanosecondsFromTheStart", "time,reading,value\n0,smile,1\n33333333,smile,1\n",
                    "3: time: is 33333333 s after the one before; expected seconds; it looks like nanoseconds: "
                    "divide it by 1000000000"},
        BadTidyCase{"TimeThatIsNone", "time,reading,value\n9e300,smile,1\n",
                    "2: time: expected seconds, from the start of the recording or since 1970, found '9e300'"},
        BadTidyCase{
            "Percent", "time,reading,value\n0,expressions.joy,80\n",
            "2: value: expressions.joy of 80 is far from its range, 0 to 1; it looks like percent: divide it by "
            "100"},
        BadTidyCase{
            "ConfidenceInPercent", "time,reading,value,confidence\n0,smile,0.5,95\n",
            "2: confidence: smile of 95 is far from its range, 0 to 1; it looks like percent: divide it by 100"},
        BadTidyCase{"Byte", "time,reading,value\n0,smile,200\n",
                    "2: value: smile of 200 is far from its range, 0 to 1; it looks like a byte: divide it by 255"},
        BadTidyCase{
            "Millimetres", "time,reading,value\n0,distance,900\n",
            "2: value: distance of 900 is far from its range, 0 to 100 m; it looks like millimetres: divide it by "
            "1000"},
        BadTidyCase{"NoAngle", "time,reading,yaw,pitch\n0,gaze,3600,0\n",
                    "2: yaw: gaze of 3600 is far from its range, -180 to 180 deg"},
        BadTidyCase{"TimeBackwards", "time,reading,value\n1,smile,1\n0.5,smile,1\n",
                    "3: time: time runs backwards, expected the rows in the order of their times"},
        BadTidyCase{"TwoKindsOfTime", "time,reading,value\n1,smile,1\n1700000000,smile,1\n",
                    "3: time: some rows count from the start of the recording, others since 1970"},
        BadTidyCase{"NoPerson", "time,person,reading,value\n0,,smile,1\n", "2: person: is missing"},
        BadTidyCase{"HalfAPerson", "time,person,reading,value\n0,1.5,smile,1\n",
                    "2: person: expected a whole number, found '1.5'"},
        BadTidyCase{"NameBesideNumbers", "time,person,reading,value\n0,1,smile,1\n0,anna,smile,1\n",
                    "3: person: expected a whole number as in the rows before, found 'anna'"},
        BadTidyCase{"PersonOfAScope", "time,person,reading,value\n0,1,start,talk\n",
                    "2: person: expected no person, since the row is about the room or a scope"},
        BadTidyCase{"ScopeWithoutName", "time,reading,value\n0,start,\n", "2: value: is missing"},
        BadTidyCase{"NoNumber", "time,reading,value\n0,smile,wide\n", "2: value: expected a number, found 'wide'"},
        BadTidyCase{"Infinite", "time,reading,value\n0,smile,inf\n", "2: value: expected a number, found 'inf'"},
        BadTidyCase{"NoTruth", "time,reading,value\n0,speaking,perhaps\n",
                    "2: value: expected true or false, found 'perhaps'"},
        BadTidyCase{"HalfATouch", "time,reading,value\n0,touchEmotion,0.5\n",
                    "2: value: expected a whole number, found '0.5'"},
        BadTidyCase{"NegativeAge", "time,reading,value\n0,age,-3\n", "2: value: expected a whole number, found '-3'"},
        BadTidyCase{"NegativeMovements", "time,reading,value\n0,ambiance.movements,-3\n",
                    "2: value: expected a whole number, found '-3'"},
        BadTidyCase{"HalfADirection", "time,reading,yaw,pitch\n0,gaze,1,\n", "2: pitch: is missing"},
        BadTidyCase{"DirectionWithoutItsColumn", "time,reading,yaw\n0,gaze,1\n", "2: pitch: is missing"},
        BadTidyCase{"ValueOfADirection", "time,reading,value,yaw,pitch\n0,gaze,1,1,1\n",
                    "2: value: does not belong to the reading gaze"},
        BadTidyCase{"Twice", "time,reading,value\n0,smile,1\n0,smile,1\n",
                    "3: reading: smile is there twice at this time"},
        BadTidyCase{"NotSeenAndYetObserved", "time,reading,value\n0,smile,1\n0,seen,false\n",
                    "3: reading: person 0 is not seen at this time, and yet observed"}),
    support::RowName());

TEST_F(TidyCsv, SaysWhatItLacksToBeRead)
{
  const auto fatalOf = [this](const std::string& text) {
    return support::contentsOf(folder.write("recording", text), "tidy").fatal;
  };
  EXPECT_EQ(folder.path("recording") + ": the file is empty", fatalOf(""));
  EXPECT_EQ(folder.path("recording") + ":1: there is no column time", fatalOf("reading,value\nsmile,1\n"));
  EXPECT_EQ(folder.path("recording") + ":1: there is no column reading", fatalOf("time,value\n0,1\n"));
}

}  // namespace
