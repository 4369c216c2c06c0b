#include "face/mapping.hpp"
#include "librecordings/support.hpp"

#include <gmock/gmock.h>

#include <fstream>

namespace
{
using ::testing::IsEmpty;

// The lines of the page between the fence and "```".
std::string examplesOf(const std::string& page, const std::string& fence = "```json")
{
  std::ifstream file(page);
  std::string examples;
  bool isExample = false;
  for (std::string line; std::getline(file, line);)
  {
    if (line.rfind("```", 0) == 0)
      isExample = line == fence;
    else if (isExample)
      examples += line + "\n";
  }
  return examples;
}

using RecordingPage = support::RecordingTest;

TEST_F(RecordingPage, ShowsExamplesThatCanBeReadInTheirOrder)
{
  const auto contents = read(examplesOf(SKEIGIOT_RECORDING_PAGE));
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  ASSERT_EQ(7u, contents.entries.size());
  const auto& all = contents.entries.back().observation;
  EXPECT_TRUE(all.lookingAtRobot && all.headHeight && all.distance && all.gaze && all.smile && all.expressions &&
              all.headPosture && all.gender && all.age && all.faceDetected && all.facialPoints && all.voiceEmotion &&
              all.asrEmotion && all.touchEmotion && all.contextEmotion && all.speaking && all.robotHeadPosture);
}

TEST_F(RecordingPage, ShowsAMappingThatCanBeRead)
{
  const auto mapping =
      KV::recordings::readMapping(folder.write("mapping.json", examplesOf(SKEIGIOT_RECORDING_PAGE, "```json mapping")));
  EXPECT_FLOAT_EQ(1.5f, mapping.actionUnits.laughter.limit.at(0).weight);
  EXPECT_TRUE(mapping.actionUnits.sorrow.sum.empty());
  EXPECT_EQ(2u, mapping.blendshapes.joy.sum.size());
  EXPECT_FLOAT_EQ(35.f, mapping.eyes.yaw);
  EXPECT_EQ(2u, mapping.emotions.sorrow.sum.at(0).of.size());
  EXPECT_TRUE(mapping.pyFeat.degrees.value());
  EXPECT_TRUE(mapping.pyFeat.pitchIsUp.value());
}

TEST_F(RecordingPage, ShowsATableOfSpeakersAndOneOfStreamsThatCanBeRead)
{
  const auto speakers = KV::recordings::readMapping(
      folder.write("speakers.json", examplesOf(SKEIGIOT_RECORDING_PAGE, "```json speakers")));
  EXPECT_EQ("ben", speakers.speakers.at("SPEAKER_01").name);
  EXPECT_TRUE(speakers.speakers.at("SPEAKER_02").isNobody());
  const auto streams =
      KV::recordings::readMapping(folder.write("streams.json", examplesOf(SKEIGIOT_RECORDING_PAGE, "```json streams")));
  ASSERT_EQ(2u, streams.streams.size());
  EXPECT_EQ(3u, streams.streams[0].channels.size());
  EXPECT_TRUE(streams.streams[1].areScopes.value());
}

TEST_F(RecordingPage, ShowsATableOfReadingsThatCanBeRead)
{
  const auto contents = read(examplesOf(SKEIGIOT_RECORDING_PAGE, "```csv"));
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  EXPECT_THAT(contents.warnings, IsEmpty());
  ASSERT_EQ(7u, contents.entries.size());
  EXPECT_FLOAT_EQ(0.8f, contents.entries[0].observation.voiceEmotion.value().value.joy().value);
  EXPECT_TRUE(contents.entries[3].observation.speaking && contents.entries[3].observation.robotHeadPosture);
  EXPECT_FLOAT_EQ(5.f, contents.entries[5].observation.contextEmotion.value().value.lifetime);
}

}  // namespace
