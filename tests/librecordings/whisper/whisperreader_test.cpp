#include "librecordings/support.hpp"
#include "support/tablename.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace
{
using KV::recordings::ReadingOptions;
using KV::recordings::Step;
using support::Contents;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class WhisperReader : public support::RecordingTest
{
protected:
  /// Says at which tenths of a second each person speaks: "anna: 0-2 5-7".
  static std::vector<std::string> speechOf(const Contents& contents)
  {
    std::map<std::string, std::vector<int>> ticks;
    for (const Step& step : contents.entries)
    {
      const std::string person =
          step.personName.empty() ? std::to_string(*step.person) : step.personName + " " + std::to_string(*step.person);
      std::vector<int>& known = ticks[person];
      if (step.observation.speaking->value)
        known.push_back(static_cast<int>(std::lround(support::secondsOf(step) * 10.)));
    }
    std::vector<std::string> words;
    for (const auto& [person, times] : ticks)
    {
      std::string text = person + ":";
      for (std::size_t i = 0; i < times.size(); ++i)
      {
        if (i == 0 || times[i] != times[i - 1] + 1)
          text += " " + std::to_string(times[i]) + "-";
        if (i + 1 == times.size() || times[i + 1] != times[i] + 1)
          text += std::to_string(times[i]);
      }
      words.push_back(text);
    }
    return words;
  }

  ReadingOptions withTable(const std::string& table) const
  {
    ReadingOptions options;
    options.mapping = folder.write("mapping.json", "{\"speakers\": " + table + "}");
    return options;
  }

  std::string errorOfTable(const std::string& table) const
  {
    const std::string message = read(twoSpeakers, withTable(table)).fatal;
    return message.substr(std::min(message.size(), folder.path("mapping.json").size()));
  }

  const std::string twoSpeakers =
      R"({"segments": [{"start": 0.5, "end": 0.8, "text": "a", "speaker": "S1"},
 {"start": 2, "end": 2.2, "text": "b", "speaker": "S0"}, {"start": 3, "end": 3.1, "text": "c"}], "language": "en"})";
};

TEST_F(WhisperReader, SaysTenTimesASecondWhetherAPersonSpeaks)
{
  const Contents contents = read(
      R"({"text": "x", "segments": [{"id": 0, "start": 0.25, "end": 0.5, "avg_logprob": -0.2}], "language": "en"})");
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(speechOf(contents), ElementsAre("0: 2-4"));
  ASSERT_THAT(contents.entries, SizeIs(14)) << "0 s, 0.2 s to 0.4 s, and a second after";
  EXPECT_FALSE(contents.entries[0].observation.speaking->value);
  EXPECT_DOUBLE_EQ(0., support::secondsOf(contents.entries[0]));
  EXPECT_NEAR(1.4, support::secondsOf(contents.entries.back()), 1e-6);
  EXPECT_FALSE(contents.isDated);
  EXPECT_FALSE(contents.entries[0].isDated);
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(contents.description,
              ElementsAre("Whisper: speaking, 10 times a second, by segments; pauses up to 0.3 s are speech",
                          "times in seconds from the start; all speech is of person 0, since there are no speakers"));
}

TEST_F(WhisperReader, JoinsSpeechOverShortPausesAndSkipsLongOnes)
{
  const Contents contents = read(
      R"([{"start": 0, "end": 1, "avg_logprob": 0}, {"start": 1.2, "end": 2}, {"start": 2.4, "end": 2.5}, {"start": 100, "end": 100.05}])");
  EXPECT_THAT(speechOf(contents), ElementsAre("0: 0-19 24-24 1000-1000"));
  EXPECT_THAT(contents.entries, SizeIs(25 + 10 + 11));
}

TEST_F(WhisperReader, TakesWordsRatherThanSegmentsWhereTheyHaveTimes)
{
  const Contents contents = read(
      R"({"segments": [{"start": 0, "end": 5, "words": [{"word": "a", "start": 1, "end": 1.1, "probability": 0.9}, {"word": "2"}]},
 {"start": 8, "end": 8.2, "words": [{"word": "b"}]}, {"start": 9, "end": 9.1, "words": []}]})");
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(speechOf(contents), ElementsAre("0: 10-10 80-81 90-90"));
  EXPECT_THAT(contents.warnings,
              ElementsAre("1 segment or word without times left out, or with an end that is not after the start"));
  EXPECT_THAT(contents.description.front(), HasSubstr("by words"));
}

TEST_F(WhisperReader, LeavesOutSegmentsThatWhisperTakesForNoSpeech)
{
  const Contents contents = read(
      R"({"segments": [{"start": 0, "end": 1, "no_speech_prob": 0.61}, {"start": 2, "end": 2.1, "no_speech_prob": 0.6}]})");
  EXPECT_THAT(speechOf(contents), ElementsAre("0: 20-20"));
  EXPECT_THAT(contents.warnings, ElementsAre("1 segment left out as no speech: no_speech_prob is above 0.6"));
}

TEST_F(WhisperReader, CallsPersonsBySpeakersWithoutATable)
{
  const Contents contents = read(twoSpeakers);
  EXPECT_THAT(speechOf(contents), ElementsAre("S0 1: 20-21", "S1 0: 5-7"));
  EXPECT_THAT(contents.warnings, ElementsAre("1 segment or word without a speaker left out, since others have one"));
  EXPECT_EQ("times in seconds from the start; speakers: 'S0' is S0, 'S1' is S1", contents.description.back());
}

TEST_F(WhisperReader, TakesTheSpeakerOfAWordBeforeThatOfItsSegment)
{
  const Contents contents = read(
      R"({"segments": [{"start": 0, "end": 5, "speaker": "S0", "words": [{"start": 0, "end": 1}, {"start": 1, "end": 2, "speaker": "S1"}]}]})");
  EXPECT_THAT(speechOf(contents), ElementsAre("S0 0: 0-9", "S1 1: 10-19"));
}

TEST_F(WhisperReader, TakesPersonsFromATableByNumber)
{
  const Contents contents = read(twoSpeakers, withTable(R"({"S0": 7, "S1": 3, "": 7})"));
  EXPECT_THAT(speechOf(contents), ElementsAre("3: 5-7", "7: 20-21 30-30"));
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_EQ("times in seconds from the start; speakers: '' is person 7, 'S0' is person 7, 'S1' is person 3",
            contents.description.back());
}

TEST_F(WhisperReader, TakesPersonsFromATableByNameAndLeavesOutNobodys)
{
  const Contents contents = read(twoSpeakers, withTable(R"({"S0": "anna", "S1": null})"));
  EXPECT_THAT(speechOf(contents), ElementsAre("anna 0: 20-21"));
  EXPECT_THAT(contents.warnings, ElementsAre("speaker '' left out: " + folder.path("mapping.json") +
                                             " does not say which person that is"));
  EXPECT_EQ("times in seconds from the start; speakers: 'S0' is anna, 'S1' is nobody", contents.description.back());
}

TEST_F(WhisperReader, SaysThatNobodySpeaks)
{
  const Contents contents = read(R"({"segments": [{"start": 0, "end": 1, "no_speech_prob": 0.9}]})");
  EXPECT_THAT(contents.entries, IsEmpty());
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("1 segment left out"), "nobody speaks"));
  EXPECT_EQ(" has no segments, so nobody speaks", errorOf(R"({"segments": []})"));
}

TEST_F(WhisperReader, RefusesATableOfAnotherForm)
{
  EXPECT_EQ(": speakers: expected an object with a member for each speaker, found '[]'", errorOfTable("[]"));
  EXPECT_EQ(": speakers.S0: expected the number or name of a person, or null for nobody, found '1.5'",
            errorOfTable(R"({"S0": 1.5})"));
  EXPECT_EQ(": speakers.S0: expected the number or name of a person, or null for nobody, found '\"\"'",
            errorOfTable(R"({"S0": ""})"));
  EXPECT_EQ(": speakers.S0: expected the number or name of a person, or null for nobody, found '3000000000'",
            errorOfTable(R"({"S0": 3000000000})"));
  EXPECT_EQ(": speakers.S1: expected all persons by their names, or all by their numbers, found '3'",
            errorOfTable(R"({"S0": "anna", "S1": 3})"));
}

struct WrongCase
{
  const char* name;
  const char* text;
  const char* message;
};

class WrongTranscript : public WhisperReader, public ::testing::WithParamInterface<WrongCase>
{};

TEST_P(WrongTranscript, IsRefusedWithItsPlace)
{
  EXPECT_EQ(GetParam().message, errorOf(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Of, WrongTranscript,
    ::testing::Values(
        WrongCase{"ATimeInWords", "{\"segments\": [{\"start\": \"0\", \"end\": 1}]}",
                  "1: segments[0].start: expected seconds from 0 to 100000, found '\"0\"'"},
        WrongCase{"ANegativeTime", "{\"segments\": [{\"start\": -1, \"end\": 1}]}",
                  "1: segments[0].start: expected seconds from 0 to 100000, found '-1'"},
        WrongCase{"ALateTime", "{\"segments\": [{\"start\": 1, \"end\": 100001}]}",
                  "1: segments[0].end: expected seconds from 0 to 100000, found '100001'"},
        WrongCase{
            "Milliseconds", "{\"segments\": [{\"start\": 0, \"end\": 121}]}",
            "1: segments[0]: expected at most 120 s from start to end, in seconds, found '{\"end\":121,\"start\":0}'"},
        WrongCase{"SegmentsThatAreNoList", "{\"segments\": 3}", "1: segments: expected a list of segments, found '3'"},
        WrongCase{"ASegmentThatIsNone", "{\"segments\": [3]}",
                  "1: segments[0]: expected a segment, an object with start and end, found '3'"},
        WrongCase{"WordsThatAreNoList", "{\"segments\": [{\"start\": 0, \"end\": 1, \"words\": 3}]}",
                  "1: segments[0].words: expected a list of words, found '3'"},
        WrongCase{"AWordThatIsNone", "{\"segments\": [{\"start\": 0, \"end\": 1, \"words\": [3]}]}",
                  "1: segments[0].words[0]: expected an object with start and end, found '3'"},
        WrongCase{"ASpeakerThatIsANumber", "{\"segments\": [{\"start\": 0, \"end\": 1, \"speaker\": 3}]}",
                  "1: segments[0].speaker: expected the name of a speaker, found '3'"}),
    support::RowName());

TEST_F(WhisperReader, IsDetectedByWhatOnlyWhisperWrites)
{
  const auto formatOf = [this](const std::string& text) {
    return KV::recordings::formatNameOf(folder.write("f", text));
  };
  EXPECT_EQ("whisper", formatOf("{\"text\": \"a long talk"));
  EXPECT_EQ("whisper", formatOf(" {\n \"language\": \"en\","));
  EXPECT_EQ("whisper", formatOf("{\"segments\":["));
  EXPECT_EQ("whisper", formatOf("{\"task\":\"transcribe\",\"segments\":[{\"avg_logprob\":0}]}"));
  EXPECT_EQ("whisper", formatOf("[{\"start\": 0, \"no_speech_prob\": 0.1}]"));
  EXPECT_EQ("jsonl", formatOf("{\"time\": 0}"));
  EXPECT_EQ("jsonl", formatOf("{\"person\": 0, \"text\": \"segments\"}"));
}

TEST_F(WhisperReader, RefusesMoreSpeakersThanTheLimit)
{
  const auto withSpeakers = [](std::size_t count) {
    std::string text = "{\"segments\": [";
    for (std::size_t i = 0; i < count; ++i)
      text +=
          std::string(i > 0 ? "," : "") + "{\"start\": 0, \"end\": 0.1, \"speaker\": \"S" + std::to_string(i) + "\"}";
    return text + "]}";
  };
  EXPECT_EQ("", read(withSpeakers(KV::recordings::limits::mostSpeakers)).fatal);
  EXPECT_EQ(" speaker: there are more than 100 speakers",
            errorOf(withSpeakers(KV::recordings::limits::mostSpeakers + 1)));
}

TEST_F(WhisperReader, GoesOnBehindBadObjectsButNotBehindAHundred)
{
  const auto withBad = [](int count) {
    std::string text = "{\"start\": 0, \"end\": 0.1, \"avg_logprob\": 0}\n";
    for (int i = 0; i < count; ++i)
      text += "{\"start\": \"x\"}\n";
    return text;
  };
  const Contents some = read(withBad(100));
  EXPECT_EQ("", some.fatal);
  EXPECT_THAT(some.badLines, SizeIs(100));
  EXPECT_THAT(speechOf(some), ElementsAre("0: 0-0"));
  EXPECT_THAT(read(withBad(101)).fatal, HasSubstr(":2: start: expected seconds"));
}

TEST_F(WhisperReader, MayBeCutAnywhere)
{
  for (std::size_t length = 0; length < twoSpeakers.size(); ++length)
  {
    const Contents contents = read(twoSpeakers.substr(0, length));
    EXPECT_TRUE(!contents.fatal.empty() || !contents.badLines.empty()) << length;
  }
}

}  // namespace
