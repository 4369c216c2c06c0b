#pragma once

#include "face/blendshapereadings.hpp"
#include "face/mapping.hpp"
#include "face/scoretable.hpp"

#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/facereadings.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/restingface.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::recordings
{

/// What a FaceAdapter goes by. A face takes two ways through it, and whatever is to change readings belongs on one:
///
/// - scores: scoresOf() gives named scores in [0, 1], what they are at rest is taken off, and a table makes readings;
/// - pose: poseOf() gives angles from the optical axis, and setPose() turns them to where the robot is.
struct FaceAdapterPrivate
{
  /// What a person's rest is learned by.
  struct Learning
  {
    RestingFace& rest;
    ko::SystemClock::time_point now;
  };

  /// A table of action units, and where to find the scores that it needs, in the order of its names.
  struct UnitTable
  {
    explicit UnitTable(const ScoreTable& table);

    ScoreReadings readings;
    std::vector<std::size_t> numbers;
  };

  /// A table of blendshapes, and where to find the scores that it needs, in the order of its names.
  struct ShapeTable
  {
    ShapeTable(const ScoreTable& table, const EyeScale& eyes);

    BlendshapeReadings readings;
    std::vector<std::size_t> indices;
  };

  FaceAdapterPrivate(const ReadingOptions& givenOptions, const Mapping& givenMapping);

  FaceReadings read(const Face& face, const boost::optional<Learning>& learning) const;

  const UnitTable& unitsOf(const Face& face) const;
  const ShapeTable& shapesOf(const Face& face) const;

  /// Return the scores that the table needs, in the order of its names(), each in [0, 1]; NaN is unknown.
  /// @{
  std::vector<float> scoresOf(const ActionUnits& told, const UnitTable& table) const;
  static std::vector<float> scoresOf(const Blendshapes& told, const ShapeTable& table);
  std::vector<float> scoresOf(const EmotionScores& shares) const;
  /// @}

  /// Takes off what the scores are at rest: as learned, or else as a typical face rests. `scale` is how many times the
  /// full scale of the table is that of the scores.
  void takeRestOff(std::vector<float>& scores, const ScoreReadings& table, float scale,
                   boost::optional<RestingFace::Scores> RestingFace::*learned,
                   const boost::optional<Learning>& learning) const;

  /// Returns the pose of the face; the gaze is that of the eyes' blendshapes where it is not told otherwise.
  static FacePose poseOf(const Face& face, const ShapeTable& table, const std::vector<float>& blendshapeScores);

  /// Takes off the direction in which the head rests, where the options want that.
  void takeRestOff(FaceReadings& readings, const Face& face, const Learning& learning) const;

  ReadingOptions options;
  Mapping mapping;
  UnitTable units;
  UnitTable pyFeatUnits;
  ShapeTable shapes;
  ShapeTable arkitShapes;
  ScoreReadings emotions;

  // Of all tables.
  std::vector<std::string> actionUnitNames;
  std::vector<std::size_t> actionUnitNumbers;
  std::vector<std::string> blendshapeNames;
  std::vector<std::size_t> blendshapeIndices;
  std::vector<float EmotionScores::*> emotionScores;
};

}  // namespace KV::recordings
