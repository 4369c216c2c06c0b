#include "face/personsinview.hpp"
#include "librecordings/face/facesteps.hpp"
#include "openface/openfacecolumns.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <ostream>

namespace
{
using support::Contents;
using support::secondsOf;
using support::stepsOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr float tolerance = 1e-4f;  // [deg] single precision at some tens of degrees

const std::string full =
    "frame, face_id, timestamp, confidence, success, gaze_angle_x, gaze_angle_y, pose_Tx, pose_Ty, pose_Tz, pose_Rx, "
    "pose_Ry, pose_Rz, AU06_r, AU12_r\r\n";

class OpenFaceReader : public support::FaceReaderTest
{
protected:
  /// Returns the observation of a recording of one row.
  KV::PersonObservation observed(const std::string& text, const KV::recordings::ReadingOptions& options = {}) const
  {
    EXPECT_EQ(1u, readWell(text, options).entries.size());
    return FaceReaderTest::observed(text, options);
  }
};

// The readings of a row.

TEST_F(OpenFaceReader, GivesAllReadingsOfATrackedRow)
{
  const auto contents = read(full + "1, 4, 0.500, 0.98, 1, 0, 0, 0, 0, 800, 0, 0, 0, 1, 2\r\n");
  ASSERT_EQ(1u, contents.entries.size());
  const auto& entry = contents.entries.front();
  EXPECT_EQ(support::recordingEpoch + 500000000, support::nanosecondsOf(entry.time));
  EXPECT_EQ(4, entry.person.value());
  EXPECT_TRUE(entry.seen);
  EXPECT_EQ(0, entry.movements);
  EXPECT_FALSE(entry.ambianceActivity);
  EXPECT_TRUE(entry.scopeStarts.empty());
  EXPECT_TRUE(entry.scopeStops.empty());

  const auto& observation = entry.observation;
  EXPECT_TRUE(observation.faceDetected.value().value);
  EXPECT_FLOAT_EQ(0.8f, observation.distance.value().value);
  const float aboveRest = 2.f / 3.f - 0.2f;
  EXPECT_FLOAT_EQ(aboveRest, observation.smile.value().value.value);
  EXPECT_FLOAT_EQ(0.98f, observation.smile.value().value.confidence);
  EXPECT_FLOAT_EQ(aboveRest, observation.expressions.value().value.joy.value);
  EXPECT_FLOAT_EQ(0.98f, observation.expressions.value().value.joy.confidence);
  for (const auto time :
       {observation.faceDetected->time, observation.distance->time, observation.smile->time,
        observation.expressions->time, observation.headPosture.value().time, observation.gaze.value().time})
    EXPECT_EQ(entry.time, time);

  EXPECT_FALSE(observation.headHeight);
  EXPECT_FALSE(observation.facialPoints);
  EXPECT_FALSE(observation.lookingAtRobot);
  EXPECT_FALSE(observation.gender);
  EXPECT_FALSE(observation.age);
  EXPECT_FALSE(observation.voiceEmotion);
  EXPECT_FALSE(observation.asrEmotion);
  EXPECT_FALSE(observation.touchEmotion);
  EXPECT_FALSE(observation.contextEmotion);
  EXPECT_FALSE(observation.speaking);
  EXPECT_FALSE(observation.robotHeadPosture);
}

// 0.1 rad is 5.7296 deg. In OpenFace Rx > 0 is down, Ry > 0 own right, Rz > 0 own left shoulder.
TEST_F(OpenFaceReader, TurnsRadiansIntoDegreesUpOwnRightOwnRightShoulder)
{
  const auto posture = observed("frame,pose_Rx,pose_Ry,pose_Rz\n1,0.1,0.2,0.3\n").headPosture.value().value;
  EXPECT_NEAR(-5.7296f, posture.pitch(), tolerance);
  EXPECT_NEAR(11.4592f, posture.yaw(), tolerance);
  EXPECT_NEAR(-17.1887f, posture.roll(), tolerance);
}

// In OpenFace x > 0 is to the person's own left, y > 0 down.
TEST_F(OpenFaceReader, TurnsTheGazeIntoDegreesOwnLeftAndUp)
{
  const auto gaze = observed("frame,gaze_angle_x,gaze_angle_y\n1,0.1,0.2\n").gaze.value().value;
  EXPECT_NEAR(5.7296f, gaze.yaw, tolerance);
  EXPECT_NEAR(-11.4592f, gaze.pitch, tolerance);
}

TEST_F(OpenFaceReader, FormsTheGazeFromTheVectorsOfBothEyesWithoutTheAngles)
{
  const auto gaze = observed(
                        "frame,gaze_0_x,gaze_0_y,gaze_0_z,gaze_1_x,gaze_1_y,gaze_1_z\n"
                        "1,0.3,0.1,-0.9,0.1,0.3,-0.95\n")
                        .gaze.value()
                        .value;
  EXPECT_NEAR(std::atan2(0.4, 1.85) * 57.29578, static_cast<double>(gaze.yaw), 1e-4);
  EXPECT_NEAR(-std::atan2(0.4, 1.85) * 57.29578, static_cast<double>(gaze.pitch), 1e-4);
}

TEST_F(OpenFaceReader, CountsAnglesFromTheLineOfSight)
{
  // 45 degrees to the right of the axis, on its height: a person there who faces the camera has turned 45 to the right.
  const auto observation = observed(full + "1,0,0,1,1, -0.785398,0, 500,0,500, 0,0.785398,0, 0,0\n");
  EXPECT_NEAR(0.f, observation.headPosture.value().value.yaw(), tolerance);
  EXPECT_NEAR(0.f, observation.gaze.value().value.yaw, tolerance);
  // 45 degrees below the axis: a person there who faces the camera looks up.
  const auto below = observed(full + "1,0,0,1,1, 0,-0.785398, 0,500,500, -0.785398,0,0, 0,0\n");
  EXPECT_NEAR(0.f, below.headPosture.value().value.pitch(), tolerance);
  EXPECT_NEAR(0.f, below.gaze.value().value.pitch, tolerance);
}

TEST_F(OpenFaceReader, CountsAnglesFromTheOpticalAxisIfAsked)
{
  KV::recordings::ReadingOptions options;
  options.lineOfSight = false;
  const auto observation = observed(full + "1,0,0,1,1, -0.785398,0, 500,0,500, 0,0.785398,0, 0,0\n", options);
  EXPECT_NEAR(45.f, observation.headPosture.value().value.yaw(), tolerance);
  EXPECT_NEAR(-45.f, observation.gaze.value().value.yaw, tolerance);
  EXPECT_FLOAT_EQ(std::hypot(0.5f, 0.5f), observation.distance.value().value);
}

TEST_F(OpenFaceReader, ExchangesLeftAndRightOfAMirrorImage)
{
  const std::string text = full + "1,0,0,1,1, 0.1,0.2, 200,100,500, 0.1,0.3,0.4, 0,0\n";
  const auto plain = observed(text);
  KV::recordings::ReadingOptions options;
  options.mirrored = true;
  const auto mirrored = observed(text, options);
  EXPECT_FLOAT_EQ(-plain.headPosture.value().value.yaw(), mirrored.headPosture.value().value.yaw());
  EXPECT_FLOAT_EQ(plain.headPosture.value().value.pitch(), mirrored.headPosture.value().value.pitch());
  EXPECT_FLOAT_EQ(-plain.headPosture.value().value.roll(), mirrored.headPosture.value().value.roll());
  EXPECT_FLOAT_EQ(-plain.gaze.value().value.yaw, mirrored.gaze.value().value.yaw);
  EXPECT_FLOAT_EQ(plain.gaze.value().value.pitch, mirrored.gaze.value().value.pitch);
  EXPECT_FLOAT_EQ(plain.distance.value().value, mirrored.distance.value().value);
}

TEST_F(OpenFaceReader, MeasuresTheHeightFromTheCamera)
{
  KV::recordings::ReadingOptions options;
  options.cameraHeight = 1.2f;
  const auto observation = observed(full + "1,0,0,1,1, 0,0, 200,-300,500, 0,0,0, 0,0\n", options);
  EXPECT_FLOAT_EQ(1.5f, observation.headHeight.value().value);
}

TEST_F(OpenFaceReader, TakesActionUnitsAsPartsOfTheFullScale)
{
  auto options = support::withoutRest();
  options.actionUnitFullScale = 2.5f;
  const std::string header = "frame,AU12_r\n";
  EXPECT_FLOAT_EQ(0.5f, observed(header + "1,1.25\n", options).smile.value().value.value);
  EXPECT_FLOAT_EQ(1.f, observed(header + "1,3.1\n", options).smile.value().value.value);
}

TEST_F(OpenFaceReader, TakesTwelveLandmarksAsFacialPoints)
{
  std::string header = "frame,confidence,AU12_r";
  std::string row = "1,0.8,0";
  for (const std::string axis : {"x", "y"})
    for (int i = 0; i < 68; ++i)
    {
      header += "," + axis + "_" + std::to_string(i);
      row += "," + std::to_string(i) + (axis == "x" ? ".25" : ".75");
    }
  const auto points = observed(header + "\n" + row + "\n").facialPoints.value().value;
  EXPECT_FLOAT_EQ(0.8f, points.globalConfidence());
  for (std::size_t i = 0; i < 12; ++i)
  {
    const auto point = points.facialPoint(static_cast<KV::PointDescription>(i));
    EXPECT_FLOAT_EQ(static_cast<float>(KV::recordings::facialPointLandmarks.at(i)) + 0.25f, point.value.first);
    EXPECT_FLOAT_EQ(static_cast<float>(KV::recordings::facialPointLandmarks.at(i)) + 0.75f, point.value.second);
    EXPECT_FLOAT_EQ(0.8f, point.confidence);
  }

  // In a mirror image OpenFace confuses the left corner of the mouth (54) with the right one (48).
  KV::recordings::ReadingOptions options;
  options.mirrored = true;
  const auto mirrored = observed(header + "\n" + row + "\n", options).facialPoints.value().value;
  const auto rightCorner = mirrored.facialPoint(KV::FacialPoint7);
  EXPECT_EQ(48, KV::recordings::facialPointLandmarks.at(7));
  EXPECT_FLOAT_EQ(54.25f, rightCorner.value.first);
  EXPECT_FLOAT_EQ(54.75f, rightCorner.value.second);
}

TEST_F(OpenFaceReader, LeavesAnUnknownLandmarkAtConfidenceZero)
{
  std::string header = "frame,AU12_r";
  std::string row = "1,0";
  for (const std::string axis : {"x_", "y_"})
    for (const int landmark : KV::recordings::facialPointLandmarks)
    {
      header += "," + axis + std::to_string(landmark);
      row += landmark == 30 ? ",NaN" : ",5";
    }
  const auto points = observed(header + "\n" + row + "\n").facialPoints.value().value;
  EXPECT_FLOAT_EQ(11.f / 12.f, points.globalConfidence());
  EXPECT_FLOAT_EQ(0.f, points.facialPoint(KV::FacialPoint6).confidence);
}

// Missing readings.

TEST_F(OpenFaceReader, ReadsActionUnitsAlone)
{
  const auto observation = observed("frame,timestamp,confidence,success,AU06_r,AU12_r\n1,0.5,1,1,1,2\n");
  EXPECT_TRUE(observation.smile);
  EXPECT_FALSE(observation.headPosture);
  EXPECT_FALSE(observation.gaze);
  EXPECT_FALSE(observation.distance);
}

TEST_F(OpenFaceReader, LeavesOutWhatIsNoNumber)
{
  for (const std::string missing : {"NaN", "nan", "-nan(ind)", "inf", "", "NA", "None", "1e400", "1e300"})
  {
    std::string row = "1,0,0,1,1, GAZE,0, 0,0,800, 0,POSE,0, 1,UNIT\n";
    for (const std::string field : {"GAZE", "POSE", "UNIT"})
      row.replace(row.find(field), field.size(), missing);
    const auto observation = observed(full + row);
    EXPECT_FALSE(observation.gaze) << missing;
    EXPECT_FALSE(observation.headPosture) << missing;
    EXPECT_FALSE(observation.smile) << missing;
    EXPECT_FALSE(observation.expressions) << missing;
    EXPECT_TRUE(observation.distance) << missing;
    EXPECT_TRUE(observation.faceDetected) << missing;
  }
}

TEST_F(OpenFaceReader, CountsFromTheOpticalAxisWithoutAPosition)
{
  for (const std::string row : {"1,0,0,1,1, 0,0, NaN,0,800, 0,0.1,0, 0,0\n", "1,0,0,1,1, 0,0, 0,0,0, 0,0.1,0, 0,0\n"})
  {
    const auto observation = observed(full + row);
    EXPECT_FALSE(observation.distance) << row;
    EXPECT_NEAR(5.7296f, observation.headPosture.value().value.yaw(), tolerance) << row;
  }
}

TEST_F(OpenFaceReader, KeepsACycleOfATrackedRowWithoutReadings)
{
  EXPECT_THAT(stepsIn("frame,confidence,success,AU12_r\n1,1,1,2\n2,1,1,NaN\n"), ElementsAre("0 0+", "33 0+"));
}

TEST_F(OpenFaceReader, TakesARowWithoutReadingsForALostFaceIfNoColumnShowsIt)
{
  EXPECT_THAT(stepsIn("frame,AU12_r\n1,2\n2,\n3,2\n"), ElementsAre("0 0+", "33 0-", "67 0+"));
}

TEST_F(OpenFaceReader, TakesConfidenceOneWithoutItsColumn)
{
  EXPECT_FLOAT_EQ(1.f, observed("frame,AU12_r\n1,2\n").smile.value().value.confidence);
}

TEST_F(OpenFaceReader, CapsTheConfidenceAtOne)
{
  EXPECT_FLOAT_EQ(1.f, observed("frame,confidence,AU12_r\n1,1.0002,2\n").smile.value().value.confidence);
}

TEST_F(OpenFaceReader, TakesThePersonFromAnotherColumn)
{
  KV::recordings::ReadingOptions options;
  options.personColumn = "participant";
  const auto contents = readWell("frame,face_id,AU12_r,participant\n1,9,1,p7\n1,9,1,p2\n2,9,1,p2\n", options);
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "0 1+", "33 1+", "33 0-"));
  std::vector<std::string> names;
  for (const KV::recordings::Step& step : contents.entries)
    names.push_back(step.personName);
  EXPECT_THAT(names, ElementsAre("p7", "p2", "p2", "p7"));
  EXPECT_THAT(contents.description.back(), HasSubstr("persons by participant"));

  EXPECT_THAT(stepsIn("frame,AU12_r,participant\n1,1,12\n2,1,7.0\n", options), ElementsAre("0 12+", "33 7+", "33 12-"));
}

TEST_F(OpenFaceReader, RefusesPersonsWithoutANumber)
{
  KV::recordings::ReadingOptions options;
  options.personColumn = "participant";
  EXPECT_EQ("1: participant: there is no such column to take persons from", errorOf("frame,AU12_r\n1,1\n", options));
  EXPECT_EQ("2: participant: expected the number or name of a person, found ''",
            errorOf("frame,AU12_r,participant\n1,1,\n", options));
  EXPECT_EQ("3: participant: expected a whole number as in the rows before, found 'anna'",
            errorOf("frame,AU12_r,participant\n1,1,4\n2,1,anna\n", options));
  EXPECT_EQ("3: participant: expected a name as in the rows before, found '4'",
            errorOf("frame,AU12_r,participant\n1,1,anna\n2,1,4\n", options));
}

TEST_F(OpenFaceReader, FormsExpressionsAsTheMappingSays)
{
  const auto options = support::withoutRest(mappedBy(R"({"actionUnits": {
      "smile": {"sum": [{"of": ["AU12"], "weight": 2}]},
      "sorrow": {"sum": [{"of": ["AU17"]}]},
      "excitement": {"sum": [{"of": ["AU12"]}, {"of": ["AU17"], "weight": -0.5}]},
      "laughter": null}})"));
  const auto observation = observed("frame,AU06_r,AU12_r,AU17_r\n1,5,2,1\n", options);
  EXPECT_FLOAT_EQ(0.8f, observation.smile.value().value.value);
  const auto expressions = observation.expressions.value().value;
  EXPECT_FLOAT_EQ(0.2f, expressions.sorrow.value);
  EXPECT_FLOAT_EQ(0.3f, expressions.excitement.value);
  EXPECT_FLOAT_EQ(0.4f, expressions.joy.value);
  EXPECT_FLOAT_EQ(0.f, expressions.laughter.confidence);
}

// The form of the file.

TEST_F(OpenFaceReader, ReadsPlainAndCompressedFilesWithMarkIndexColumnAndOtherPrograms)
{
  const std::string text =
      "\xEF\xBB\xBF,filename, frame,FE1, timestamp, AU12_r\r\n"
      "0,\"a, b.mp4\", 1.0,x,0.0,+2.5\r\n"
      "\r\n"
      "1,\"a, b.mp4\", 2.0,y,0.1,2.5e0\r\n";
  for (const auto& path : {folder.write("f.csv", text), folder.writeCompressed("f.csv.gz", text)})
  {
    const Contents contents = support::contentsOf(path, "", support::withoutRest());
    EXPECT_EQ("", contents.fatal);
    EXPECT_THAT(contents.badLines, IsEmpty());
    EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "100 0+"));
    for (const auto& entry : contents.entries)
      EXPECT_FLOAT_EQ(0.5f, entry.observation.smile.value().value.value);
  }
}

TEST_F(OpenFaceReader, ReadsWholeNumbersWrittenWithAFraction)
{
  EXPECT_THAT(stepsIn("frame,face_id,success,AU12_r\n25.0,2.0,1.0,1\n26.0,2.0,0.0,1\n"), ElementsAre("0 2+", "33 2-"));
}

// The persons.

TEST_F(OpenFaceReader, AgesAFaceThatIsLost)
{
  EXPECT_THAT(stepsIn("frame,confidence,success,AU12_r\n"
                      "1,0.9,1,1\n"
                      "2,0.9,0,1\n"
                      "3,0.69,1,1\n"
                      "4,NaN,1,1\n"
                      "5,0.9,,1\n"
                      "6,0.7,1,1\n"),
              ElementsAre("0 0+", "33 0-", "67 0-", "100 0-", "133 0-", "167 0+"));
}

TEST_F(OpenFaceReader, DoesNotReadTheGarbageOfALostFace)
{
  const auto contents = read(full + "1,0,0.0,1,1, 0,0,0,0,800, 0,0,0, 0,0\n2,x,0.1,0,0, a,b,c,d,e, f,g,h, i,j\n");
  EXPECT_THAT(contents.badLines, IsEmpty());
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "100 0-"));
}

TEST_F(OpenFaceReader, SaysNothingOfAFaceThatWasNeverTracked)
{
  EXPECT_THAT(stepsIn("frame,success,AU12_r\n1,0,0\n2,0,0\n3,1,1\n"), ElementsAre("67 0+"));
}

TEST_F(OpenFaceReader, TakesTheMinimalConfidenceFromTheOptions)
{
  KV::recordings::ReadingOptions options;
  options.minimalConfidence = 0.2f;
  EXPECT_THAT(stepsIn("frame,confidence,AU12_r\n1,0.2,1\n2,0.19,1\n", options), ElementsAre("0 0+", "33 0-"));
}

TEST_F(OpenFaceReader, DistinguishesSeveralPersons)
{
  EXPECT_THAT(stepsIn("frame,face_id,timestamp,success,AU12_r\n"
                      "1,1,0.0,1,1\n"
                      "1,0,0.0,1,1\n"
                      "2,0,0.1,1,1\n"
                      "3,7,0.2,1,1\n"
                      "4,1,0.3,1,1\n"
                      "4,0,0.3,0,1\n"),
              ElementsAre("0 1+", "0 0+",                // in the order of the rows
                          "100 0+", "100 1-",            // 1 has no row
                          "200 7+", "200 0-", "200 1-",  // in ascending order
                          "300 1+", "300 0-", "300 7-"));
}

TEST_F(OpenFaceReader, SeparatesFramesByTheirTimesWithoutNumbers)
{
  EXPECT_THAT(stepsIn("face_id,timestamp,AU12_r\n0,0.0,1\n1,0.0,1\n0,0.5,1\n"),
              ElementsAre("0 0+", "0 1+", "500 0+", "500 1-"));
  EXPECT_THAT(stepsIn("timestamp,AU12_r\n0,1\n0,1\n0,1\n"), ElementsAre("0 0+", "33 0+", "67 0+"));
}

TEST_F(OpenFaceReader, AgesEverybodyInMissingFrames)
{
  EXPECT_THAT(stepsIn("frame,face_id,timestamp,AU12_r\n"
                      "1,0,0.00,1\n1,1,0.00,1\n"
                      "2,0,0.10,1\n"
                      "5,0,0.40,1\n"
                      "6,0,0.50,1\n"),
              ElementsAre("0 0+", "0 1+", "100 0+", "100 1-", "200 0-", "200 1-", "300 0-", "300 1-", "400 0+",
                          "400 1-", "500 0+", "500 1-"));
}

TEST_F(OpenFaceReader, MissesNoFramesWhereTheTimeDoesNotJump)
{
  EXPECT_THAT(stepsIn("frame,timestamp,AU12_r\n1,0.0,1\n2,0.1,1\n3,0.2,1\n4,0.3,1\n20,0.4,1\n"),
              ElementsAre("0 0+", "100 0+", "200 0+", "300 0+", "400 0+"));
}

TEST_F(OpenFaceReader, AgesNobodyForLongerThanItCanBeSeen)
{
  const auto steps = stepsIn("frame,AU12_r\n1,1\n2,1\n3,1\n2000000000,1\n");
  ASSERT_EQ(3u + KV::recordings::PersonsInView::longestAbsence + 1u, steps.size());
  EXPECT_EQ("67 0+", steps[2]);
  EXPECT_EQ("100 0-", steps[3]);
  EXPECT_EQ("10067 0-", steps[302]);
  EXPECT_EQ("66666666633 0+", steps[303]);
}

// Times.

TEST_F(OpenFaceReader, BeginsAtAnyFrame)
{
  KV::recordings::ReadingOptions options;
  options.framesPerSecond = 10.0;
  EXPECT_THAT(stepsIn("frame,timestamp,AU12_r\n25,7.0,1\n26,7.001,1\n", options), ElementsAre("0 0+", "100 0+"));
}

TEST_F(OpenFaceReader, WarnsWhenItAssumesARate)
{
  for (const std::string text : {"frame,AU12_r\n1,1\n2,1\n", "frame,timestamp,AU12_r\n1,0,1\n2,0,1\n"})
  {
    const auto contents = read(text);
    EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "33 0+"));
    EXPECT_THAT(contents.warnings,
                ElementsAre(HasSubstr("30 frames/s are assumed; give the rate of the video if it was")));
  }
}

TEST_F(OpenFaceReader, WarnsOfARateThatNoCameraHas)
{
  const auto contents = read("frame,timestamp,AU12_r\n1,0.000,1\n2,0.001,1\n");
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "1 0+"));
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("the rate by the time stamps is 1000 frames/s")));
}

TEST_F(OpenFaceReader, LooksBeyondAFirstFrameOfManyFacesForTheRate)
{
  for (const int faces : {299, 300, 301, 700, 4000})
  {
    std::string text = "frame,face_id,timestamp,AU12_r\n";
    for (int frame = 0; frame < 3; ++frame)
      for (int face = 0; face < faces; ++face)
        text += std::to_string(frame) + "," + std::to_string(face) + "," + std::to_string(0.1 * frame) + ",1\n";
    const auto contents = readWell(text);
    EXPECT_THAT(contents.description.back(), HasSubstr("10 frames/s by the time stamps")) << faces;
    EXPECT_DOUBLE_EQ(0.2, secondsOf(contents.entries.back())) << faces;
  }
}

TEST_F(OpenFaceReader, WarnsOfTimeStampsThatItDoesNotUse)
{
  std::string text = "frame,timestamp,AU12_r\n";
  for (int frame = 0; frame < 320; ++frame)
    text += std::to_string(frame) + "," + (frame < 310 ? "0" : std::to_string(frame)) + ",1\n";
  const auto contents = readWell(text);
  EXPECT_THAT(contents.description.back(), HasSubstr("30 frames/s assumed"));
  ASSERT_EQ(2u, contents.warnings.size());
  EXPECT_EQ(
      "line 312 has a time stamp, but the first rows have no time stamps: it is ignored, with all later ones; give the "
      "rate of the video",
      contents.warnings[1]);
}

TEST_F(OpenFaceReader, WarnsOnceOfActionUnitsInPercent)
{
  const auto contents = readWell("frame,timestamp,AU06_r,AU12_r\n1,0,1,5.5\n2,0.1,1,60\n3,0.2,70,60\n");
  EXPECT_THAT(contents.warnings,
              ElementsAre("AU12 is 60, expected a number from 0 to 5; it looks like percent and counts as full: "
                          "divide such scores first"));
}

TEST_F(OpenFaceReader, RefusesARowWhoseTimeRunsBackwardsAndGoesOn)
{
  const auto contents = read("frame,timestamp,AU12_r\n1,0.0,1\n2,0.1,1\n3,0.05,1\n4,0.2,1\n");
  EXPECT_THAT(
      contents.badLines,
      ElementsAre(HasSubstr(":4: timestamp: time runs backwards, expected the rows in the order of their frames")));
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "100 0+", "150 0-", "200 0+"));
  EXPECT_THAT(read("frame,AU12_r\n5,1\n6,1\n4,1\n").badLines, ElementsAre(HasSubstr(":4: frame: time runs backwards")));
}

TEST_F(OpenFaceReader, NeverStepsBackInTime)
{
  // The frames missing before the third row are reported before it, and not after.
  const auto contents = read("frame,timestamp,AU12_r\n1,0.0,1\n2,0.1,1\n9,0.8,1\n10,0.9,1\n");
  for (std::size_t i = 1; i < contents.entries.size(); ++i)
    EXPECT_LT(contents.entries[i - 1].time, contents.entries[i].time);
  EXPECT_EQ(10u, contents.entries.size());
}

// Bad input.

struct BadLineCase
{
  const char* name;
  const char* text;
  const char* message;
};

void PrintTo(const BadLineCase& row, std::ostream* stream)
{
  *stream << row.name;
}

class BadLineOfOpenFace : public OpenFaceReader, public ::testing::WithParamInterface<BadLineCase>
{};

TEST_P(BadLineOfOpenFace, IsNamed)
{
  EXPECT_EQ(GetParam().message, errorOf(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    With, BadLineOfOpenFace,
    ::testing::Values(
        BadLineCase{"NoNumberInAReading", "frame,pose_Rx,pose_Ry,pose_Rz\n1,0,0,0\n2,0,x7,0\n",
                    "3: pose_Ry: expected a number, found 'x7'"},
        BadLineCase{"ANumberAndMore", "frame,AU12_r\n1,1.5mm\n", "2: AU12_r: expected a number, found '1.5mm'"},
        BadLineCase{"ADecimalComma", "frame,AU12_r\n1,\"1,5\"\n", "2: AU12_r: expected a number, found '1,5'"},
        BadLineCase{"ALongText", "frame,AU12_r\n1,0123456789012345678901234567890123456789x\n",
                    "2: AU12_r: expected a number, found '0123456789012345678901234567890123456789...'"},
        BadLineCase{"ABrokenFrame", "frame,AU12_r\n1.5,1\n", "2: frame: expected a whole number, found '1.5'"},
        BadLineCase{"NoFrame", "frame,AU12_r\n,1\n", "2: frame: expected a whole number, found ''"},
        BadLineCase{"AHugeFrame", "frame,AU12_r\n1,1\n1e300,1\n", "3: frame: expected a whole number, found '1e300'"},
        BadLineCase{"AFrameBeyondTheClock", "frame,AU12_r\n1,1\n900000000000,1\n",
                    "3: frame: is too far from the first one"},
        BadLineCase{"NoTimestamp", "frame,timestamp,AU12_r\n1,0.5,1\n2,,1\n",
                    "3: timestamp: expected seconds, found no number"},
        BadLineCase{"ATextAsTimestamp", "frame,timestamp,AU12_r\n1,0.5,1\n2,00:01,1\n",
                    "3: timestamp: expected a number, found '00:01'"},
        BadLineCase{"MillisecondsSince1970", "frame,timestamp,AU12_r\n1,1600000000000,1\n",
                    "2: timestamp: expected seconds, from the start of the recording or since 1970, found "
                    "'1600000000000'; it looks like milliseconds: divide it by 1000"},
        BadLineCase{"NanosecondsSince1970", "frame,timestamp,AU12_r\n1,1600000000000000000,1\n",
                    "2: timestamp: expected seconds, from the start of the recording or since 1970, found "
                    "'1600000000000000000'; it looks like nanoseconds: divide it by 1000000000"},
        BadLineCase{"NanosecondsFromTheStart", "frame,timestamp,AU12_r\n1,0,1\n2,33333333,1\n",
                    "3: timestamp: is 33333333 s after the one before; expected seconds; it looks like nanoseconds: "
                    "divide it by 1000000000"},
        BadLineCase{"ATimestampThatIsNoTime", "frame,timestamp,AU12_r\n1,9e300,1\n",
                    "2: timestamp: expected seconds, from the start of the recording or since 1970, found '9e300'"},
        BadLineCase{"ATimestampThatNoDoubleHolds", "frame,timestamp,AU12_r\n1,1e400,1\n",
                    "2: timestamp: expected seconds, from the start of the recording or since 1970, found '1e400'"},
        BadLineCase{"AnInfiniteTimestamp", "frame,timestamp,AU12_r\n1,-inf,1\n",
                    "2: timestamp: expected seconds, from the start of the recording or since 1970, found '-inf'"},
        BadLineCase{"AConfidenceInPercent", "frame,confidence,AU12_r\n1,95,1\n",
                    "2: confidence: expected a number from 0 to 1, found 95; it looks like percent: divide it by "
                    "100"},
        BadLineCase{"ABrokenFace", "frame,face_id,AU12_r\n1,0.5,1\n",
                    "2: face_id: expected a whole number, found '0.5'"},
        BadLineCase{"AHugeFace", "frame,face_id,AU12_r\n1,4294967296,1\n",
                    "2: face_id: expected a whole number, found '4294967296'"},
        BadLineCase{"NoFace", "frame,face_id,AU12_r\n1,,1\n", "2: face_id: expected a whole number, found ''"},
        BadLineCase{"ATextAsSuccess", "frame,success,AU12_r\n1,yes,1\n", "2: success: expected a number, found 'yes'"},
        BadLineCase{"ATextAsConfidence", "frame,confidence,AU12_r\n1,high,1\n",
                    "2: confidence: expected a number, found 'high'"},
        BadLineCase{"TooFewFields", "frame,timestamp,AU12_r\n1,0\n2,0.1,1\n",
                    "2: 2 fields, expected 3 as in the header"},
        BadLineCase{"TooManyFields", "frame,timestamp,AU12_r\n1,0,1,1", "2: 4 fields, expected 3 as in the header"},
        BadLineCase{"ACutLastLine", "frame,timestamp,AU12_r\n1,0,1\n2,0.",
                    "3: 2 fields, expected 3 as in the header; the last line is not complete: the file may be cut"},
        BadLineCase{"AnOpenQuote", "frame,AU12_r\n1,\"1\n", "2: a quote is out of place or not closed"},
        BadLineCase{"AFaceTwiceInAFrame", "frame,face_id,AU12_r\n1,3,1\n1,3,1\n",
                    "3: face_id: face 3 is there twice in frame 1"},
        BadLineCase{"AFrameTwiceWithoutFaces", "frame,AU12_r\n1,1\n1,1\n",
                    "3: frame: face 0 is there twice in frame 1"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(OpenFaceReader, ContinuesAfterBadLinesWhereNobodyCountsAsSeen)
{
  const auto contents = read("frame,timestamp,AU12_r\n1,0.0,1\n2,0.1,1\n3,0.2,x\n4,0.3,1\n5,0.4\n6,0.5,1\n7,0.6,1\n");
  EXPECT_EQ(2u, contents.badLines.size());
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "100 0+", "200 0-", "300 0+", "400 0-", "500 0+", "600 0+"));
}

TEST_F(OpenFaceReader, ReportsThePlacesOfBadLines)
{
  const auto reader = KV::recordings::openRecording(folder.write("f", "timestamp,AU12_r\n1,1\n2,x\n3,1\n"), "", {});
  EXPECT_EQ(1.0, secondsOf(reader->next().value()));
  EXPECT_THROW(reader->next(), KV::recordings::BadLine);
  EXPECT_EQ(3.0, secondsOf(reader->next().value()));
  EXPECT_FALSE(reader->next());
  EXPECT_FALSE(reader->next());
}

TEST_F(OpenFaceReader, GivesTheRowsBeforeTheCutOfACompressedFile)
{
  std::string text = "frame,AU12_r\n";
  for (int frame = 1; frame < 100000; ++frame)
    text += std::to_string(frame) + "," + std::to_string(frame * 7919 % 5000) + "\n";
  const std::string path = folder.writeCompressed("f.gz", text);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);

  const auto reader = KV::recordings::openRecording(path, "", {});
  int entries = 0;
  try
  {
    while (reader->next())
      ++entries;
    ADD_FAILURE() << "the cut was not noticed";
  }
  catch (const KV::recordings::BadLine& error)
  {
    ADD_FAILURE() << "one line only: " << error.what();
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_THAT(error.what(), HasSubstr("the compressed data end too early: the file was cut"));
  }
  EXPECT_GT(entries, 30000);
  EXPECT_FALSE(reader->next()) << "nothing can be read behind the cut";
}

TEST_F(OpenFaceReader, WarnsIfNoFaceWasTracked)
{
  const auto contents = read("frame,timestamp,success,AU12_r\n1,0.0,0,1\n2,0.1,0,1\n");
  EXPECT_THAT(contents.entries, IsEmpty());
  EXPECT_THAT(contents.warnings, ElementsAre("no face was tracked in the whole file"));
}

// The description of the reader.

TEST_F(OpenFaceReader, DescribesHowItReadsInTwoLines)
{
  EXPECT_THAT(
      read(full + "1,0,0.00,1,1, 0,0,0,0,800, 0,0,0, 0,0\n2,0,0.04,1,1, 0,0,0,0,800, 0,0,0, 0,0\n").description,
      ElementsAre(
          "OpenFace: angles in radians, counted from the line of sight to the camera, pose_Rx down, pose_Ry to "
          "the own right, pose_Rz to the own left shoulder, gaze_angle_x to the own left, y down, pose_T in mm, "
          "action units of 3, not mirrored",
          "25 frames/s by the time stamps, persons by face_id, not tracked below confidence 0.7; missing: "
          "landmarks"));
}

TEST_F(OpenFaceReader, DescribesWhatTheOptionsChange)
{
  KV::recordings::ReadingOptions options;
  options.mirrored = true;
  options.lineOfSight = false;
  options.framesPerSecond = 12.5;
  options.actionUnitFullScale = 3.5f;
  EXPECT_THAT(
      read("frame,gaze_0_x,gaze_0_y,gaze_0_z,gaze_1_x,gaze_1_y,gaze_1_z,AU12_r\n1,0,0,-1,0,0,-1,0\n", options)
          .description,
      ElementsAre("OpenFace: angles in radians, counted from the optical axis of the camera, gaze vectors x to "
                  "the own left, y down, action units of 3.5, mirrored",
                  "12.5 frames/s as given, instead of time stamps, all rows are person 0, since there is no "
                  "face_id, confidence 1, since there is no such column; missing: head pose, distance, landmarks"));
}

TEST_F(OpenFaceReader, ReadsToTheEndByItsProgress)
{
  std::string text = "frame,AU12_r\n";
  for (int frame = 1; frame < 200000; ++frame)
    text += std::to_string(frame) + ",1\n";
  const auto reader = KV::recordings::openRecording(folder.write("f", text), "", {});
  EXPECT_LT(reader->progress(), 0.5);
  while (reader->next())
  {}
  EXPECT_DOUBLE_EQ(1.0, reader->progress());
}

TEST_F(OpenFaceReader, SaysOfEightPersonsWhatWasLearned)
{
  std::string text = "frame,face_id,timestamp,confidence,success,AU04_r\n";
  for (int frame = 0; frame < 900; ++frame)
    for (int person = 0; person < 9; ++person)
      text += std::to_string(frame) + "," + std::to_string(person) + "," + std::to_string(frame * 0.1) + ",0.95,1," +
              (frame % 7 == 0 ? "1.1" : "1") + "\n";
  const auto reader = KV::recordings::openRecording(folder.write("recording", text), "", {});
  while (reader->next())
  {}
  const std::vector<std::string> learned = reader->describeLearned();
  ASSERT_EQ(8U, learned.size());
  for (std::size_t person = 0; person < learned.size(); ++person)
    EXPECT_EQ(0U, learned[person].rfind("rest of person " + std::to_string(person) + ", ", 0)) << learned[person];
}

}  // namespace
