#include "librecordings/support.hpp"

#include <skeigiot/recordings/labels.hpp>

#include <gmock/gmock.h>

#include <string>
#include <vector>

// The files are made for the tests. Recordings that other people coded are read if they are installed.

namespace
{
using KV::recordings::Labels;
using KV::recordings::LabelSpan;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// A span in a few words: "from..to label [person] (coder) {tier}".
std::string wordsOf(const LabelSpan& span)
{
  const auto number = [](double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
  };
  return number(span.from) + ".." + number(span.to) + " " + span.label + " [" + span.person + "] (" + span.coder +
         ") {" + span.tier + "}";
}

std::vector<std::string> wordsOf(const Labels& labels)
{
  std::vector<std::string> words;
  for (const LabelSpan& span : labels.spans)
    words.push_back(wordsOf(span));
  return words;
}

std::string utf16Of(const std::string& ascii, bool bigEndian)
{
  std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char character : ascii)
  {
    const char unit[] = {bigEndian ? '\0' : character, bigEndian ? character : '\0'};
    bytes.append(unit, 2);
  }
  return bytes;
}

class LabelFile : public ::testing::Test
{
protected:
  Labels read(const std::string& text) const { return KV::recordings::readLabels(folder.write("anna.txt", text)); }

  /// Returns the text of the error after the name of the file.
  std::string errorOf(const std::string& text) const
  {
    try
    {
      read(text);
      return "no error";
    }
    catch (const KV::recordings::Error& error)
    {
      return std::string(error.what()).substr(folder.path("anna.txt").size());
    }
  }

  support::TemporaryFolder folder;
};

// CSV

TEST_F(LabelFile, OfSpansHasOneInEachRow)
{
  const Labels labels = read("start,end,value\n0,1.5,smiling\n2,3,\"a, b \"\"c\"\"\"\n");
  EXPECT_EQ("csv", labels.format);
  EXPECT_THAT(wordsOf(labels), ElementsAre("0..1.5 smiling [] (anna) {}", "2..3 a, b \"c\" [] (anna) {}"));
}

TEST_F(LabelFile, OfSpansHasPersonsCodersAndTiers)
{
  const Labels labels = read("Person;Coder;Tier;Start;End;Label\n3;ben;face;0;1;frown\n");
  EXPECT_THAT(wordsOf(labels), ElementsAre("0..1 frown [3] (ben) {face}"));
}

TEST_F(LabelFile, OfATrackIsSortedByTimeAndLeavesOutMissingValues)
{
  const Labels labels = read("time\tvalue\n1\t0.5\n0\t-0.25\n2\tNA\n");
  ASSERT_EQ(1U, labels.tracks.size());
  EXPECT_EQ("value", labels.tracks[0].quantity);
  EXPECT_EQ("anna", labels.tracks[0].coder);
  ASSERT_EQ(2U, labels.tracks[0].samples.size());
  EXPECT_EQ(0., labels.tracks[0].samples[0].time);
  EXPECT_EQ(-0.25, labels.tracks[0].samples[0].value);
  EXPECT_EQ(0.5, labels.tracks[0].samples[1].value);
}

TEST_F(LabelFile, OfATrackHasSeveralWordsForAMissingValue)
{
  const Labels labels = read("time,value\n0,\n1,na\n2,NaN\n3,None\n4,NULL\n5,0.5\n");
  ASSERT_EQ(1U, labels.tracks.size());
  ASSERT_EQ(1U, labels.tracks[0].samples.size());
  EXPECT_EQ(5., labels.tracks[0].samples[0].time);
}

TEST_F(LabelFile, OfTracksHasOneForEachPersonCoderAndColumn)
{
  const Labels labels =
      read("time,valence,attention,person,coder\n0,0.1,0.9,1,a\n0,0.2,0.8,2,a\n0,0.3,0.7,1,b\n1,0.4,0.6,1,a\n");
  ASSERT_EQ(6U, labels.tracks.size());
  EXPECT_EQ("valence", labels.tracks[0].quantity);
  EXPECT_EQ("attention", labels.tracks[1].quantity);
  EXPECT_EQ("2", labels.tracks[2].person);
  EXPECT_EQ("b", labels.tracks[4].coder);
  EXPECT_EQ(2U, labels.tracks[0].samples.size());
}

TEST_F(LabelFile, OfCsvSaysWhatIsWrongAndWhere)
{
  EXPECT_EQ(":3: end: expected a number, found 'x'", errorOf("start,end,value\n0,1,a\n1,x,b\n"));
  EXPECT_EQ(":2: end: the label ends before it begins", errorOf("start,end,value\n2,1,a\n"));
  EXPECT_EQ(":2: 2 fields, expected 3 as in the header", errorOf("start,end,value\n2,1\n"));
  EXPECT_EQ(":2: value: expected a number, found 'high'", errorOf("time,value\n0,high\n"));
  EXPECT_EQ(":2: time: expected seconds since the start of the recording, found '1e12'",
            errorOf("time,value\n1e12,1\n"));
  EXPECT_THAT(errorOf("time,value\n0,1\n0,2\n"), HasSubstr("value: has two values at 0.000000 s"));
  EXPECT_EQ(":2: a quote is not closed", errorOf("start,end,value\n0,1,\"a\n"));
}

TEST_F(LabelFile, CountsLinesInsideOfQuotes)
{
  EXPECT_EQ(":4: start: expected a number, found 'x'", errorOf("start,end,value\n0,1,\"a\nb\"\nx,1,c\n"));
}

TEST_F(LabelFile, OfCsvMayHaveBlanksBeforeItsFieldsAndPlusSigns)
{
  EXPECT_THAT(wordsOf(read("start, end, value\n+0.5, \t+1, \"a, b\"\n")), ElementsAre("0.5..1 a, b [] (anna) {}"));
  EXPECT_EQ(":2: start: expected a number, found '++1'", errorOf("start,end,value\n++1,2,a\n"));
}

// Audacity

TEST_F(LabelFile, OfAudacityMayHaveEmptyLines)
{
  const Labels labels = read("0\t1\ta\n\n \n2\t3\tb\n");
  EXPECT_EQ("audacity", labels.format);
  EXPECT_THAT(wordsOf(labels), ElementsAre("0..1 a [] (anna) {}", "2..3 b [] (anna) {}"));
  EXPECT_EQ(":3: expected start, end and label between tabs", errorOf("0\t1\ta\n\n2\n"));
}

TEST_F(LabelFile, OfAudacityHasSpansAndPoints)
{
  const Labels labels = read("0.000000\t2.500000\tsmile\n\\\t100.0\t200.0\n3.0\t3.0\ttouch \"it\"\n4\t5\n");
  EXPECT_EQ("audacity", labels.format);
  EXPECT_THAT(wordsOf(labels),
              ElementsAre("0..2.5 smile [] (anna) {}", "3..3 touch \"it\" [] (anna) {}", "4..5  [] (anna) {}"));
}

TEST_F(LabelFile, OfAudacitySaysWhatIsWrongAndWhere)
{
  EXPECT_EQ(":2: expected start, end and label between tabs", errorOf("0\t1\ta\n2\n"));
  EXPECT_EQ(":2: start: expected a number, found 'x'", errorOf("0\t1\ta\nx\t1\ta\n"));
  EXPECT_EQ(":2: end: the label ends before it begins", errorOf("0\t1\ta\n2\t1\ta\n"));
}

// Praat

const std::string longGrid =
    "File type = \"ooTextFile\"\nObject class = \"TextGrid\"\n\nxmin = 0 \nxmax = 4 \ntiers? <exists> \nsize = 2 \n"
    "item []: \n    item [1]:\n        class = \"IntervalTier\" \n        name = \"mood\" \n        xmin = 0 \n"
    "        xmax = 4 \n        intervals: size = 3 \n        intervals [1]:\n            xmin = 0 \n"
    "            xmax = 1.5 \n            text = \"smile \"\"big\"\"\" \n        intervals [2]:\n            xmin = "
    "1.5 \n"
    "            xmax = 3 \n            text = \"\" \n        intervals [3]:\n            xmin = 3 \n            xmax "
    "= 4 \n"
    "            text = \"frown\" \n    item [2]:\n        class = \"TextTier\" \n        name = \"events\" \n"
    "        xmin = 0 \n        xmax = 4 \n        points: size = 1 \n        points [1]:\n            number = 2 \n"
    "            mark = \"clap\" \n";
const std::string shortGrid =
    "File type = \"ooTextFile\"\nObject class = "
    "\"TextGrid\"\n\n0\n4\n<exists>\n2\n\"IntervalTier\"\n\"mood\"\n0\n4\n3\n"
    "0\n1.5\n\"smile \"\"big\"\"\"\n1.5\n3\n\"\"\n3\n4\n\"frown\"\n\"TextTier\"\n\"events\"\n0\n4\n1\n2\n\"clap\"\n";

TEST_F(LabelFile, OfPraatIsReadInItsLongAndShortForm)
{
  for (const std::string& text : {longGrid, shortGrid})
  {
    const Labels labels = read(text);
    EXPECT_EQ("praat", labels.format);
    EXPECT_THAT(wordsOf(labels), ElementsAre("0..1.5 smile \"big\" [] (anna) {mood}", "3..4 frown [] (anna) {mood}",
                                             "2..2 clap [] (anna) {events}"));
  }
}

TEST_F(LabelFile, MayBeOfSixteenBits)
{
  for (const bool bigEndian : {false, true})
    EXPECT_EQ(wordsOf(read(longGrid)), wordsOf(read(utf16Of(longGrid, bigEndian))));
}

TEST_F(LabelFile, OfSixteenBitsKeepsAllLetters)
{
  const std::string begin = utf16Of("start,end,value\n0,1,", false);
  const Labels labels = read(begin + std::string("\xE9\x00\xAC\x20\x3D\xD8\x00\xDE\x3D\xD8", 10));
  EXPECT_EQ("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD", labels.spans.at(0).label);
}

TEST_F(LabelFile, OfPraatSaysWhatIsWrongAndWhere)
{
  EXPECT_EQ(":21: text: expected more: the file ends too early",
            errorOf(shortGrid.substr(0, shortGrid.find("\"frown"))));
  std::string turned = shortGrid;
  turned.replace(turned.find("\n1.5\n3\n"), 7, "\n1.5\n1\n");
  EXPECT_EQ(":17: xmax: the interval ends before it begins", errorOf(turned));
  EXPECT_EQ(": is a binary TextGrid: save it in Praat as a text file", errorOf("ooBinaryFile\x08TextGrid"));
  std::string unclosed = shortGrid;
  unclosed.erase(unclosed.rfind('"'));
  EXPECT_EQ(":28: mark: a quote is not closed", errorOf(unclosed));
}

TEST_F(LabelFile, OfPraatWithAnotherKindOfValueIsRefused)
{
  const auto errorWith = [this](const std::string& before, const std::string& after) {
    std::string text = shortGrid;
    text.replace(text.find(before), before.size(), after);
    return errorOf(text);
  };
  EXPECT_EQ(":9: name: expected a text in quotes, found '5'", errorWith("\"mood\"", "5"));
  EXPECT_EQ(":10: xmin: expected a number, found '\"x\"'", errorWith("\"mood\"\n0", "\"mood\"\n\"x\""));
  EXPECT_EQ(":10: xmin: expected a number, found '<exists>'", errorWith("\"mood\"\n0", "\"mood\"\n<exists>"));
  EXPECT_EQ(":12: intervals of 'mood': expected how many there are", errorWith("\n4\n3\n0", "\n4\n2.5\n0"));
  EXPECT_EQ(":12: intervals of 'mood': expected how many there are", errorWith("\n4\n3\n0", "\n4\n-1\n0"));
  EXPECT_THAT(errorWith("<exists>", "5"), HasSubstr(": expected <exists>, found '5'"));
  EXPECT_EQ(":8: class: expected IntervalTier or TextTier, found 'SoundTier'", errorWith("IntervalTier", "SoundTier"));
}

TEST_F(LabelFile, OfPraatMayHaveComments)
{
  std::string commented = shortGrid;
  commented.replace(commented.find("\"mood\""), 0, "! the second of 2 \"codings\"\n");
  EXPECT_EQ(wordsOf(read(shortGrid)), wordsOf(read(commented + "! the end")));
}

// BORIS

TEST_F(LabelFile, OfBorisLeavesOutEventsWithoutATime)
{
  const Labels labels = read(
      "Observation id\tSubject\tBehavior\tBehavior type\tStart (s)\tStop (s)\n"
      "1\ta\tsmile\tSTATE\tNA\t2\n1\ta\tfrown\tSTATE\t1\t\n1\ta\ttouch\tPOINT\tnan\t3\n1\ta\tlaugh\tSTATE\t2\t3\n");
  EXPECT_THAT(wordsOf(labels), ElementsAre("2..3 laugh [a] (anna) {1}"));
  EXPECT_THAT(labels.warnings,
              ElementsAre("line 2: has no time, and is left out", "line 3: has no time, and is left out",
                          "line 4: has no time, and is left out"));
}

TEST_F(LabelFile, OfBorisHasEventsWithStartAndStop)
{
  const Labels labels = read(
      "Observation id\tSubject\tBehavior\tModifiers\tBehavior type\tStart (s)\tStop (s)\tDuration (s)\n"
      "day 1\tanna\tsmile\t\tSTATE\t1.0\t2.5\t1.5\nday 1\tNo focal subject\ttouch\t\tPOINT\t3.0\tNA\tNA\n");
  EXPECT_EQ("boris", labels.format);
  EXPECT_THAT(wordsOf(labels), ElementsAre("1..2.5 smile [anna] (anna) {day 1}", "3..3 touch [] (anna) {day 1}"));
  EXPECT_THAT(labels.warnings, IsEmpty());
}

const std::string preamble =
    "Observation id,day 1\n\nMedia file(s)\nPlayer #1,film.mp4\n\nObservation date,2020-01-01\nDescription,\n\n"
    "Time,Media file path,Subject,Behavior,Behavioral category,Comment,Status\n";

TEST_F(LabelFile, OfBorisPairsStartsAndStopsBelowThePreamble)
{
  const Labels labels = read(preamble +
                             "1.0,f,a,smile,,,START\n1.5,f,b,smile,,,START\n2.0,f,a,smile,,,STOP\n"
                             "2.5,f,a,touch,,,POINT\n3.0,f,b,smile,,,STOP\n4.0,f,b,frown,,,START\n");
  EXPECT_THAT(wordsOf(labels), ElementsAre("1..2 smile [a] (anna) {day 1}", "2.5..2.5 touch [a] (anna) {day 1}",
                                           "1.5..3 smile [b] (anna) {day 1}"));
  EXPECT_THAT(labels.warnings, ElementsAre("line 15: 'frown' starts and does not stop, and is left out"));
}

TEST_F(LabelFile, WithManyWarningsSaysHowManyMoreThereAre)
{
  const auto warningsOn = [](std::size_t count) {
    std::string rows;
    for (std::size_t i = 0; i < count; ++i)
      rows += "NA,f,a,smile,,,START\n";
    return rows;
  };
  EXPECT_EQ(Labels::mostWarnings, read(preamble + warningsOn(Labels::mostWarnings)).warnings.size());
  EXPECT_EQ("1 more warning", read(preamble + warningsOn(Labels::mostWarnings + 1)).warnings.back());
  const std::vector<std::string> warnings = read(preamble + warningsOn(Labels::mostWarnings + 2)).warnings;
  ASSERT_EQ(Labels::mostWarnings + 1, warnings.size());
  EXPECT_EQ("line 10: has no time, and is left out", warnings.front());
  EXPECT_EQ("2 more warnings", warnings.back());
}

TEST_F(LabelFile, OfBorisPairsByTypeWhereThereIsNoStatus)
{
  const Labels labels = read(
      "Observation id,Subject,Behavior,Behavior type,Time\n1,a,smile,START,1\n1,a,smile,STOP,2\n"
      "2,a,smile,START,1\n2,a,smile,STOP,4\n");
  EXPECT_THAT(wordsOf(labels), ElementsAre("1..2 smile [a] (anna) {1}", "1..4 smile [a] (anna) {2}"));
  EXPECT_THAT(labels.warnings, ElementsAre("holds 2 observations: name the one of this recording as tier"));
}

TEST_F(LabelFile, OfBorisSaysWhatIsWrongAndWhere)
{
  EXPECT_EQ(":10: Status: 'smile' stops, but did not start", errorOf(preamble + "1,f,a,smile,,,STOP\n"));
  EXPECT_EQ(":11: Status: 'smile' starts twice without a stop",
            errorOf(preamble + "1,f,a,smile,,,START\n2,f,a,smile,,,START\n"));
  EXPECT_EQ(":10: Status: expected START, STOP or POINT, found 'END'", errorOf(preamble + "1,f,a,smile,,,END\n"));
  EXPECT_EQ(":10: Time: expected a number, found 'x'", errorOf(preamble + "x,f,a,smile,,,START\n"));
  EXPECT_EQ(":11: Time: the event stops before it starts",
            errorOf(preamble + "2,f,a,smile,,,START\n1,f,a,smile,,,STOP\n"));
  EXPECT_EQ(
      ":2: Stop (s): the event stops before it starts",
      errorOf("Observation id\tSubject\tBehavior\tBehavior type\tStart (s)\tStop (s)\n1\ta\tsmile\tSTATE\t2\t1\n"));
}

// ELAN

std::string elan(const std::string& slots, const std::string& tiers)
{
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ANNOTATION_DOCUMENT FORMAT=\"3.0\">\n"
         "<HEADER TIME_UNITS=\"milliseconds\"/>\n<TIME_ORDER>\n" +
         slots + "</TIME_ORDER>\n" + tiers + "</ANNOTATION_DOCUMENT>\n";
}

std::string slot(const std::string& name, const std::string& milliseconds = "")
{
  return "<TIME_SLOT TIME_SLOT_ID=\"" + name + "\"" +
         (milliseconds.empty() ? "" : " TIME_VALUE=\"" + milliseconds + "\"") + "/>\n";
}

std::string tier(const std::string& name, const std::string& annotations)
{
  return "<TIER TIER_ID=\"" + name + "\" PARTICIPANT=\"ann\" ANNOTATOR=\"ben\">\n" + annotations + "</TIER>\n";
}

std::string aligned(const std::string& id, const std::string& from, const std::string& to, const std::string& value)
{
  return "<ANNOTATION><ALIGNABLE_ANNOTATION ANNOTATION_ID=\"" + id + "\" TIME_SLOT_REF1=\"" + from +
         "\" TIME_SLOT_REF2=\"" + to + "\"><ANNOTATION_VALUE>" + value +
         "</ANNOTATION_VALUE></ALIGNABLE_ANNOTATION></ANNOTATION>\n";
}

std::string referring(const std::string& id, const std::string& parent, const std::string& value)
{
  return "<ANNOTATION><REF_ANNOTATION ANNOTATION_ID=\"" + id + "\" ANNOTATION_REF=\"" + parent +
         "\"><ANNOTATION_VALUE>" + value + "</ANNOTATION_VALUE></REF_ANNOTATION></ANNOTATION>\n";
}

TEST_F(LabelFile, OfElanHasParticipantsAndAnnotators)
{
  const Labels labels =
      read(elan(slot("a", "500") + slot("b", "2000"),
                tier("mood", aligned("a1", "a", "b", " smile &amp; laugh ") + aligned("a2", "a", "b", " "))));
  EXPECT_EQ("elan", labels.format);
  EXPECT_THAT(wordsOf(labels), ElementsAre("0.5..2 smile & laugh [ann] (ben) {mood}"));
}

TEST_F(LabelFile, OfElanSpreadsAnnotationsEvenlyWhereTimesAreMissing)
{
  const Labels labels = read(
      elan(slot("a", "0") + slot("x") + slot("y") + slot("b", "3000"),
           tier("t", aligned("1", "a", "x", "one") + aligned("2", "x", "y", "two") + aligned("3", "y", "b", "three"))));
  EXPECT_THAT(wordsOf(labels),
              ElementsAre("0..1 one [ann] (ben) {t}", "1..2 two [ann] (ben) {t}", "2..3 three [ann] (ben) {t}"));
}

TEST_F(LabelFile, OfElanTakesTimesFromTheOrderWhereATierHasNoTimes)
{
  const Labels labels =
      read(elan(slot("a", "0") + slot("x") + slot("b", "4000"), tier("t", aligned("1", "x", "b", "one"))));
  EXPECT_THAT(wordsOf(labels), ElementsAre("2..4 one [ann] (ben) {t}"));
}

TEST_F(LabelFile, OfElanGivesReferringAnnotationsTheTimeOfTheirParent)
{
  const Labels labels = read(elan(slot("a", "0") + slot("b", "4000"),
                                  tier("child", referring("c1", "p", "left") + referring("c2", "p", "right")) +
                                      tier("grandchild", referring("g", "c2", "deep")) +
                                      tier("parent", aligned("p", "a", "b", "whole"))));
  EXPECT_THAT(wordsOf(labels), ElementsAre("0..2 left [ann] (ben) {child}", "2..4 right [ann] (ben) {child}",
                                           "2..4 deep [ann] (ben) {grandchild}", "0..4 whole [ann] (ben) {parent}"));
}

TEST_F(LabelFile, OfElanSaysWhatIsWrongAndWhere)
{
  EXPECT_THAT(errorOf(elan(slot("a", "0"), "<TIER")), HasSubstr("is damaged or cut"));
  EXPECT_EQ(":5: TIME_VALUE: expected a number, found 'x'", errorOf(elan(slot("a", "x"), "")));
  EXPECT_EQ(":5: TIME_SLOT_ID: is missing", errorOf(elan("<TIME_SLOT TIME_VALUE=\"1\"/>\n", "")));
  EXPECT_EQ(":6: TIME_SLOT_ID: 'a' is there twice", errorOf(elan(slot("a", "0") + slot("a", "1"), "")));
  std::string ofFrames = elan(slot("a", "0"), "");
  ofFrames.replace(ofFrames.find("milliseconds"), 12, "PAL-frames");
  EXPECT_EQ(":3: TIME_UNITS: expected milliseconds, found 'PAL-frames'", errorOf(ofFrames));
  EXPECT_EQ(":8: TIME_SLOT_REF2: there is no time slot 'z'",
            errorOf(elan(slot("a", "0"), tier("t", aligned("1", "a", "z", "v")))));
  EXPECT_EQ(":9: TIME_SLOT_REF2: the annotation ends before it begins",
            errorOf(elan(slot("a", "0") + slot("b", "9"), tier("t", aligned("1", "b", "a", "v")))));
  EXPECT_EQ(":8: ANNOTATION_REF: there is no annotation 'p'",
            errorOf(elan(slot("a", "0"), tier("t", referring("1", "p", "v")))));
  EXPECT_THAT(errorOf(elan(slot("a", "0"), tier("t", referring("1", "2", "v")) + tier("u", referring("2", "1", "v")))),
              HasSubstr("annotations refer to each other in a circle"));
  EXPECT_THAT(errorOf(elan(slot("a"), tier("t", aligned("1", "a", "a", "v")))),
              HasSubstr("has no time, and no slot with a time before and after it"));
}

TEST_F(LabelFile, OfElanMayBeBig)
{
  constexpr int count = 20000;
  std::string slots;
  std::string annotations;
  for (int i = 0; i <= count; ++i)
    slots += slot("s" + std::to_string(i), i % 100 == 0 ? std::to_string(1000 * i) : "");
  for (int i = 0; i < count; ++i)
    annotations += aligned("a" + std::to_string(i), "s" + std::to_string(i), "s" + std::to_string(i + 1), "v");
  const Labels labels = read(elan(slots, tier("t", annotations)));
  ASSERT_EQ(static_cast<std::size_t>(count), labels.spans.size());
  for (int i = 0; i < count; ++i)
    ASSERT_NEAR(i, labels.spans[static_cast<std::size_t>(i)].from, 1e-6) << "sums of up to 100 spans";
}

// Any

TEST_F(LabelFile, MayBeCompressed)
{
  const Labels labels = KV::recordings::readLabels(folder.writeCompressed("ben.csv.gz", "start,end,value\n0,1,a\n"));
  EXPECT_THAT(wordsOf(labels), ElementsAre("0..1 a [] (ben) {}"));
}

TEST_F(LabelFile, OfNoKnownFormatIsRefused)
{
  for (const char* text : {"", "\n", "hello", "a,b\n1,2\n", "{\"time\": 1}"})
    EXPECT_THAT(errorOf(text), HasSubstr(": no format of labels fits: expected ELAN .eaf")) << text;
}

TEST_F(LabelFile, CutAnywhereIsReadOrRefused)
{
  const std::string document = elan(slot("a", "0") + slot("x") + slot("b", "4000"),
                                    tier("t", aligned("1", "a", "x", "v") + referring("2", "1", "w")));
  for (const std::string& text :
       {longGrid, shortGrid, preamble + "1,f,\"a\",smile,,,START\n2,f,a,smile,,,STOP\n", document})
    for (std::size_t length = 0; length < text.size(); ++length)
    {
      try
      {
        read(text.substr(0, length));
      }
      catch (const KV::recordings::Error&)
      {
        SUCCEED();
      }
    }
}

// BIDS

TEST_F(LabelFile, OfBidsHasAnEventInEachRow)
{
  const Labels labels =
      read("onset\tduration\ttrial_type\tvalue\n1.5\t2\tgreeting\t7\n4\tn/a\tbeep\t8\n5\t0\tn/a\t9\n");
  EXPECT_EQ("bids", labels.format);
  EXPECT_THAT(wordsOf(labels),
              ElementsAre("1.5..3.5 greeting [] (anna) {}", "4..4 beep [] (anna) {}", "5..5 event [] (anna) {}"));
}

TEST_F(LabelFile, OfBidsTakesTheValueWhereThereIsNoTrialType)
{
  EXPECT_THAT(wordsOf(read("onset\tduration\tvalue\n-1\t2\t7\n")), ElementsAre("-1..1 7 [] (anna) {}"));
  EXPECT_THAT(wordsOf(read("duration\tonset\n2\t1\n")), ElementsAre("1..3 event [] (anna) {}"));
}

TEST_F(LabelFile, OfBidsSaysWhatIsWrongAndWhere)
{
  const std::string header = "onset\tduration\ttrial_type\n";
  EXPECT_EQ(":3: onset: expected a number, found 'n/a'", errorOf(header + "1\t1\ta\nn/a\t1\ta\n"));
  EXPECT_EQ(":2: duration: expected a number, found 'long'", errorOf(header + "1\tlong\ta\n"));
  EXPECT_EQ(":2: duration: expected seconds from 0 on, or n/a", errorOf(header + "1\t-1\ta\n"));
  EXPECT_EQ(":2: 2 fields, expected 3 as in the header", errorOf(header + "1\t1\n"));
}

TEST(LabelFormats, AreNamedInTheOrderOfDetection)
{
  EXPECT_THAT(KV::recordings::labelFormats(), ElementsAre("elan", "praat", "boris", "bids", "csv", "audacity"));
}

TEST(RealLabels, OfElanAreReadWhole)
{
  for (const char* name : {"pympi_sample_2.8.eaf.gz", "pympi_sample_3.0.eaf.gz"})
  {
    const std::string path = std::string(SKEIGIOT_REAL_RECORDINGS) + "/coding/" + name;
    if (!std::filesystem::exists(path))
      GTEST_SKIP() << path << " is not at hand";
    const Labels labels = KV::recordings::readLabels(path);
    EXPECT_EQ("elan", labels.format);
    EXPECT_GT(labels.spans.size(), 100U);
    for (const LabelSpan& span : labels.spans)
    {
      EXPECT_LE(span.from, span.to);
      EXPECT_GE(span.from, 0.);
    }
  }
}

}  // namespace
