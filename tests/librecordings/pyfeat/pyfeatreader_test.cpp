#include "librecordings/face/facesteps.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <sstream>

namespace
{
using support::stepsOf;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr float tolerance = 1e-4f;  // [deg] single precision at some tens of degrees

const std::string poseHeader = "FaceScore,Pitch,Roll,Yaw,frame\n";

class PyFeatReader : public support::FaceReaderTest
{
protected:
  static KV::recordings::ReadingOptions atThirty()
  {
    KV::recordings::ReadingOptions options;
    options.framesPerSecond = 30.0;
    return options;
  }

  KV::HeadPosture postureIn(const std::string& text, const KV::recordings::ReadingOptions& options = atThirty()) const
  {
    return observed(text, options).headPosture.value().value;
  }
};

/// Twelve rows of a head that nods by `pitch` times -5 to 6. The landmarks show it look up (1) or down (-1) for a Pitch
/// above 0.
std::string nodding(double pitch, double landmarksUp)
{
  std::ostringstream text;
  text << "FaceScore,Pitch,Roll,Yaw,frame";
  for (const char* const axis : {"x_", "y_"})
    for (const int landmark : {0, 16, 36, 39, 42, 45})
      text << "," << axis << landmark;
  text << "\n";
  for (int i = 0; i < 12; ++i)
  {
    const int step = i - 5;
    const double ears = 100.0 + landmarksUp * step;  // lower, if the face looks up
    text << "0.99," << pitch * step << ",0,0," << i << ",50,150,70,90,110,130," << ears << "," << ears
         << ",90,90,90,90\n";
  }
  return text.str();
}

// The readings of a row.

TEST_F(PyFeatReader, GivesAllReadingsOfANewRow)
{
  const auto contents = readWell(
      "FaceScore,Pitch,Roll,Yaw,AU06,AU12,Neutral,Happy,Sad,Surprise,Fear,Disgust,Anger,valence,gaze_pitch,gaze_yaw,"
      "input,frame,approx_time,Identity\n"
      "0.9,0.1,0.2,0.3,0.4,0.5,0.1,0.6,0.05,0.15,0,0,0.2,0.5,0.01,0.02,a.mp4,0,00:00,\n",
      atThirty());
  ASSERT_EQ(1u, contents.entries.size());
  EXPECT_EQ(0, contents.entries.front().person.value());
  const auto& observation = contents.entries.front().observation;
  EXPECT_NEAR(17.1887f, observation.headPosture.value().value.yaw(), tolerance);
  EXPECT_NEAR(11.4592f, observation.headPosture.value().value.roll(), tolerance);
  EXPECT_NEAR(0.57296f, observation.gaze.value().value.pitch, tolerance);
  EXPECT_NEAR(1.14592f, observation.gaze.value().value.yaw, tolerance);
  EXPECT_NEAR(0.2f, observation.smile.value().value.value, 1e-6f) << "what speaks against a smile is taken off";
  EXPECT_FLOAT_EQ(0.9f, observation.smile.value().value.confidence);
  const auto expressions = observation.expressions.value().value;
  EXPECT_NEAR(0.2f, expressions.joy.value, 1e-6f);
  EXPECT_FLOAT_EQ(1.4f * 0.05f, expressions.sorrow.value);
  EXPECT_FLOAT_EQ(0.15f, expressions.surprise.value);
  EXPECT_FLOAT_EQ(1.4f * 0.2f, expressions.anger.value);
  EXPECT_NEAR(1.f - 0.625f, expressions.calm.value, 1e-6f) << "the surprise takes half of itself";
  EXPECT_FLOAT_EQ(0.9f, expressions.joy.confidence);
  EXPECT_FLOAT_EQ(0.f, expressions.laughter.confidence);
  EXPECT_FLOAT_EQ(0.f, expressions.excitement.confidence);
  EXPECT_FALSE(observation.distance);
  EXPECT_FALSE(observation.facialPoints);
}

TEST_F(PyFeatReader, KnowsTheOldNamesOfEmotions)
{
  const auto expressions = observed(
                               "frame,FaceScore,anger,disgust,fear,happiness,sadness,surprise,neutral\n"
                               "0,0.9,0.1,0,0,0.9,0.2,0.3,0.4\n",
                               atThirty())
                               .expressions.value()
                               .value;
  EXPECT_NEAR(0.3f, expressions.joy.value, 1e-6f);
  EXPECT_FLOAT_EQ(1.4f * 0.2f, expressions.sorrow.value);
  EXPECT_FLOAT_EQ(0.3f, expressions.surprise.value);
  EXPECT_FLOAT_EQ(1.4f * 0.1f, expressions.anger.value);
  EXPECT_NEAR(0.13f, expressions.calm.value, 1e-6f);
}

TEST_F(PyFeatReader, FormsExpressionsFromActionUnitsWithoutEmotions)
{
  const auto contents = readWell("frame,FaceScore,AU06,AU12\n0,0.9,0.2,0.6\n", atThirty());
  EXPECT_FLOAT_EQ(0.6f - 0.1f, contents.entries.front().observation.expressions.value().value.joy.value);
  EXPECT_THAT(contents.description.front(), HasSubstr("expressions by action units"));
}

TEST_F(PyFeatReader, DoesNotDivideActionUnitsByTheFullScale)
{
  const auto options = support::withoutRest(atThirty());
  EXPECT_FLOAT_EQ(0.6f, observed("frame,FaceScore,AU12\n0,0.9,0.6\n", options).smile.value().value.value);
}

TEST_F(PyFeatReader, TakesOtherEmotionsAsTheMappingSays)
{
  auto options = mappedBy(R"({"emotions": {"sorrow": {"sum": [{"of": ["sad", "fear"]}]}, "anger": null}})");
  options.framesPerSecond = 30.0;
  const auto expressions =
      observed("frame,FaceScore,Neutral,Happy,Sad,Surprise,Fear,Disgust,Anger\n0,0.9,0,0,0.2,0,0.6,0,0.7\n", options)
          .expressions.value()
          .value;
  EXPECT_FLOAT_EQ(0.4f, expressions.sorrow.value);
  EXPECT_FLOAT_EQ(0.f, expressions.anger.confidence);
}

// Units and signs.

TEST_F(PyFeatReader, TakesSmallAnglesForRadians)
{
  const std::string text = poseHeader + "0.9,0.5,0,-1,0\n";
  EXPECT_NEAR(-57.2958f, postureIn(text).yaw(), tolerance);
  EXPECT_THAT(readWell(text).description.front(),
              HasSubstr("angles in radians, since none of the first rows is beyond 3.2"));
}

TEST_F(PyFeatReader, TakesAllAnglesForDegreesIfOneOfTheFirstIsBeyondHalfATurn)
{
  const std::string text = poseHeader + "0.9,0.5,0,-1,0\n0.9,0.5,0,-3.5,1\n";
  EXPECT_FLOAT_EQ(-1.f, postureIn(text).yaw());
  EXPECT_THAT(readWell(text).description.front(),
              HasSubstr("angles in degrees, since one of the first rows is beyond 3.2"));
}

TEST_F(PyFeatReader, TakesHalfATurnAndALittleForRadians)
{
  EXPECT_NEAR(-183.3465f, postureIn(poseHeader + "0.9,0,0,-3.2,0\n").yaw(), tolerance);
  EXPECT_FLOAT_EQ(-3.2001f, postureIn(poseHeader + "0.9,0,0,-3.2001,0\n").yaw());
}

TEST_F(PyFeatReader, DescribesTheConventionOfAngles)
{
  EXPECT_EQ(
      "py-feat: angles in radians, since none of the first rows is beyond 3.2, Pitch down (a guess), Yaw to the own "
      "right, "
      "Roll to the own right shoulder, counted from the optical axis of the camera, not mirrored",
      readWell(poseHeader + "0.9,0.5,0,-1,0\n").description.front());
}

TEST_F(PyFeatReader, TurnsYawToTheOwnRightAndRollToTheOwnRightShoulder)
{
  const auto posture = postureIn(poseHeader + "0.9,0,10,20,0\n");
  EXPECT_FLOAT_EQ(20.f, posture.yaw());
  EXPECT_FLOAT_EQ(10.f, posture.roll());
}

TEST_F(PyFeatReader, FindsTheSignOfThePitchByTheLandmarks)
{
  for (const double size : {0.02, 2.0})  // radians, degrees
  {
    const auto up = readWell(nodding(size, 1.0), atThirty());
    const auto down = readWell(nodding(size, -1.0), atThirty());
    EXPECT_LT(up.entries.front().observation.headPosture.value().value.pitch(), 0.f);
    EXPECT_GT(down.entries.front().observation.headPosture.value().value.pitch(), 0.f);
    EXPECT_THAT(up.description.front(), HasSubstr("Pitch up (by the landmarks)"));
    EXPECT_THAT(down.description.front(), HasSubstr("Pitch down (by the landmarks)"));
    EXPECT_THAT(up.warnings, IsEmpty());
  }
}

TEST_F(PyFeatReader, GuessesTheSignOfThePitchWithAWarning)
{
  const auto radians = readWell(poseHeader + "0.9,0.1,0,0,0\n", atThirty());
  EXPECT_NEAR(-5.7296f, radians.entries.front().observation.headPosture.value().value.pitch(), tolerance);
  EXPECT_THAT(radians.warnings, ElementsAre(HasSubstr("it is taken for down; say so by pyFeat.pitch")));
  const auto degrees = readWell(poseHeader + "0.9,10,0,0,0\n", atThirty());
  EXPECT_FLOAT_EQ(10.f, degrees.entries.front().observation.headPosture.value().value.pitch());
  EXPECT_THAT(degrees.warnings, ElementsAre(HasSubstr("it is taken for up; say so by pyFeat.pitch")));
}

TEST_F(PyFeatReader, CountsAsTheMappingSays)
{
  auto options =
      mappedBy(R"({"pyFeat": {"angles": "degrees", "pitch": "down", "gazeYaw": "right", "gazePitch": "down"}})");
  options.framesPerSecond = 30.0;
  const auto contents = readWell("FaceScore,Pitch,Roll,Yaw,gaze_pitch,gaze_yaw,frame\n0.9,1,2,3,0.1,0.2,0\n", options);
  const auto& observation = contents.entries.front().observation;
  EXPECT_FLOAT_EQ(-1.f, observation.headPosture.value().value.pitch());
  EXPECT_FLOAT_EQ(3.f, observation.headPosture.value().value.yaw());
  EXPECT_NEAR(-11.4592f, observation.gaze.value().value.yaw, tolerance);
  EXPECT_NEAR(-5.7296f, observation.gaze.value().value.pitch, tolerance);
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(contents.description, Contains(AllOf(HasSubstr("Pitch down (as given)"),
                                                   HasSubstr("gaze_yaw to the own right, gaze_pitch down,"))));
}

TEST_F(PyFeatReader, RefusesALaterRowThatContradictsTheUnit)
{
  std::string text = poseHeader;
  for (int frame = 0; frame < 700; ++frame)
    text += "0.9,0.1,0," + std::string(frame == 650 ? "4" : "0.1") + "," + std::to_string(frame) + "\n";
  const auto contents = read(text);
  EXPECT_THAT(contents.badLines,
              ElementsAre(HasSubstr(":652: Pitch, Roll, Yaw: an angle is beyond 3.2, and so in degrees")));
  EXPECT_EQ(700u, contents.entries.size()) << "one frame is reported as missed";
}

TEST_F(PyFeatReader, ExchangesLeftAndRightOfAMirrorImage)
{
  auto options = atThirty();
  options.mirrored = true;
  const auto posture = postureIn(poseHeader + "0.9,0,10,20,0\n", options);
  EXPECT_FLOAT_EQ(-20.f, posture.yaw());
  EXPECT_FLOAT_EQ(-10.f, posture.roll());
}

TEST_F(PyFeatReader, LeavesOutWhatIsNoNumber)
{
  const auto observation =
      observed("FaceScore,Pitch,Roll,Yaw,AU12,Happy,gaze_pitch,gaze_yaw,frame\n0.9,0,,0,NaN,,nan,0,0\n", atThirty());
  EXPECT_TRUE(observation.faceDetected);
  EXPECT_FALSE(observation.headPosture);
  EXPECT_FALSE(observation.gaze);
  EXPECT_FALSE(observation.smile);
  EXPECT_FALSE(observation.expressions);
}

// Times.

TEST_F(PyFeatReader, FindsTheRateByTheTimesInWholeSeconds)
{
  std::string text = "FaceScore,Happy,frame,approx_time\n";
  for (int frame = 0; frame < 300; ++frame)
    text += "0.9,1," + std::to_string(frame) + ",00:" + (frame < 250 ? "0" : "") + std::to_string(frame / 25) + "\n";
  const auto contents = readWell(text);
  EXPECT_EQ(40, std::lround(support::secondsOf(contents.entries.at(1)) * 1000.0));
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(contents.description.back(), HasSubstr("25 frames/s assumed"));
}

TEST_F(PyFeatReader, WarnsIfTheTimesLeaveTheRateOpen)
{
  const auto contents = readWell("FaceScore,Happy,frame,approx_time\n0.9,1,0,00:00\n0.9,1,20,00:00\n0.9,1,40,00:01\n");
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("leave open which rate from 20 to 40 frames/s")));
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "667 0+", "1333 0+"));
}

TEST_F(PyFeatReader, AssumesThirtyFramesWithoutTimes)
{
  const auto contents = readWell("FaceScore,Happy,frame\n0.9,1,0\n0.9,1,1\n");
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "33 0+"));
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("30 frames/s are assumed")));
}

// The persons.

TEST_F(PyFeatReader, AgesAFaceThatIsLost)
{
  EXPECT_THAT(stepsIn("FaceScore,Happy,frame\n0.9,1,0\n0.69,1,1\n,,2\n0.9,1,3\n", atThirty()),
              ElementsAre("0 0+", "33 0-", "67 0-", "100 0+"));
}

TEST_F(PyFeatReader, DistinguishesPersonsByIdentity)
{
  const auto contents = readWell(
      "FaceScore,Happy,frame,Identity\n"
      "0.9,1,0,Person_1\n0.9,1,0,Person_0\n0.9,1,1,Person_0\n0.9,1,2,Person_1\n",
      atThirty());
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "0 1+", "33 1+", "33 0-", "67 0+", "67 1-"));
  EXPECT_EQ("Person_1", contents.entries.at(0).personName);
  EXPECT_EQ("Person_0", contents.entries.at(1).personName);
}

TEST_F(PyFeatReader, CountsTheFacesOfAFrameWithoutIdentity)
{
  const auto contents = readWell("FaceScore,Happy,frame,Identity\n0.9,1,0,\n0.9,1,0,\n0.9,1,1,\n", atThirty());
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "0 1+", "33 0+", "33 1-"));
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("there are several faces in a frame and no Identity")));
}

TEST_F(PyFeatReader, TakesThePersonFromAnotherColumn)
{
  auto options = atThirty();
  options.personColumn = "input";
  EXPECT_THAT(stepsIn("FaceScore,Happy,frame,input\n0.9,1,0,a\n0.9,1,1,b\n", options),
              ElementsAre("0 0+", "33 1+", "33 0-"));
}

// Bad input.

TEST_F(PyFeatReader, NamesWhatItCannotRead)
{
  EXPECT_EQ("2: Yaw: expected a number, found 'x'", errorOf(poseHeader + "0.9,0,0,x,0\n"));
  EXPECT_EQ("2: frame: expected a whole number, found ''", errorOf(poseHeader + "0.9,0,0,0,\n"));
  EXPECT_EQ("2: 3 fields, expected 5 as in the header; the last line is not complete: the file may be cut",
            errorOf(poseHeader + "0.9,0,0"));
  EXPECT_EQ("1: there is no row below the header", errorOf(poseHeader));
  EXPECT_EQ("1: Yaw: this column is there twice", errorOf("FaceScore,Pitch,Roll,Yaw,Yaw,frame\n"));
  EXPECT_EQ("1: the columns are separated by semicolons; expected commas, and numbers with a decimal point",
            errorOf("FaceScore;Pitch;Roll;Yaw\n0,9;0;0;0\n"));
  EXPECT_THAT(errorOf("FaceRectX,FaceRectY,FaceScore,frame\n1,2,0.9,0\n"), HasSubstr("1: there is nothing to read"));
  EXPECT_EQ("3: frame: time runs backwards, expected the rows in the order of their frames",
            errorOf(poseHeader + "0.9,0,0,0,5\n0.9,0,0,0,4\n"));
  EXPECT_EQ("3: Identity: expected the number or name of a person, found ''",
            errorOf("FaceScore,Happy,frame,Identity\n0.9,1,0,Anna\n0.9,1,0,\n"));
  EXPECT_EQ("3: Identity: face 0 is there twice in frame 0",
            errorOf("FaceScore,Happy,frame,Identity\n0.9,1,0,Anna\n0.9,1,0,Anna\n"));
}

TEST_F(PyFeatReader, GivesTheSameBitsFromTheOwnFormat)
{
  support::expectSameBitsFromJsonLines(readWell(nodding(0.0173, 1.0), atThirty()));
}

TEST_F(PyFeatReader, RefusesAnEmotionInPercent)
{
  EXPECT_EQ("2: happy: expected a number from 0 to 1, found 95; it looks like percent: divide it by 100",
            errorOf("FaceScore,Happy,frame\n0.9,95,0\n"));
}

TEST_F(PyFeatReader, LooksForAFaceWhereNoColumnTells)
{
  const auto contents = support::contentsOf(folder.write("recording", "Happy,frame\n1,0\n,30\n"), "pyfeat");
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "1000 0-"));
}

TEST_F(PyFeatReader, CountsRowsAsFramesWithoutNumbers)
{
  EXPECT_THAT(stepsOf(readWell("FaceScore,Happy\n0.9,1\n0.9,1\n")), ElementsAre("0 0+", "33 0+"));
}

TEST_F(PyFeatReader, LeavesOutTimesThatAreNone)
{
  for (const char* const time : {"later", "1", "00:-1", "1:2:3:4", "00:1x", ":"})
  {
    const auto contents =
        readWell("FaceScore,Happy,frame,approx_time\n0.9,1,0," + std::string(time) + "\n0.9,1,30," + time + "\n");
    EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "1000 0+")) << time;
    EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("30 frames/s are assumed"))) << time;
  }
}

}  // namespace
