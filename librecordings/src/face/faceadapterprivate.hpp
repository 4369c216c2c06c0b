#pragma once

#include "face/blendshapereadings.hpp"
#include "face/mapping.hpp"
#include "face/scoretable.hpp"

#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <vector>

namespace KV::recordings
{

/// What a FaceAdapter goes by. A face takes two ways through it, and whatever is to change readings belongs on one:
///
/// - scores: scoresOf() gives named scores in [0, 1], and a table makes readings of them;
/// - pose: poseOf() gives angles from the optical axis, and setPose() turns them to the line of sight.
struct FaceAdapterPrivate
{
  FaceAdapterPrivate(const ReadingOptions& givenOptions, const Mapping& givenMapping);

  /// Return the scores that the table needs, in the order of its names(), each in [0, 1]; NaN is unknown.
  /// @{
  std::vector<float> scoresOf(const ActionUnits& units) const;
  std::vector<float> scoresOf(const Blendshapes& shapes) const;
  std::vector<float> scoresOf(const EmotionScores& shares) const;
  /// @}

  /// Returns the pose of the face; the gaze is that of the blendshapes where it is not told otherwise.
  FacePose poseOf(const Face& face, const std::vector<float>& blendshapeScores) const;

  ReadingOptions options;
  Mapping mapping;
  ScoreReadings actionUnits;
  BlendshapeReadings blendshapes;
  ScoreReadings emotions;

  // Where to find the scores, in the order of the names of the tables above.
  std::vector<std::size_t> actionUnitNumbers;
  std::vector<std::size_t> blendshapeIndices;
  std::vector<float EmotionScores::*> emotionScores;
};

}  // namespace KV::recordings
