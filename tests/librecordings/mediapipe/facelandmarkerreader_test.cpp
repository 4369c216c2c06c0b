#include "librecordings/face/facesteps.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <sstream>

namespace
{
using support::stepsOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr float tolerance = 1e-4f;  // [deg] single precision at some tens of degrees
constexpr double radiansPerDegree = 0.017453292519943295;

using Matrix = std::array<double, 16>;

/// A face at this place (right, up, towards the camera: [cm]), turned about the upright axis: a positive angle moves
/// the nose to the right in the image, to the person's own left.
Matrix turned(double degreesToOwnLeft, double x = 0.0, double y = 0.0, double z = -50.0)
{
  const double c = std::cos(degreesToOwnLeft * radiansPerDegree);
  const double s = std::sin(degreesToOwnLeft * radiansPerDegree);
  return {c, 0, -s, 0, 0, 1, 0, 0, s, 0, c, 0, x, y, z, 1};
}

/// A face that looks up by this angle.
Matrix nodded(double degreesUp)
{
  const double c = std::cos(degreesUp * radiansPerDegree);
  const double s = std::sin(degreesUp * radiansPerDegree);
  return {1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, -50, 1};
}

/// A face tilted counterclockwise in the image: to its own right shoulder.
Matrix tilted(double degreesToOwnRight)
{
  const double c = std::cos(degreesToOwnRight * radiansPerDegree);
  const double s = std::sin(degreesToOwnRight * radiansPerDegree);
  return {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, -50, 1};
}

std::string numbers(const Matrix& matrix, const std::string& separator = ",")
{
  std::ostringstream text;
  text.precision(17);
  for (std::size_t i = 0; i < matrix.size(); ++i)
    text << (i == 0 ? "" : separator) << matrix.at(i);
  return text.str();
}

/// A result with this matrix, as the JavaScript API has it.
std::string resultOf(const Matrix& matrix)
{
  return R"({"faceLandmarks":[[{"x":0.5,"y":0.5,"z":0}]],"faceBlendshapes":[],"facialTransformationMatrixes":[)"
         R"({"rows":4,"columns":4,"data":[)" +
         numbers(matrix) + "]}]}\n";
}

std::string category(const std::string& name, double score)
{
  return R"({"index":0,"score":)" + std::to_string(score) + R"(,"categoryName":")" + name + R"(","displayName":""})";
}

/// A result whose face has these blendshapes, and no matrix.
std::string resultOf(const std::string& categories)
{
  return R"({"faceBlendshapes":[{"categories":[)" + categories +
         R"(],"headIndex":-1,"headName":""}],"facialTransformationMatrixes":[]})" + "\n";
}

std::string eyes(double outLeft, double inLeft, double inRight, double outRight, double up, double down)
{
  return category("eyeLookOutLeft", outLeft) + "," + category("eyeLookInLeft", inLeft) + "," +
         category("eyeLookInRight", inRight) + "," + category("eyeLookOutRight", outRight) + "," +
         category("eyeLookUpLeft", up) + "," + category("eyeLookUpRight", up) + "," +
         category("eyeLookDownLeft", down) + "," + category("eyeLookDownRight", down);
}

const std::string nobody = R"({"faceLandmarks":[],"faceBlendshapes":[],"facialTransformationMatrixes":[]})"
                           "\n";

class FaceLandmarkerReader : public support::FaceReaderTest
{
protected:
  static KV::recordings::ReadingOptions fromTheAxis()
  {
    KV::recordings::ReadingOptions options;
    options.lineOfSight = false;
    return options;
  }

  KV::HeadPosture postureOf(const Matrix& matrix, const KV::recordings::ReadingOptions& options = fromTheAxis()) const
  {
    return observed(resultOf(matrix), options).headPosture.value().value;
  }
};

// The matrix.

TEST_F(FaceLandmarkerReader, TurnsAHeadToTheLeftAndRight)
{
  EXPECT_NEAR(-20.f, postureOf(turned(20)).yaw(), tolerance);
  EXPECT_NEAR(30.f, postureOf(turned(-30)).yaw(), tolerance);
  EXPECT_NEAR(0.f, postureOf(turned(-30)).pitch(), tolerance);
}

TEST_F(FaceLandmarkerReader, RaisesAndLowersAHead)
{
  EXPECT_NEAR(15.f, postureOf(nodded(15)).pitch(), tolerance);
  EXPECT_NEAR(-25.f, postureOf(nodded(-25)).pitch(), tolerance);
}

TEST_F(FaceLandmarkerReader, TiltsAHeadToTheOwnRightShoulder)
{
  EXPECT_NEAR(12.f, postureOf(tilted(12)).roll(), tolerance);
}

TEST_F(FaceLandmarkerReader, MeasuresDistanceInMetres)
{
  EXPECT_FLOAT_EQ(0.5f, observed(resultOf(turned(0))).distance.value().value);
  EXPECT_FLOAT_EQ(0.5f, observed(resultOf(turned(0, 30, 0, -40))).distance.value().value);
}

TEST_F(FaceLandmarkerReader, MeasuresTheHeightFromTheCamera)
{
  KV::recordings::ReadingOptions options;
  options.cameraHeight = 1.2f;
  EXPECT_FLOAT_EQ(1.5f, observed(resultOf(turned(0, 0, 30)), options).headHeight.value().value);
}

// A person 45 degrees to the right in the image who faces the camera has turned by 45 degrees to their own right.
TEST_F(FaceLandmarkerReader, CountsAnglesFromTheLineOfSight)
{
  EXPECT_NEAR(0.f, postureOf(turned(-45, 50, 0, -50), {}).yaw(), tolerance);
  EXPECT_NEAR(45.f, postureOf(turned(-45, 50, 0, -50)).yaw(), tolerance);
}

TEST_F(FaceLandmarkerReader, DistinguishesAMatrixByRowsFromOneByColumns)
{
  const std::string byRows =
      R"({"face_blendshapes":[],"facial_transformation_matrixes":[[[0.8,0,0.6,10],[0,1,0,0],[-0.6,0,0.8,-40],)"
      R"([0,0,0,1]]],"face_landmarks":[]})";
  const auto observation = observed(byRows + "\n", fromTheAxis());
  EXPECT_NEAR(std::atan2(-0.6, 0.8) / radiansPerDegree,
              static_cast<double>(observation.headPosture.value().value.yaw()), 1e-4);
  EXPECT_FLOAT_EQ(std::hypot(0.1f, 0.4f), observation.distance.value().value);
}

TEST_F(FaceLandmarkerReader, ExchangesLeftAndRightOfAMirrorImage)
{
  auto options = fromTheAxis();
  options.mirrored = true;
  EXPECT_NEAR(20.f, postureOf(turned(20), options).yaw(), tolerance);
  EXPECT_NEAR(-12.f, postureOf(tilted(12), options).roll(), tolerance);
}

// The blendshapes.

TEST_F(FaceLandmarkerReader, FormsExpressionsFromBlendshapes)
{
  const auto observation = observed(resultOf(
      category("mouthSmileLeft", 0.4) + "," + category("mouthSmileRight", 0.6) + "," + category("cheekSquintLeft", 0) +
      "," + category("cheekSquintRight", 0) + "," + category("eyeSquintLeft", 0.4) + "," +
      category("eyeSquintRight", 0.4) + "," + category("jawOpen", 0.2) + "," + category("_neutral", 0.1)));
  EXPECT_FLOAT_EQ(0.3f, observation.smile.value().value.value) << "an open jaw is no smile";
  EXPECT_FLOAT_EQ(1.f, observation.smile.value().value.confidence);
  const auto expressions = observation.expressions.value().value;
  EXPECT_FLOAT_EQ(0.6f, expressions.joy.value);
  EXPECT_FLOAT_EQ(0.3f, expressions.laughter.value);
  EXPECT_FLOAT_EQ(0.f, expressions.sorrow.confidence) << "the corners of the mouth are unknown";
  EXPECT_FALSE(observation.gaze);
  EXPECT_FALSE(observation.headPosture);
  EXPECT_FALSE(observation.distance);
}

TEST_F(FaceLandmarkerReader, KnowsTheNamesOfThePythonApi)
{
  EXPECT_FLOAT_EQ(0.5f, observed(R"({"face_blendshapes":[[{"index":44,"score":0.4,"category_name":"mouthSmileLeft"},)"
                                 R"({"index":45,"score":0.6,"category_name":"mouthSmileRight"}]]})"
                                 "\n")
                            .smile.value()
                            .value.value);
}

// The left eye looks out and the right eye in: both to the person's own left.
TEST_F(FaceLandmarkerReader, ComputesTheGazeFromTheEyes)
{
  const auto left = observed(resultOf(eyes(0.5, 0, 0.5, 0, 0, 0))).gaze.value().value;
  EXPECT_FLOAT_EQ(15.f, left.yaw);
  EXPECT_FLOAT_EQ(0.f, left.pitch);
  EXPECT_FLOAT_EQ(-15.f, observed(resultOf(eyes(0, 0.5, 0, 0.5, 0, 0))).gaze.value().value.yaw);
  EXPECT_FLOAT_EQ(10.f, observed(resultOf(eyes(0, 0, 0, 0, 0.4, 0))).gaze.value().value.pitch);
  EXPECT_FLOAT_EQ(-10.f, observed(resultOf(eyes(0, 0, 0, 0, 0, 0.4))).gaze.value().value.pitch);
}

TEST_F(FaceLandmarkerReader, AddsTheEyesToTheHead)
{
  const auto text = [](const Matrix& matrix) {
    return R"({"faceBlendshapes":[{"categories":[)" + eyes(0.5, 0, 0.5, 0, 0, 0) +
           R"(]}],"facialTransformationMatrixes":[{"data":[)" + numbers(matrix) + "]}]}\n";
  };
  // The head 20 degrees to the person's own right, the eyes 15 to their own left.
  EXPECT_NEAR(-5.f, observed(text(turned(-20)), fromTheAxis()).gaze.value().value.yaw, tolerance);
  EXPECT_NEAR(10.f, observed(text(nodded(10)), fromTheAxis()).gaze.value().value.pitch, tolerance);
}

TEST_F(FaceLandmarkerReader, TurnsEyesAsFarAsTheMappingSays)
{
  const auto gaze = observed(resultOf(eyes(0.5, 0, 0.5, 0, 0.5, 0)),
                             mappedBy(R"({"blendshapes": {"eyes": {"yaw": 40, "pitch": 10}}})"))
                        .gaze.value()
                        .value;
  EXPECT_FLOAT_EQ(20.f, gaze.yaw);
  EXPECT_FLOAT_EQ(5.f, gaze.pitch);
}

// Persons and times.

TEST_F(FaceLandmarkerReader, AgesAFaceThatLeavesUntilItIsBack)
{
  const auto contents = readWell(nobody + resultOf(turned(0)) + nobody + nobody + resultOf(turned(0)));
  EXPECT_THAT(stepsOf(contents), ElementsAre("33 0+", "67 0-", "100 0-", "133 0+"));
}

TEST_F(FaceLandmarkerReader, CountsSeveralFacesInTheirOrder)
{
  const std::string two = R"({"faceBlendshapes":[[],[]],"faceLandmarks":[[],[]]})"
                          "\n";
  const auto contents = readWell(two + resultOf(turned(0)) + two);
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "0 1+", "33 0+", "33 1-", "67 0+", "67 1+"));
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("30 frames/s"), HasSubstr("several faces in a result")));
}

TEST_F(FaceLandmarkerReader, TakesTheTimesThatWereAdded)
{
  EXPECT_THAT(stepsIn(R"({"timestampMs":500,"faceBlendshapes":[[]]})"
                      "\n"
                      R"({"timestamp_ms":540,"faceBlendshapes":[[]]})"
                      "\n"
                      R"({"timestamp":0.58,"faceBlendshapes":[[]]})"
                      "\n"),
              ElementsAre("500 0+", "540 0+", "580 0+"));
  EXPECT_THAT(stepsIn(R"({"frame":10,"faceBlendshapes":[[]]})"
                      "\n"
                      R"({"frame":13,"faceBlendshapes":[[]]})"
                      "\n"),
              ElementsAre("0 0+", "100 0+"));
}

TEST_F(FaceLandmarkerReader, TakesTheFirstOfSeveralTimesInOneResult)
{
  EXPECT_THAT(stepsIn(R"({"timestamp":0.5,"time":0.7,"timestampMs":100,"timestamp_ms":200,"faceBlendshapes":[[]]})"
                      "\n"
                      R"({"timestamp":0.5,"time":0.7,"timestamp_ms":200,"faceBlendshapes":[[]]})"
                      "\n"
                      R"({"time":0.7,"timestamp":0.5,"faceBlendshapes":[[]]})"
                      "\n"
                      R"({"time":0.7,"faceBlendshapes":[[]]})"
                      "\n"),
              ElementsAre("100 0+", "200 0+", "500 0+", "700 0+"));
}

TEST_F(FaceLandmarkerReader, WarnsOfMillisecondsInPlaceOfSeconds)
{
  const auto contents = readWell(R"({"timestamp":33,"faceBlendshapes":[[]]})"
                                 "\n"
                                 R"({"timestamp":66,"faceBlendshapes":[[]]})"
                                 "\n");
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("the rate by the time stamps is 0.0303 frames/s")));
}

// The form of the file.

TEST_F(FaceLandmarkerReader, ReadsAnArrayOnOneLineAndOneOfManyLines)
{
  const std::string face = resultOf(turned(0));
  const std::string one = face.substr(0, face.size() - 1);
  EXPECT_EQ(3u, readWell("[" + one + "," + one + "," + one + "]").entries.size());
  EXPECT_EQ(2u, readWell("[\n" + one + ",\n" + one + "\n]\n").entries.size());
  EXPECT_EQ(2u, readWell("[\n  {\n    \"faceBlendshapes\": [\n      []\n    ]\n  },\n  {\n    \"faceBlendshapes\": [\n"
                         "      []\n    ]\n  }\n]\n")
                    .entries.size());
  EXPECT_EQ(1u, support::contentsOf(folder.writeCompressed("f.json.gz", "\xEF\xBB\xBF" + one)).entries.size());
}

TEST_F(FaceLandmarkerReader, SaysWhatItReads)
{
  const auto contents = readWell(resultOf(turned(0)));
  EXPECT_THAT(
      contents.description,
      ElementsAre("MediaPipe FaceLandmarker: head pose from the matrices, in cm, counted from the line of "
                  "sight to the camera, not mirrored",
                  HasSubstr("persons in the order of the result, confidence 1, since the file has none; missing: "
                            "blendshapes")));
}

// Bad input.

TEST_F(FaceLandmarkerReader, NamesWhatItCannotRead)
{
  EXPECT_EQ("1: faceBlendshapes[0].categories[1].score: expected a number, found '\"x\"'",
            errorOf(R"({"faceBlendshapes":[{"categories":[{"score":1,"categoryName":"jawOpen"},)"
                    R"({"score":"x","categoryName":"jawOpen"}]}]})"));
  EXPECT_EQ("1: faceBlendshapes[0].categories[0]: expected a category with a text categoryName, found '{\"score\":1}'",
            errorOf(R"({"faceBlendshapes":[{"categories":[{"score":1}]}]})"));
  EXPECT_EQ("1: faceBlendshapes[0][0]: expected a category, with score and categoryName, found '7'",
            errorOf(R"({"faceBlendshapes":[[7]]})"));
  EXPECT_EQ("1: faceBlendshapes[0][0]: expected a category with a score, found '{\"categoryName\":\"jawOpen\"}'",
            errorOf(R"({"faceBlendshapes":[[{"categoryName":"jawOpen"}]]})"));
  EXPECT_EQ(
      "1: facialTransformationMatrixes[0][1]: expected a transformation: 4 times 4 numbers, of which the last row is "
      "0, 0, 0, 1, found '[1,2,3]'",
      errorOf(R"({"facialTransformationMatrixes":[[[1,0,0,0],[1,2,3],[0,0,1,0],[0,0,0,1]]]})"));
  EXPECT_EQ("1: timestampMs: expected milliseconds, from the start of the recording or since 1970, found '1e+15'",
            errorOf(R"({"timestampMs":1e15,"faceBlendshapes":[]})"));
  EXPECT_EQ("1: faceBlendshapes[0]: expected a list of categories, found '5'", errorOf(R"({"faceBlendshapes":[5]})"));
  EXPECT_EQ("1: faceBlendshapes: expected a list with an element for each face, found '{}'",
            errorOf(R"({"faceBlendshapes":{}})"));
  EXPECT_THAT(errorOf(R"({"facialTransformationMatrixes":[{"data":[1,2,3]}]})"),
              HasSubstr("1: facialTransformationMatrixes[0].data: expected a transformation"));
  EXPECT_THAT(errorOf(R"({"facialTransformationMatrixes":[[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16]]})"),
              HasSubstr("1: facialTransformationMatrixes[0]: expected a transformation"));
  EXPECT_EQ("1: facialTransformationMatrixes: expected as many elements as there are faces, 2, found '[[]]'",
            errorOf(R"({"faceBlendshapes":[[],[]],"facialTransformationMatrixes":[[]]})"));
  EXPECT_EQ("2: frame: expected a whole number, found '1.5'",
            errorOf(nobody + R"({"frame":1.5,"faceBlendshapes":[]})"));
  EXPECT_THAT(errorOf(R"({"timestamp":1e12,"faceBlendshapes":[]})"), HasSubstr("1: timestamp: expected seconds"));
  EXPECT_THAT(errorOf("{\"frame\":5,\"faceBlendshapes\":[]}\n{\"frame\":3,\"faceBlendshapes\":[]}\n"),
              HasSubstr("2: frame: time runs backwards"));
  EXPECT_THAT(errorOf("{\"timestamp\":5,\"faceBlendshapes\":[]}\n{\"timestamp\":3,\"faceBlendshapes\":[]}\n"),
              HasSubstr("2: timestamp: time runs backwards"));
  EXPECT_THAT(errorOf(nobody + "{\"frame\":1}\n"), HasSubstr("2: faceBlendshapes: is missing"));
  EXPECT_THAT(errorOf(nobody + "{\"faceBlendshapes\":[}]\n"), HasSubstr("2: expected a JSON object, but "));
  EXPECT_THAT(errorOf(nobody + "{\"faceBlendshapes\":nix}\n"), HasSubstr("2: expected a JSON object, but "));
  EXPECT_EQ("2: expected a JSON object, found 'x'", errorOf(nobody + "x\n"));
}

TEST_F(FaceLandmarkerReader, ContinuesAfterAResultThatIsNotComplete)
{
  const std::string whole = resultOf(turned(0));
  const auto contents = read(whole + whole.substr(0, 90) + "\n" + whole + whole + whole.substr(0, 70));
  EXPECT_THAT(contents.badLines, ElementsAre(HasSubstr(":2: the object is not complete"),
                                             HasSubstr(":5: the object is not complete: the file may be cut")));
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "33 0-", "67 0+", "100 0+"));
}

TEST_F(FaceLandmarkerReader, RefusesHostileSizes)
{
  EXPECT_EQ("1: is nested too deep",
            errorOf(R"({"faceBlendshapes":)" + std::string(100000, '[') + std::string(100000, ']') + "}"));
  EXPECT_EQ("1: an object is longer than 16 MiB: this is no result for a frame",
            errorOf(R"({"faceBlendshapes":[")" + std::string(std::size_t{17} << 20U, 'x') + "\"]}"));
}

TEST_F(FaceLandmarkerReader, GivesTheSameBitsFromTheOwnFormat)
{
  support::expectSameBitsFromJsonLines(
      readWell(resultOf(turned(7.3, 3.1, 2.7)) + nobody + resultOf(eyes(0.3, 0.1, 0.2, 0.05, 0.7, 0.1))));
}

// The same as a table.

using BlendshapeCsvReader = FaceLandmarkerReader;

const std::string table = "frame,mouthSmileLeft,mouthSmileRight,jawOpen,browInnerUp";

TEST_F(BlendshapeCsvReader, ReadsScoresAndAgesALostFace)
{
  const auto contents = readWell(table + "\n1,0.2,0.4,0,0\n2,,,,\n3,0.2,0.4,0,0\n");
  EXPECT_FLOAT_EQ(0.3f, contents.entries.front().observation.smile.value().value.value);
  EXPECT_FALSE(contents.entries.front().observation.gaze);
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 0+", "33 0-", "67 0+"));
}

TEST_F(BlendshapeCsvReader, ReadsTheMatrix)
{
  std::string header = table;
  for (int i = 0; i < 16; ++i)
    header += ",matrix_" + std::to_string(i);
  const auto left = observed(header + "\n1,0,0,0,0," + numbers(turned(20)) + "\n", fromTheAxis());
  EXPECT_NEAR(-20.f, left.headPosture.value().value.yaw(), tolerance);
  EXPECT_FLOAT_EQ(0.5f, left.distance.value().value);
  EXPECT_THAT(errorOf(header + "\n1,0,0,0,0" + std::string(",5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5") + "\n"),
              HasSubstr("2: matrix_15: expected a transformation"));
}

TEST_F(BlendshapeCsvReader, ReadsTheMatrixByTheFirstOfItsNames)
{
  const std::vector<std::string> prefixes = {"matrix_", "facialTransformationMatrix_", "facial_transformation_matrix_",
                                             "transformation_"};
  std::string header;
  std::string matrices;
  for (std::size_t before = prefixes.size(); before > 0; --before)  // each name comes after those that count less
  {
    for (int i = 0; i < 16; ++i)
      header += "," + prefixes[before - 1] + std::to_string(i);
    matrices += "," + numbers(turned(10 * static_cast<int>(before)));
    std::string text = table;
    text.append(header).append("\n1,0,0,0,0").append(matrices).append("\n");
    const auto face = observed(text, fromTheAxis());
    EXPECT_NEAR(-10. * static_cast<double>(before), face.headPosture.value().value.yaw(), tolerance)
        << prefixes[before - 1];
  }
}

TEST_F(BlendshapeCsvReader, ReportsTimesFacesAndConfidence)
{
  const auto contents = readWell(
      "timestamp_ms,face_id,confidence,mouthSmileLeft,mouthSmileRight,jawOpen,browInnerUp\n"
      "0,3,0.9,1,1,0,0\n0,4,0.8,0,0,0,0\n40,3,0.6,1,1,0,0\n40,4,0.8,0,0,0,0\n");
  EXPECT_THAT(stepsOf(contents), ElementsAre("0 3+", "0 4+", "40 4+", "40 3-"));
  EXPECT_FLOAT_EQ(0.9f, contents.entries.front().observation.smile.value().value.confidence);
  EXPECT_THAT(contents.warnings, IsEmpty());
}

TEST_F(BlendshapeCsvReader, IsNotTakenForOpenFaceByItsFrameAndTimestamp)
{
  EXPECT_THAT(readWell("frame,timestamp,mouthSmileLeft,mouthSmileRight,jawOpen,browInnerUp\n0,0.1,0,0,0,0\n")
                  .description.front(),
              HasSubstr("Blendshapes: "));
}

TEST_F(BlendshapeCsvReader, RefusesMillisecondsThatAreNoTime)
{
  EXPECT_THAT(read("timestamp_ms,mouthSmileLeft,mouthSmileRight,jawOpen,browInnerUp\n9e300,1,1,1,1\n").badLines,
              ElementsAre(HasSubstr("2: timestamp_ms: expected milliseconds, from the start of the recording or since "
                                    "1970, found '9e300'")));
}

TEST_F(BlendshapeCsvReader, WarnsOnceOfScoresInPercent)
{
  const auto contents =
      read("timestamp,mouthSmileLeft,mouthSmileRight,jawOpen,browInnerUp\n0,1.1,1,0,0\n0.1,80,1,0,0\n0.2,90,1,0,0\n");
  EXPECT_THAT(contents.warnings,
              ElementsAre("mouthSmileLeft is 80, expected a number from 0 to 1; it looks like percent and counts as "
                          "full: divide such scores first"));
}

TEST_F(BlendshapeCsvReader, NamesWhatItCannotRead)
{
  EXPECT_EQ("2: jawOpen: expected a number, found 'wide'", errorOf(table + "\n1,0,0,wide,0\n"));
  EXPECT_EQ("1: jawOpen: this column is there twice", errorOf(table + ",jawOpen\n1,0,0,0,0,0\n"));
  EXPECT_EQ("3: 3 fields, expected 5 as in the header; the last line is not complete: the file may be cut",
            errorOf(table + "\n1,0,0,0,0\n2,0,0"));
}

TEST_F(FaceLandmarkerReader, RefusesAFileWithoutAResult)
{
  EXPECT_EQ(folder.path("recording") + ": there is no result",
            support::contentsOf(folder.write("recording", "[]"), "mediapipe").fatal);
}

}  // namespace
