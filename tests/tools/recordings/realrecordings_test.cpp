#include "csvrows.hpp"
#include "support.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

// Recordings that nobody here made; the tests are skipped where they are not at hand.

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
  tools::CsvRows rows(path);
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
  tools::ReadingOptions options;
  options.lineOfSight = false;
  return support::contentsOf(path, "", options);
}

// The 3D landmarks (X to the right in the image, Y down, Z away) tell how a head is turned: by the tip of the nose (30)
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

// Eyes and head mostly go the same way; a gaze yaw counts to the left where a head yaw counts to the right.
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
  EXPECT_THAT(contents.warnings, ElementsAre(HasSubstr("the time stamps tell of 1000 frames/s")));
  EXPECT_NEAR(0.099, support::secondsOf(contents.entries.back()), 1e-9);
  for (const auto& entry : contents.entries)
    ASSERT_GT(entry.observation.facialPoints.value().value.globalConfidence(), 0.8f);

  tools::ReadingOptions options;
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
  for (const std::string name : {"pyfeat/news_001.csv.gz", "arkit/livelinkface_apfel.csv.gz",
                                 "ros4hri/bag_1_engaged.faces.csv.gz", "mediapipe/face_blendshapes_out.prototxt"})
  {
    SKIP_UNLESS_THERE(name);
    EXPECT_THAT(support::contentsOf(path(name)).fatal, HasSubstr("the format is not known")) << name;
  }
}

}  // namespace
