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

/// The parts of a FaceAdapter. A face takes two ways through it, and each change of readings belongs to one of them:
///
/// - scores: scoresOf() gives named scores in [0, 1], the scores at rest are subtracted, and a table makes readings;
/// - pose: poseOf() gives angles from the optical axis, and setPose() turns them to the robot's position.
struct FaceAdapterPrivate
{
  /// A measured value from which a person's rest is learned.
  struct Learning
  {
    RestingFace& rest;
    ko::SystemClock::time_point now;
  };

  /// A table of action units, and the places of the scores that it needs, in the order of its names.
  struct UnitTable
  {
    explicit UnitTable(const ScoreTable& table);

    ScoreReadings readings;
    std::vector<std::size_t> numbers;
  };

  /// A table of blendshapes, and the places of the scores that it needs, in the order of its names.
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
  std::vector<float> scoresOf(const ActionUnits& detected, const UnitTable& table) const;
  static std::vector<float> scoresOf(const Blendshapes& detected, const ShapeTable& table);
  std::vector<float> scoresOf(const EmotionScores& shares) const;
  /// @}

  /// Subtracts the scores at rest: as learned, or else those of a typical face at rest. `scale` is the full scale of
  /// the scores divided by the full scale of the table.
  void subtractRest(std::vector<float>& scores, const ScoreReadings& table, float scale,
                    boost::optional<RestingFace::Scores> RestingFace::*learned,
                    const boost::optional<Learning>& learning) const;

  /// Returns the pose of the face; a missing gaze is computed from the eyes' blendshapes.
  static FacePose poseOf(const Face& face, const ShapeTable& table, const std::vector<float>& blendshapeScores);

  /// Subtracts the direction in which the head rests, if the options ask for it.
  void subtractRest(FaceReadings& readings, const Face& face, const Learning& learning) const;

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
