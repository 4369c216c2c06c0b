#include "support.hpp"

#include <gmock/gmock.h>

#include <fstream>

namespace
{
using ::testing::IsEmpty;

// The lines of the page between "```json" and "```".
std::string examplesOf(const std::string& page)
{
  std::ifstream file(page);
  std::string examples;
  bool isExample = false;
  for (std::string line; std::getline(file, line);)
  {
    if (line.rfind("```", 0) == 0)
      isExample = line == "```json";
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

}  // namespace
