#include "librecordings/support.hpp"
#include "librecordings/xdf/xdfwriter.hpp"

#include "xdf/xdffile.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

// The files are of our making. Three that others made are read where they are at hand.

namespace
{
using namespace support;
using KV::recordings::ReadingOptions;
using KV::recordings::Step;
using KV::recordings::XdfFile;
using KV::recordings::XdfMapping;
using KV::recordings::XdfStream;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// A face of three channels at 10 Hz, of which only the first sample has a time, and markers.
std::string faceAndMarkers()
{
  return xdfBegin() + xdfHeader(7, "Face", "Expression", "float32", 10., {"Smile", "Yaw", "Pitch"}) +
         xdfHeader(8, "Events", "Markers", "string", 0., {"marker"}) +
         xdfSamples(7, {xdfTime(100.) + xdfNumbers<float>({0.25f, 1.f, 2.f}),
                        xdfWithoutTime() + xdfNumbers<float>({0.5f, 3.f, 4.f})}) +
         xdfSamples(8, {xdfTime(100.05) + xdfText("greeting")}) +
         xdfSamples(7, {xdfWithoutTime() + xdfNumbers<float>({notANumber, 5.f, notANumber})}) +
         xdfSamples(8, {xdfTime(100.15) + xdfText("greeting")}) + xdfChunk(6, bytesOf<std::uint32_t>(7) + "<info/>") +
         xdfChunk(5, std::string(16, 'b'));
}

class XdfReader : public RecordingTest
{
protected:
  ReadingOptions with(const std::string& streams) const
  {
    ReadingOptions options;
    options.mapping = folder.write("mapping.json", "{\"streams\": " + streams + "}");
    return options;
  }

  /// A step in a few words: tenths of a second, scopes, person and readings.
  static std::vector<std::string> wordsOf(const Contents& contents)
  {
    std::vector<std::string> words;
    for (const Step& step : contents.entries)
    {
      std::string text = std::to_string(std::lround(secondsOf(step) * 100.));
      for (const auto& scope : step.scopeStarts)
        text += " +" + scope.name;
      if (step.person)
        text += " " + (step.personName.empty() ? std::to_string(*step.person) : step.personName);
      if (step.observation.smile)
        text += " smile " + std::to_string(std::lround(step.observation.smile->value.value * 100.f));
      if (step.observation.gaze)
        text += " gaze " + std::to_string(std::lround(step.observation.gaze->value.yaw)) + "," +
                std::to_string(std::lround(step.observation.gaze->value.pitch));
      for (const auto& scope : step.scopeStops)
        text += " -" + scope;
      words.push_back(text);
    }
    return words;
  }

  std::string errorOfMapping(const std::string& streams) const
  {
    const std::string message = read(faceAndMarkers(), with(streams)).fatal;
    for (const char* name : {"mapping.json", "recording"})
      if (message.rfind(folder.path(name), 0) == 0)
        return message.substr(folder.path(name).size());
    return message;
  }

  std::string fatalOf(const std::string& bytes) const
  {
    const std::string message = read(bytes).fatal;
    return message.substr(std::min(message.size(), folder.path("recording").size()));
  }

  std::string damageOf(const std::string& bytes) const
  {
    const Contents contents = read(bytes);
    EXPECT_EQ("", contents.fatal);
    if (contents.badLines.empty())
      return "no damage";
    return contents.badLines.front().substr(folder.path("recording").size());
  }
};

TEST_F(XdfReader, MakesReadingsOfTheChannelsThatTheMappingNamesAndScopesOfMarkers)
{
  const Contents contents = read(
      faceAndMarkers(),
      with(
          R"([{"stream": "Face", "person": "anna", "channels": {"smile": "Smile", "gaze.yaw": 1, "gaze.pitch": "Pitch"}}])"));
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(wordsOf(contents), ElementsAre("0 anna smile 25 gaze 1,2", "5 +greeting", "10 anna smile 50 gaze 3,4",
                                             "15 -greeting", "15 +greeting"));
  EXPECT_FALSE(contents.isDated);
  EXPECT_THAT(
      contents.description,
      ElementsAre(HasSubstr("XDF: channels as the mapping says"), HasSubstr("on the clock of the recorder"),
                  "stream 'Face' (Expression, 3 channels of float32, 10 Hz): 3 samples; 3 channels read, of 'anna'",
                  "stream 'Events' (Markers, 1 channel of string, irregular): 2 samples; its markers are scopes"));
}

TEST_F(XdfReader, ListsStreamsAndReadsMarkersWithoutAMapping)
{
  const Contents contents = read(faceAndMarkers());
  EXPECT_THAT(wordsOf(contents), ElementsAre("0 +greeting", "10 -greeting", "10 +greeting"));
  EXPECT_THAT(contents.description[2], HasSubstr("3 samples; not read"));
}

TEST_F(XdfReader, SaysHowOftenAStreamHasSamplesAndHowOftenItsClockWasSet)
{
  const auto described = [&](const std::string& rate) {
    std::string header = xdfHeader(1, "A", "", "int16", 0., {"s"});
    const std::string written = "<nominal_srate>0.000000</nominal_srate>";
    header.replace(header.find(written), written.size(), rate.empty() ? std::string(written.size(), ' ') : rate);
    return read(xdfBegin() + header).description.at(2);
  };
  EXPECT_THAT(described(""), HasSubstr("(1 channel of int16, irregular)"));
  EXPECT_THAT(described("<nominal_srate>000001e9</nominal_srate>"), HasSubstr("(1 channel of int16, 1000000000 Hz)"));
  EXPECT_THAT(described("<nominal_srate>0001.1e9</nominal_srate>"), HasSubstr("(1 channel of int16, irregular)"));
  EXPECT_THAT(described("<nominal_srate>-0000012</nominal_srate>"), HasSubstr("(1 channel of int16, irregular)"));

  std::string bytes = xdfBegin() + xdfHeader(1, "A", "", "int16", 0., {"s"});
  for (int segment = 0; segment < 3; ++segment)
    for (int i = 0; i < 20; ++i)
    {
      const double time = 1e6 * (segment + 1) + 5. * i;
      bytes += xdfSamples(1, {xdfTime(time) + xdfNumbers<std::int16_t>({1})}) + xdfClockOffset(1, time, -1e6 * segment);
    }
  EXPECT_THAT(read(bytes).description.at(2), HasSubstr("60 samples, clock set 2 times; not read"));
}

TEST_F(XdfReader, ReadsNumbersWhereverTheBlocksOfTheFileEnd)
{
  std::string bytes = xdfBegin() + xdfHeader(1, "A", "", "double64", 0., {"s"});
  constexpr int count = 20000;  // of 17 bytes each
  for (int i = 0; i < count; ++i)
    bytes += xdfSamples(1, {xdfTime(i) + xdfNumbers<double>({i / 65536.})});
  const Contents contents = read(bytes, with(R"([{"stream": "A", "channels": {"smile": 0}}])"));
  ASSERT_EQ(static_cast<std::size_t>(count), contents.entries.size());
  for (int i = 0; i < count; ++i)
    ASSERT_EQ(static_cast<float>(i / 65536.),
              contents.entries[static_cast<std::size_t>(i)].observation.smile->value.value)
        << i;
}

TEST_F(XdfReader, ScalesNumbersAndNamesStreamsByTypeOrSource)
{
  const Contents contents = read(faceAndMarkers(), with(R"([
    {"stream": "Expression", "channels": {"smile": {"channel": "Smile", "factor": 2, "offset": -0.25}}},
    {"stream": "source of Events", "scopes": false}])"));
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(wordsOf(contents), ElementsAre("0 0 smile 25", "10 0 smile 75"));
}

TEST_F(XdfReader, MovesStreamsToTheClockOfTheRecorder)
{
  const std::string bytes =
      xdfBegin() + xdfHeader(1, "A", "x", "double64", 0., {"s"}) + xdfHeader(2, "B", "y", "int16", 0., {"s"}) +
      xdfSamples(1, {xdfTime(5000.) + xdfNumbers<double>({0.5})}) + xdfClockOffset(1, 5000., -4000.) +
      xdfSamples(2, {xdfTime(10.) + xdfNumbers<std::int16_t>({1})}) + xdfClockOffset(2, 10., 991.);
  const Contents contents = read(
      bytes,
      with(
          R"([{"stream": "A", "person": 1, "channels": {"smile": 0}}, {"stream": "B", "person": 2, "channels": {"smile": 0}}])"));
  EXPECT_THAT(wordsOf(contents), ElementsAre("0 1 smile 50", "100 2 smile 100"));
}

TEST_F(XdfReader, ReadsAllKindsOfNumbersAndLengths)
{
  std::string bytes = xdfBegin();
  std::uint32_t id = 0;
  const auto add = [&bytes, &id](const std::string& format, const std::string& value) {
    bytes += xdfHeader(++id, format, "t", format, 0., {"s"});
    const std::string content =
        bytesOf(id) + xdfLength(1, id % 2 == 0 ? 8 : 1) + xdfTime(static_cast<double>(id)) + value;
    bytes += xdfChunk(3, content, id % 2 == 0 ? 1 : 8);
  };
  add("int8", bytesOf<std::int8_t>(1));
  add("int16", bytesOf<std::int16_t>(1));
  add("int32", bytesOf<std::int32_t>(1));
  add("int64", bytesOf<std::int64_t>(1));
  add("float32", bytesOf<float>(1.f));
  add("double64", bytesOf<double>(1.));
  std::string streams;
  for (const char* name : {"int8", "int16", "int32", "int64", "float32", "double64"})
    streams += std::string(streams.empty() ? "" : ",") + "{\"stream\": \"" + name + "\", \"channels\": {\"smile\": 0}}";
  EXPECT_THAT(wordsOf(read(bytes, with("[" + streams + "]"))),
              ElementsAre("0 0 smile 100", "100 0 smile 100", "200 0 smile 100", "300 0 smile 100", "400 0 smile 100",
                          "500 0 smile 100"));
}

TEST_F(XdfReader, LeavesOutSamplesThatAreNotLater)
{
  const Contents contents = read(xdfBegin() + xdfHeader(8, "Events", "Markers", "string", 0., {"marker"}) +
                                 xdfSamples(8, {xdfTime(2.) + xdfText("a"), xdfTime(2.) + xdfText("b"),
                                                xdfTime(1.) + xdfText("c"), xdfTime(3.) + xdfText("")}));
  EXPECT_THAT(wordsOf(contents), ElementsAre("0 +a"));
  EXPECT_THAT(contents.warnings, ElementsAre("2 samples left out, since the one before in the stream is not earlier"));
}

TEST_F(XdfReader, SaysThatNothingIsRead)
{
  const Contents contents = read(xdfBegin() + xdfHeader(7, "Face", "Expression", "float32", 10., {"Smile"}));
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.entries, IsEmpty());
  EXPECT_THAT(contents.warnings, ElementsAre("no channel is read: name channels in a mapping, in its member streams"));
}

TEST_F(XdfReader, ReadsUpToACut)
{
  const std::string whole = faceAndMarkers();
  const std::size_t begin = xdfBegin().size();
  for (std::size_t length = begin; length < whole.size(); ++length)
  {
    const Contents contents = read(whole.substr(0, length));
    EXPECT_EQ("", contents.fatal) << length;
    EXPECT_LE(contents.badLines.size(), 1U);
    EXPECT_LE(contents.entries.size(), 3U);
  }
  EXPECT_EQ(": byte " + std::to_string(begin + 1) +
                ": the file ends within a chunk: it may be cut; the rest is not read, and no sample behind it is used",
            damageOf(whole.substr(0, begin + 1)));
  const Contents cut = read(whole.substr(0, whole.size() - 1));
  EXPECT_THAT(cut.badLines, SizeIs(1));
  EXPECT_THAT(cut.entries, SizeIs(3)) << "what is before the cut is read";
}

TEST_F(XdfReader, SaysWhatIsDamaged)
{
  const std::string begin = xdfBegin() + xdfHeader(8, "Events", "Markers", "string", 0., {"marker"});
  const auto contains = [&](const std::string& rest, const std::string& expected) {
    EXPECT_THAT(damageOf(begin + rest), HasSubstr(expected + "; the rest is not read"));
  };
  contains("\x02", "expected a length of 1, 4 or 8 bytes, found 2");
  contains(xdfLength(1, 1), "a chunk is shorter than its tag");
  contains(xdfChunk(9, "x"), "there is no kind of chunk with the tag 9");
  contains(xdfSamples(3, {}), "samples of stream 3 come before its header");
  contains(xdfSamples(8, {"\x03"}), "expected a time of 0 or 8 bytes, found 3");
  contains(xdfSamples(8, {xdfTime(1e300) + xdfText("a")}), "a sample of stream 'Events' has no time in seconds");
  contains(xdfHeader(8, "Again", "x", "int8", 0., {}), "two streams have the number 8");
  contains(xdfChunk(2, bytesOf<std::uint32_t>(9) + "<info>"), "the header of stream 9 is no XML with info at its top");
  contains(xdfLength(8, 1) + bytesOf<std::uint16_t>(3) + bytesOf<std::uint32_t>(8) + xdfLength(5, 1) + xdfTime(1.),
           "the file ends within a chunk: it may be cut");
  contains(xdfLength(8, 1) + bytesOf<std::uint16_t>(3) + bytesOf<std::uint32_t>(8) + xdfLength(1, 1) + xdfTime(1.) +
               xdfText("a"),
           "a chunk holds more than its length says");
  contains(xdfLength(std::numeric_limits<std::uint64_t>::max(), 8) + bytesOf<std::uint16_t>(1) + "x",
           "a chunk is longer than any file");
}

TEST_F(XdfReader, RefusesWhatIsBeyondItsLimits)
{
  using namespace KV::recordings;
  EXPECT_EQ(": does not begin with XDF:, so it is no recording of the Lab Streaming Layer",
            contentsOf(folder.write("f", "XDG: and more"), "xdf").fatal.substr(folder.path("f").size()));
  EXPECT_EQ(": has a header of a stream that is larger than 1 MiB",
            fatalOf(xdfBegin() + xdfLength(limits::largestXdfHeader + 7, 8) + bytesOf<std::uint16_t>(2)));
  EXPECT_EQ(": stream 'A' has values of the unknown kind 'float16'",
            fatalOf(xdfBegin() + xdfHeader(1, "A", "x", "float16", 0., {"s"})));
  const auto withChannels = [](const std::string& count) {
    return xdfBegin() + xdfChunk(2, bytesOf<std::uint32_t>(1) + "<info><name>A</name><channel_count>" + count +
                                        "</channel_count><channel_format>int8</channel_format></info>");
  };
  EXPECT_EQ("", fatalOf(withChannels("100000")));
  EXPECT_EQ(": stream 'A' has no number of channels, or more than 100000", fatalOf(withChannels("100001")));
  EXPECT_EQ(": stream 'A' has no number of channels, or more than 100000", fatalOf(withChannels("-1")));
  const auto withText = [](std::size_t length) {
    return xdfBegin() + xdfHeader(8, "Events", "Markers", "string", 0., {"marker"}) +
           xdfSamples(8, {xdfTime(1.) + xdfLength(length) + std::string(length, 'x')});
  };
  EXPECT_EQ("", fatalOf(withText(limits::longestXdfText)));
  EXPECT_EQ(": a text of stream 'Events' is longer than 65536 bytes", fatalOf(withText(limits::longestXdfText + 1)));
  std::string streams = xdfBegin();
  for (std::uint32_t i = 0; i < limits::mostXdfStreams; ++i)
    streams += xdfHeader(i, "A", "x", "int8", 0., {});
  EXPECT_EQ("", fatalOf(streams));
  EXPECT_EQ(": has more than 1000 streams", fatalOf(streams + xdfHeader(9999, "A", "x", "int8", 0., {})));
}

TEST_F(XdfReader, RefusesMoreValuesThanTheLimit)
{
  // Without times of their own, samples take two bytes each.
  const std::size_t most = KV::recordings::limits::mostXdfValues / 2;
  const auto withSamples = [](std::size_t count) {
    const std::string content = bytesOf<std::uint32_t>(1) + xdfLength(count, 8) + std::string(2 * count, '\0');
    return xdfBegin() + xdfHeader(1, "A", "x", "int8", 1000., {"s"}) + xdfChunk(3, content, 8);
  };
  const ReadingOptions options = with(R"([{"stream": "A", "channels": {"smile": 0}}])");
  const std::string path = folder.write("many.xdf", withSamples(most + 1));
  try
  {
    KV::recordings::openRecording(path, "", options);
    FAIL() << "no error";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_THAT(error.what(), HasSubstr("has more than 8388608 values in the streams that are read"));
  }
}

TEST_F(XdfReader, RefusesAMappingThatDoesNotFit)
{
  EXPECT_EQ(": has no stream 'Voice', which the mapping names", errorOfMapping(R"([{"stream": "Voice"}])"));
  EXPECT_EQ(": stream 'Face' has no channel 'Joy', which the mapping names",
            errorOfMapping(R"([{"stream": "Face", "channels": {"smile": "Joy"}}])"));
  EXPECT_EQ(": stream 'Face' has no channel 3, which the mapping names",
            errorOfMapping(R"([{"stream": "Face", "channels": {"smile": 3}}])"));
  EXPECT_EQ(": stream 'Events' has texts, so its channels cannot be readings",
            errorOfMapping(R"([{"stream": "Events", "channels": {"smile": 0}}])"));
  EXPECT_EQ(": streams: expected a list of streams, found '3'", errorOfMapping("3"));
  EXPECT_EQ(": streams[0]: expected a stream with a member stream, found '{}'", errorOfMapping("[{}]"));
  EXPECT_EQ(": streams[0].stream: expected the name, type or source_id of a stream, found '3'",
            errorOfMapping(R"([{"stream": 3}])"));
  EXPECT_EQ(": streams[0].person: expected the number or name of a person, found '1.5'",
            errorOfMapping(R"([{"stream": "Face", "person": 1.5}])"));
  EXPECT_EQ(": streams[1].person: expected all persons by their names, or all by their numbers, found '\"anna\"'",
            errorOfMapping(R"([{"stream": "Face", "person": 1}, {"stream": "Events", "person": "anna"}])"));
  EXPECT_EQ(": streams[0].scopes: expected true or false, found '1'",
            errorOfMapping(R"([{"stream": "Face", "scopes": 1}])"));
  for (const char* wrong : {"joy", "start", "start.samples", "smile.yaw", "gaze", "smile.value", ""})
    EXPECT_THAT(errorOfMapping(std::string(R"([{"stream": "Face", "channels": {")") + wrong + "\": 0}}]"),
                HasSubstr("there is no such member; expected readings such as smile, gaze.yaw or expressions.joy"))
        << wrong;
  EXPECT_EQ(": streams[0].channels.smile: expected the label of a channel, or its index from 0 on, found '-1'",
            errorOfMapping(R"([{"stream": "Face", "channels": {"smile": -1}}])"));
  EXPECT_EQ(": streams[0].channels.smile: expected an object with a member channel, found '{\"factor\":2}'",
            errorOfMapping(R"([{"stream": "Face", "channels": {"smile": {"factor": 2}}}])"));
  EXPECT_THAT(errorOfMapping(R"([{"stream": "Face", "channels": {"smile": {"channel": 0, "factor": 1e10}}}])"),
              HasSubstr("smile.factor: expected a number of no more than a billion"));
}

TEST_F(XdfReader, PlacesABadNumberByStreamAndSample)
{
  const Contents contents = read(
      faceAndMarkers(), with(R"([{"stream": "Face", "channels": {"smile": {"channel": "Smile", "factor": 100}}}])"));
  ASSERT_FALSE(contents.badLines.empty());
  EXPECT_THAT(contents.badLines.front(),
              HasSubstr("recording, stream 'Face', sample 0: smile: 25 is far from its range, 0 to 1"));
}

class RealXdf : public ::testing::Test
{
protected:
  void open(const std::string& name, const XdfMapping& mapping = {})
  {
    const std::string path = std::string(SKEIGIOT_REAL_RECORDINGS) + "/xdf/" + name;
    if (!std::filesystem::exists(path))
      GTEST_SKIP() << path << " is not at hand";
    _mapping = mapping;
    _file.emplace(KV::recordings::InputFile(path), _mapping);
    EXPECT_EQ("", _file->damage());
  }

  const XdfStream& stream(const std::string& name) const
  {
    for (const XdfStream& one : _file->streams())
      if (one.name == name)
        return one;
    throw std::runtime_error("no stream " + name);
  }

  XdfMapping _mapping;
  std::optional<XdfFile> _file;
};

TEST_F(RealXdf, OfTwoStreamsHasTheSamplesThatItsMakersList)
{
  open("minimal.xdf", {{"SendDataC", "", {}, {{"headHeight", "", 0, 1., 0.}, {"distance", "", 2, 1., 0.}}},
                       {"SendDataString", "", true, {}}});
  if (!_file)
    return;
  const XdfStream& numbers = stream("SendDataC");
  EXPECT_EQ("EEG", numbers.type);
  EXPECT_EQ("int16", numbers.valuesName);
  EXPECT_EQ(3U, numbers.channels);
  EXPECT_EQ(9U, numbers.samples);
  EXPECT_THAT(numbers.numbers,
              ElementsAre(192., 238., 12., 32., 13., 33., 14., 34., 15., 35., 12., 32., 13., 33., 14., 34., 15., 35.));
  EXPECT_DOUBLE_EQ(5.1, numbers.first);
  EXPECT_DOUBLE_EQ(5.9, numbers.last);
  ASSERT_THAT(numbers.offsets, SizeIs(2));
  EXPECT_DOUBLE_EQ(6.1, numbers.offsets[0].time);
  EXPECT_DOUBLE_EQ(-0.1, numbers.offsets[0].value);
  EXPECT_NEAR(5., numbers.times.front(), 1e-9);
  EXPECT_NEAR(5.8, numbers.times.back(), 1e-9);
  const XdfStream& texts = stream("SendDataString");
  EXPECT_EQ(0x02C0FFEEU, texts.id);
  ASSERT_THAT(texts.texts, SizeIs(9));
  EXPECT_THAT(std::vector<std::string>(texts.texts.begin() + 1, texts.texts.end()),
              ElementsAre("Hello", "World", "from", "LSL", "Hello", "World", "from", "LSL"));
  EXPECT_THAT(texts.offsets, IsEmpty());
}

TEST_F(RealXdf, WhoseClockWasSetIsOfOnePiece)
{
  open("clock_resets.xdf", {{"BioSemi", "", {}, {{"headHeight", "", 0, 1., 0.}, {"distance", "", 7, 1., 0.}}}});
  if (!_file)
    return;
  const XdfStream& eeg = stream("BioSemi");
  EXPECT_EQ(27815U, eeg.samples);
  EXPECT_EQ(100., eeg.rate);
  EXPECT_NEAR(653150.379117, eeg.first, 1e-6);
  EXPECT_NEAR(261.9267033, eeg.last, 1e-6);
  EXPECT_NEAR(0.142, eeg.numbers[0], 5e-4);
  EXPECT_NEAR(0.861, eeg.numbers[1], 5e-4);
  EXPECT_NEAR(0.873, eeg.numbers[eeg.numbers.size() - 2], 5e-4);
  EXPECT_NEAR(0.892, eeg.numbers.back(), 5e-4);
  EXPECT_NEAR(653156.026144, eeg.offsets.front().time, 1e-6);
  EXPECT_NEAR(-652340.284, eeg.offsets.front().value, 1e-3);
  EXPECT_NEAR(264.638576, eeg.offsets.back().time, 1e-6);
  EXPECT_NEAR(1121.166, eeg.offsets.back().value, 1e-3);
  EXPECT_EQ(2U, eeg.segments);
  EXPECT_TRUE(std::is_sorted(eeg.times.begin(), eeg.times.end())) << "the clock of the recorder was not set";
  EXPECT_NEAR(653150.314061 - 652340.284, eeg.times.front(), 2e-3) << "of the list, which is without jitter";
  EXPECT_NEAR(262.018644 + 1121.166, eeg.times.back(), 2e-3);
  EXPECT_NEAR(653150.324786 - 653150.314061, eeg.times[1] - eeg.times[0], 2e-6);

  const XdfStream& markers = stream("MyMarkerStream");
  ASSERT_EQ(175U, markers.samples);
  EXPECT_THAT(std::vector<std::string>(markers.texts.begin(), markers.texts.begin() + 5),
              ElementsAre("XXX", "Test", "Blah", "Test", "Test-1-2-3"));
  EXPECT_THAT(std::vector<std::string>(markers.texts.end() - 5, markers.texts.end()),
              ElementsAre("Test-1-2-3", "Testtest", "Test", "Test-1-2-3", "XXX"));
  EXPECT_NEAR(653153.2121885, markers.first, 1e-6);
  EXPECT_NEAR(259.6538279, markers.last, 1e-6);
  EXPECT_EQ(2U, markers.segments);
  EXPECT_TRUE(std::is_sorted(markers.times.begin(), markers.times.end()));
  EXPECT_NEAR(653153.2121885 - 652340.2838640, markers.times.front(), 1e-3);
}

TEST_F(RealXdf, WithEmptyStreamsListsThem)
{
  open("empty_streams.xdf", {{"Data stream: test stream 0 counter", "", {}, {{"headHeight", "ch:00", {}, 1., 0.}}}});
  if (!_file)
    return;
  ASSERT_THAT(_file->streams(), SizeIs(4));
  EXPECT_EQ(1U, stream("ctrl").samples);
  EXPECT_EQ(0U, stream("Empty marker stream: test stream 0 counter").samples);
  EXPECT_EQ(0U, stream("Empty data stream: test stream 0 counter").samples);
  const XdfStream& data = stream("Data stream: test stream 0 counter");
  EXPECT_EQ(10U, data.samples);
  EXPECT_THAT(data.numbers, ElementsAre(0., 1., 2., 3., 4., 5., 6., 7., 8., 9.));
  EXPECT_NEAR(91725.213948, data.first, 1e-6);
  EXPECT_NEAR(91734.213948, data.last, 1e-6);
  EXPECT_THAT(data.offsets, SizeIs(7));
  EXPECT_NEAR(91716.691572, data.offsets.front().time, 1e-6);
}

TEST_F(XdfReader, RefusesWhatNoSensorMeasures)
{
  const std::string recording =
      xdfBegin() + xdfHeader(7, "Face", "", "double64", 10., {"Smile"}) +
      xdfSamples(7, {xdfTime(1.) + xdfNumbers<double>({0.5}), xdfTime(1.1) + xdfNumbers<double>({1e300}),
                     xdfTime(1.2) + xdfNumbers<double>({0.75})});
  const Contents contents = read(recording, with(R"([{"stream": "Face", "channels": {"smile": "Smile"}}])"));
  EXPECT_THAT(contents.badLines, ElementsAre(folder.path("recording") +
                                             ", stream 'Face', sample 1: smile: expected a number, found '1e+300'"));
  EXPECT_THAT(wordsOf(contents), ElementsAre("0 0 smile 50", "20 0 smile 75"));
}

TEST_F(XdfReader, RefusesAPersonWhoseNumberIsNotWhole)
{
  const Contents contents =
      read(faceAndMarkers(), with(R"([{"stream": "Face", "person": "1.5", "channels": {"smile": "Smile"}}])"));
  ASSERT_THAT(contents.badLines, Not(IsEmpty()));
  EXPECT_EQ(folder.path("recording") + ", stream 'Face', sample 0: person: expected a whole number, found '1.5'",
            contents.badLines[0]);
}

TEST_F(XdfReader, KeepsTheSamplesBeforeOneOfWhichChannelsAreMissing)
{
  const std::string recording =
      xdfBegin() + xdfHeader(7, "Face", "", "float32", 10., {"Smile", "Yaw", "Pitch"}) +
      xdfSamples(7, {xdfTime(1.) + xdfNumbers<float>({0.25f, 1.f, 2.f}), xdfTime(1.1) + xdfNumbers<float>({0.5f})});
  const Contents contents =
      read(recording, with(R"([{"stream": "Face", "channels": {"smile": "Smile", "gaze.yaw": 1, "gaze.pitch": 2}}])"));
  EXPECT_THAT(wordsOf(contents), ElementsAre("0 0 smile 25 gaze 1,2"));
  EXPECT_THAT(contents.badLines, SizeIs(1));
}

TEST_F(XdfReader, SaysWhatIsWrongWithTheChannelsOfAMapping)
{
  EXPECT_THAT(errorOfMapping(R"([{"stream": "Face", "channels": ["Smile"]}])"),
              HasSubstr("channels: expected an object with a member for each reading"));
}

}  // namespace
