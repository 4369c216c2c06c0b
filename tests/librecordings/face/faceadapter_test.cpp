#include <skeigiot/recordings/faceadapter.hpp>

#include "librecordings/bits.hpp"
#include "librecordings/face/facesteps.hpp"

#include <skeigiot/recordings/livelinkface.hpp>
#include <skeigiot/recordings/mediapipeface.hpp>
#include <skeigiot/recordings/openfaceface.hpp>
#include <skeigiot/recordings/pyfeatface.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{
using KV::recordings::Face;
using KV::recordings::FaceAdapter;
using KV::recordings::ReadingOptions;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
const ko::SystemClock::time_point start = support::timeOf(support::recordingEpoch);

// Every table differs from the built-in one.
const std::string mapping = R"({
  "actionUnits": {"smile": {"sum": [{"of": ["AU12", "AU25"], "weight": 0.7}]},
                  "joy": {"sum": [{"of": ["AU06"]}], "limit": [{"of": ["AU12"], "weight": 1.3}]}},
  "blendshapes": {"joy": {"sum": [{"of": ["mouthSmileLeft", "jawOpen"]}]}, "eyes": {"yaw": 41, "pitch": 17}},
  "emotions": {"joy": {"sum": [{"of": ["happy", "surprise"]}]}}})";

struct OptionsCase
{
  const char* name;
  bool mirrored;
  float fullScale;
  bool lineOfSight;
  bool mapped;
};

/// The same numbers, once as a recording and once by hand, with these options.
class FaceAdapterOptions : public support::FaceReaderTest, public ::testing::WithParamInterface<OptionsCase>
{
protected:
  ReadingOptions options() const
  {
    ReadingOptions options = GetParam().mapped ? mappedBy(mapping) : ReadingOptions();
    options.mirrored = GetParam().mirrored;
    options.actionUnitFullScale = GetParam().fullScale;
    options.lineOfSight = GetParam().lineOfSight;
    options.cameraHeight = 1.37f;
    return options;
  }

  /// Expects the faces to give the steps of the recording, bit for bit; the recording lacks faces that are not tracked.
  void expectSame(const std::string& recording, const std::vector<Face>& faces) const
  {
    const support::Contents contents = readWell(recording, options());
    const FaceAdapter adapter(options());
    KV::recordings::RestingFace rest;
    std::size_t step = 0;
    for (const Face& face : faces)
    {
      ASSERT_LT(step, contents.entries.size());
      const auto& read = contents.entries[step];
      const auto observation = adapter.observe(face, read.time, rest);
      ASSERT_EQ(read.seen, observation.has_value()) << "in step " << step;
      auto adapted = read;
      adapted.observation = observation.value_or(KV::PersonObservation());
      EXPECT_EQ(support::Bits::of(read), support::Bits::of(adapted)) << "in step " << step;
      ++step;
    }
    EXPECT_EQ(contents.entries.size(), step);
  }
};

TEST_P(FaceAdapterOptions, GivesTheReadingsOfAnOpenFaceFile)
{
  std::ostringstream file;
  file.precision(17);  // the same bits when read
  file << "frame,timestamp,confidence,success,pose_Tx,pose_Ty,pose_Tz,pose_Rx,pose_Ry,pose_Rz,gaze_angle_x,"
          "gaze_angle_y,AU01_r,AU02_r,AU04_r,AU05_r,AU06_r,AU07_r,AU12_r,AU15_r,AU23_r,AU25_r,AU26_r";
  for (const char* const axis : {"x_", "y_"})
    for (int i = 0; i < 68; ++i)
      file << "," << axis << i;
  std::vector<Face> faces;
  constexpr std::array<std::size_t, 11> numbers = {1, 2, 4, 5, 6, 7, 12, 15, 23, 25, 26};
  for (int row = 0; row < 3; ++row)
  {
    KV::recordings::OpenFaceFace detected;
    detected.confidence = row == 1 ? 0.31f : 0.83f;
    const double shift = 0.013 * row;
    detected.position = {{123.4 + shift, -56.7, 811.9}};
    detected.rotation = {{0.11 + shift, -0.23, 0.37}};
    detected.gazeAngle = {{-0.17, 0.29 + shift}};
    detected.actionUnits.emplace();
    detected.landmarks.emplace();
    file << "\n" << row + 1 << "," << 0.04 * row << "," << detected.confidence << ",1";
    for (const double number : *detected.position)
      file << "," << number;
    for (const double number : *detected.rotation)
      file << "," << number;
    for (const double number : *detected.gazeAngle)
      file << "," << number;
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
      const float intensity = 0.37f * static_cast<float>(i) + 0.21f;
      detected.actionUnits->intensity.at(numbers.at(i)) = intensity;
      file << "," << intensity;
    }
    for (std::size_t i = 0; i < 68; ++i)
    {
      detected.landmarks->points.at(i).x = 100.5f + static_cast<float>(i);
      file << "," << 100.5f + static_cast<float>(i);
    }
    for (std::size_t i = 0; i < 68; ++i)
    {
      detected.landmarks->points.at(i).y = 200.25f + static_cast<float>(i);
      file << "," << 200.25f + static_cast<float>(i);
    }
    faces.push_back(faceOf(detected));
  }
  expectSame(file.str() + "\n", faces);
}

TEST_P(FaceAdapterOptions, GivesTheReadingsOfAPyFeatFile)
{
  const std::string file =
      "frame,FaceScore,Pitch,Roll,Yaw,gaze_pitch,gaze_yaw,AU06,AU12,AU25,AU26,anger,disgust,fear,happiness,sadness,"
      "surprise,neutral\n"
      "0,0.93,12.5,-3.25,31.75,0.125,-0.25,0.61,0.72,0.13,0.44,0.01,0.02,0.03,0.7,0.04,0.15,0.05\n"
      "1,0.41,12.5,-3.25,31.75,0.125,-0.25,0.61,0.72,0.13,0.44,0.01,0.02,0.03,0.7,0.04,0.15,0.05\n";
  KV::recordings::PyFeatFace detected;
  detected.confidence = 0.93f;
  detected.units.rotationInDegrees = true;
  detected.units.pitchIsUp = true;
  detected.rotation = {{12.5, -3.25, 31.75}};
  detected.gaze = {{0.125, -0.25}};
  detected.actionUnits.emplace();
  detected.actionUnits->intensity[6] = 0.61f;
  detected.actionUnits->intensity[12] = 0.72f;
  detected.actionUnits->intensity[25] = 0.13f;
  detected.actionUnits->intensity[26] = 0.44f;
  detected.emotions.emplace();
  detected.emotions->anger = 0.01f;
  detected.emotions->disgust = 0.02f;
  detected.emotions->fear = 0.03f;
  detected.emotions->happy = 0.7f;
  detected.emotions->sad = 0.04f;
  detected.emotions->surprise = 0.15f;
  detected.emotions->neutral = 0.05f;
  KV::recordings::PyFeatFace lost = detected;
  lost.confidence = 0.41f;
  expectSame(file, {faceOf(detected), faceOf(lost)});
}

const std::vector<std::pair<std::string, float>> shapes = {
    {"mouthSmileLeft", 0.61f}, {"mouthSmileRight", 0.57f}, {"jawOpen", 0.23f},       {"cheekSquintLeft", 0.11f},
    {"browInnerUp", 0.17f},    {"eyeLookOutLeft", 0.31f},  {"eyeLookInLeft", 0.02f}, {"eyeLookInRight", 0.29f},
    {"eyeLookOutRight", 0.f},  {"eyeLookUpLeft", 0.13f},   {"eyeLookUpRight", 1.5f}, {"eyeLookDownLeft", 0.05f},
    {"eyeLookDownRight", 0.f}};

KV::recordings::Blendshapes blendshapes()
{
  KV::recordings::Blendshapes scores;
  for (const auto& [name, score] : shapes)
    EXPECT_TRUE(scores.set(name, score));
  return scores;
}

// Turned by some degrees about each axis.
constexpr std::array<double, 16> matrix = {0.925,  0.125, -0.375, 0., -0.25, 0.9375, -0.3125, 0.,
                                           0.3125, 0.375, 0.875,  0., 4.5,   -2.25,  -61.5,   1.};

TEST_P(FaceAdapterOptions, GivesTheReadingsOfAFaceLandmarkerResult)
{
  std::ostringstream file;
  file << R"({"timestampMs": 0, "faceBlendshapes": [{"categories": [{"score": 0.5, "categoryName": "_neutral"})";
  for (const auto& [name, score] : shapes)
    file << R"(, {"score": )" << score << R"(, "categoryName": ")" << name << "\"}";
  file << R"(]}], "facialTransformationMatrixes": [{"data": [)";
  for (std::size_t i = 0; i < matrix.size(); ++i)
    file << (i > 0 ? ", " : "") << matrix.at(i);
  file << "]}]}\n";
  KV::recordings::MediaPipeFace detected;
  detected.blendshapes = blendshapes();
  detected.matrix = matrix;
  expectSame(file.str(), {faceOf(detected)});
}

TEST_P(FaceAdapterOptions, GivesTheReadingsOfATableOfBlendshapes)
{
  std::ostringstream names;
  std::ostringstream values;
  names << "frame,timestamp_ms,confidence";
  values << "0,0,0.75";
  for (const auto& [name, score] : shapes)
  {
    names << "," << name;
    values << "," << score;
  }
  for (std::size_t i = 0; i < matrix.size(); ++i)
  {
    names << ",matrix_" << i;
    values << "," << matrix.at(i);
  }
  KV::recordings::MediaPipeFace detected;
  detected.confidence = 0.75f;
  detected.blendshapes = blendshapes();
  detected.matrix = matrix;
  expectSame(names.str() + "\n" + values.str() + "\n", {faceOf(detected)});
}

TEST_P(FaceAdapterOptions, GivesTheReadingsOfALiveLinkFile)
{
  std::ostringstream names;
  std::ostringstream values;
  names << "Timecode,BlendShapeCount";
  values << "10:00:00:00.000,61";
  for (const auto& [name, score] : shapes)
  {
    names << "," << static_cast<char>(name.front() - 'a' + 'A') << name.substr(1);
    values << "," << score;
  }
  names << ",HeadYaw,HeadPitch,HeadRoll,LeftEyeYaw,LeftEyePitch,LeftEyeRoll,RightEyeYaw,RightEyePitch,RightEyeRoll";
  values << ",0.21,-0.13,0.07,0.11,-0.05,0,0.09,-0.03,0";
  KV::recordings::LiveLinkFace detected;
  detected.blendshapes = blendshapes();
  detected.headYaw = 0.21;
  detected.headPitch = -0.13;
  detected.headRoll = 0.07;
  detected.leftEyeYaw = 0.11;
  detected.leftEyePitch = -0.05;
  detected.rightEyeYaw = 0.09;
  detected.rightEyePitch = -0.03;
  expectSame(names.str() + "\n" + values.str() + "\n", {faceOf(detected)});
}

INSTANTIATE_TEST_SUITE_P(Like, FaceAdapterOptions,
                         ::testing::Values(OptionsCase{"TheDefault", false, 5.f, true, false},
                                           OptionsCase{"AMirrorImage", true, 5.f, true, false},
                                           OptionsCase{"AnotherFullScale", false, 3.f, true, false},
                                           OptionsCase{"AnglesFromTheOpticalAxis", false, 5.f, false, false},
                                           OptionsCase{"AMapping", false, 5.f, true, true},
                                           OptionsCase{"AllAtOnce", true, 1.f, true, true}),
                         [](const auto& test) { return std::string(test.param.name); });

Face smiling()
{
  Face face;
  face.actionUnits.emplace();
  face.actionUnits->intensity[6] = 2.f;
  face.actionUnits->intensity[12] = 4.f;
  return face;
}

TEST(FaceAdapter, GivesNothingOfAFaceBelowTheMinimalConfidence)
{
  const FaceAdapter adapter;
  Face face = smiling();
  face.confidence = 0.7f;
  EXPECT_TRUE(adapter.observe(face, start));
  face.confidence = 0.69f;
  EXPECT_FALSE(adapter.observe(face, start));
  face.confidence = notANumber;
  EXPECT_FALSE(adapter.observe(face, start));
}

TEST(FaceAdapter, ObservesADetectedFaceOfWhichNothingElseIsKnown)
{
  const auto observation = FaceAdapter().observe(Face(), start).value();
  EXPECT_TRUE(observation.faceDetected.value().value);
  EXPECT_EQ(start, observation.faceDetected.value().time);
  EXPECT_TRUE(FaceAdapter().read(Face()).empty());
}

TEST(FaceAdapter, TakesTheFullScaleOfTheActionUnitsBeforeThatOfTheOptions)
{
  Face face = smiling();
  const FaceAdapter adapter(support::withoutRest());
  EXPECT_FLOAT_EQ(0.8f, adapter.read(face).smile.value().value);
  face.actionUnits->fullScale = 8.f;
  EXPECT_FLOAT_EQ(0.5f, adapter.read(face).smile.value().value);
}

TEST(FaceAdapter, TakesExpressionsFromEmotionsBeforeActionUnits)
{
  const FaceAdapter adapter(support::withoutRest());
  Face face = smiling();
  EXPECT_FLOAT_EQ(0.8f, adapter.read(face).expressions.value().joy.value);
  face.emotions.emplace();
  face.emotions->happy = 0.25f;
  EXPECT_FLOAT_EQ(0.25f, adapter.read(face).expressions.value().joy.value);
  EXPECT_FLOAT_EQ(0.25f, adapter.read(face).smile.value().value) << "the smile is theirs, too";
}

TEST(FaceAdapter, TakesAConfidenceAboveOneAsOne)
{
  Face face = smiling();
  face.confidence = 1.5f;
  EXPECT_FLOAT_EQ(1.f, FaceAdapter().read(face).smile.value().confidence);
}

TEST(FaceAdapter, PassesOverABlendshapeThatItDoesNotKnow)
{
  KV::recordings::Blendshapes scores;
  EXPECT_FALSE(scores.set("_neutral", 0.5f));
  EXPECT_TRUE(scores.areUnknown());
  EXPECT_EQ(KV::recordings::Blendshapes::count, KV::recordings::blendshapeNames().size());
}

TEST(Blendshapes, TakeAScoreByNameOrByPlaceAlike)
{
  const auto& names = KV::recordings::blendshapeNames();
  KV::recordings::Blendshapes byName;
  KV::recordings::Blendshapes byPlace;
  ASSERT_EQ("jawOpen", names.at(24));
  EXPECT_TRUE(byName.set("jawOpen", 0.25f));
  byPlace.set(24, 0.25f);
  EXPECT_EQ(0.25f, byName.at(24));
  EXPECT_EQ(0.25f, byPlace.at(24));
  EXPECT_THROW(byPlace.set(names.size(), 0.5f), std::out_of_range);
}

TEST(FaceAdapter, RefusesAMatrixThatIsNoTransformation)
{
  KV::recordings::MediaPipeFace detected;
  detected.matrix.emplace().fill(1.);
  try
  {
    static_cast<void>(faceOf(detected));
    FAIL() << "no exception";
  }
  catch (const std::invalid_argument& error)
  {
    EXPECT_STREQ("The matrix is no transformation: neither its last row nor its last column is 0, 0, 0, 1.",
                 error.what());
  }
}

TEST(FaceAdapter, TakesAMatrixWithoutNumbersAsMissing)
{
  KV::recordings::MediaPipeFace detected;
  detected.matrix.emplace().fill(std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(FaceAdapter().read(faceOf(detected)).empty());
}

TEST(FaceAdapter, RefusesAMappingThatIsNotThere)
{
  ReadingOptions options;
  options.mapping = "/there/is/no/such/mapping.json";
  EXPECT_THROW(FaceAdapter adapter(options), KV::recordings::Error);
}

}  // namespace
