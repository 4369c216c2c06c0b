#include "librecordings/face/facesteps.hpp"
#include "livelink/timecode.hpp"

#include <gmock/gmock.h>

namespace
{
using support::stepsOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr float tolerance = 1e-4f;  // [deg] single precision at some tens of degrees

TEST(Timecode, CountsSixtiethsOfASecond)
{
  EXPECT_DOUBLE_EQ(0.0, KV::recordings::secondsOfTimecode("00:00:00:00.000").value());
  EXPECT_DOUBLE_EQ(44519.5, KV::recordings::secondsOfTimecode("12:21:59:30").value());
  EXPECT_NEAR(3723.0 + 6.595 / 60.0, KV::recordings::secondsOfTimecode("01:02:03:06.595").value(), 1e-9);
}

TEST(Timecode, IsRefusedIfItHasAnotherForm)
{
  for (const char* const text :
       {"", "12:21:59", "12:21:59:60", "24:00:00:00", "12:60:00:00", "12:21:60:00", "12.5:00:00:00", "-1:00:00:00",
        "12:21:59:06:5", "12:21:59:06x", "12:21:59:", "a", "nan:00:00:00", "00:00:00:nan", "1e1:00:00:00"})
    EXPECT_FALSE(KV::recordings::secondsOfTimecode(text)) << text;
}

class LiveLinkReader : public support::FaceReaderTest
{
protected:
  static constexpr const char* header =
      "Timecode,BlendShapeCount,EyeLookInLeft,EyeLookOutLeft,EyeLookUpLeft,EyeLookDownLeft,EyeLookInRight,"
      "EyeLookOutRight,EyeLookUpRight,EyeLookDownRight,MouthSmileLeft,MouthSmileRight,HeadYaw,HeadPitch,HeadRoll,"
      "LeftEyeYaw,LeftEyePitch,LeftEyeRoll,RightEyeYaw,RightEyePitch,RightEyeRoll\n";

  static std::string row(const std::string& time, const std::string& smiles, const std::string& head,
                         const std::string& eyes)
  {
    return time + ",61,0,0,0,0,0,0,0,0," + smiles + "," + head + "," + eyes + "\n";
  }
};

const std::string still = "0,0,0";
const std::string stillEyes = "0,0,0,0,0,0";

TEST_F(LiveLinkReader, ReportsTheSmileAndCapsScoresAboveOne)
{
  const auto smile = observed(header + row("00:00:00:00.0", "1.02,0.5", still, stillEyes)).smile.value().value;
  EXPECT_FLOAT_EQ(0.75f, smile.value);
  EXPECT_FLOAT_EQ(1.f, smile.confidence);
}

// The eyes' yaw > 0 is to the person's own right, pitch > 0 down; a gaze is positive to the own left and up.
TEST_F(LiveLinkReader, TurnsTheEyesIntoAGaze)
{
  const auto gaze = observed(header + row("00:00:00:00.0", "0,0", still, "0.1,0.2,0,0.3,0.4,0")).gaze.value().value;
  EXPECT_NEAR(-11.4592f, gaze.yaw, tolerance);
  EXPECT_NEAR(-17.1887f, gaze.pitch, tolerance);
}

TEST_F(LiveLinkReader, AddsTheEyesToTheHead)
{
  const auto observation = observed(header + row("00:00:00:00.0", "0,0", "0.1,0.2,0.3", "0.1,0,0,0.1,0,0"));
  const auto posture = observation.headPosture.value().value;
  EXPECT_NEAR(5.7296f, posture.yaw(), tolerance);
  EXPECT_NEAR(-11.4592f, posture.pitch(), tolerance);
  EXPECT_NEAR(17.1887f, posture.roll(), tolerance);
  EXPECT_NEAR(-11.4592f, observation.gaze.value().value.yaw, tolerance);
  EXPECT_NEAR(-11.4592f, observation.gaze.value().value.pitch, tolerance);
}

TEST_F(LiveLinkReader, ReportsNoHeadPostureThatWasNotStreamed)
{
  const auto observation = observed(header + row("00:00:00:00.0", "0,0", still, stillEyes));
  EXPECT_FALSE(observation.headPosture);
  EXPECT_TRUE(observation.gaze);
}

TEST_F(LiveLinkReader, TakesTheGazeFromTheScoresWithoutAngles)
{
  const auto gaze = observed(
                        "Timecode,BlendShapeCount,EyeLookInLeft,EyeLookOutLeft,EyeLookUpLeft,EyeLookDownLeft,"
                        "EyeLookInRight,EyeLookOutRight,EyeLookUpRight,EyeLookDownRight\n"
                        "00:00:00:00.0,61,0,0.5,0,0,0.5,0,0,0\n")
                        .gaze.value()
                        .value;
  EXPECT_FLOAT_EQ(15.f, gaze.yaw);
  EXPECT_FLOAT_EQ(0.f, gaze.pitch);
}

TEST_F(LiveLinkReader, ExchangesLeftAndRightOfAMirrorImage)
{
  KV::recordings::ReadingOptions options;
  options.mirrored = true;
  const auto observation = observed(header + row("00:00:00:00.0", "0,0", "0.1,0,0", "0.1,0.2,0,0.1,0.2,0"), options);
  EXPECT_NEAR(-5.7296f, observation.headPosture.value().value.yaw(), tolerance);
  EXPECT_NEAR(11.4592f, observation.gaze.value().value.yaw, tolerance);
}

TEST_F(LiveLinkReader, AgesAFaceThatIsLost)
{
  const auto contents = readWell(header + row("10:00:00:00.1", "0,0", still, stillEyes) + "10:00:00:02.1,0\n" +
                                 "10:00:00:04.1,0\n" + row("10:00:00:06.1", "0,0", still, stillEyes));
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "33 0-", "67 0-", "100 0+"));
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(contents.description.back(), HasSubstr("30 frames/s by the time stamps"));
}

TEST_F(LiveLinkReader, GoesOnOverMidnight)
{
  EXPECT_THAT(stepsIn(header + row("23:59:59:58.0", "0,0", still, stillEyes) +
                      row("00:00:00:00.0", "0,0", still, stillEyes) + row("00:00:00:02.0", "0,0", still, stillEyes)),
              ElementsAre("0 0+", "33 0+", "67 0+"));
}

TEST_F(LiveLinkReader, CountsRowsAtAGivenRate)
{
  KV::recordings::ReadingOptions options;
  options.framesPerSecond = 10.0;
  EXPECT_THAT(
      stepsIn(header + row("00:00:00:00.0", "0,0", still, stillEyes) + row("00:00:00:02.0", "0,0", still, stillEyes),
              options),
      ElementsAre("0 0+", "100 0+"));
}

TEST_F(LiveLinkReader, NeedsATimecode)
{
  const std::string path = folder.write("face.csv", "Time,BlendShapeCount\n0,61\n");
  EXPECT_EQ(path + ":1: there is no column Timecode", support::contentsOf(path, "livelink").fatal);
}

TEST_F(LiveLinkReader, NamesWhatItCannotRead)
{
  EXPECT_EQ("2: Timecode: expected a time HH:MM:SS:FF.frac, in frames of a sixtieth of a second, found '1.5'",
            errorOf(header + row("1.5", "0,0", still, stillEyes)));
  EXPECT_EQ("2: MouthSmileLeft: expected a number, found 'x'",
            errorOf(header + row("00:00:00:00.0", "x,0", still, stillEyes)));
  EXPECT_EQ("2: 2 fields, expected 21 as in the header", errorOf(std::string(header) + "00:00:00:00.0,61\n"));
  EXPECT_EQ("2: 2 fields, expected 21 as in the header; the last line is not complete: the file may be cut",
            errorOf(std::string(header) + "00:00:00:00.0,6"));
  EXPECT_EQ("1: there is no row below the header", errorOf(header));
  EXPECT_EQ(
      "3: Timecode: time runs backwards, expected the rows in the order of their frames",
      errorOf(header + row("00:00:00:30.0", "0,0", still, stillEyes) + row("00:00:00:00.0", "0,0", still, stillEyes)));
}

TEST_F(LiveLinkReader, GivesTheSameBitsFromTheOwnFormat)
{
  support::expectSameBitsFromJsonLines(
      readWell(header + row("10:00:00:00.1", "0.3,0.1", "0.01,0.02,0.03", "0.11,0.12,0,0.13,0.14,0") +
               "10:00:00:02.1,0\n" + row("10:00:00:04.1", "0.7,0.3", still, stillEyes)));
}

}  // namespace
