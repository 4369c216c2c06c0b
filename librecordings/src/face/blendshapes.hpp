#pragma once

#include "face/scoretable.hpp"

#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/recordings/blendshapes.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Tells whether this is one of blendshapeNames().
bool isBlendshape(const std::string& name);

/// Returns the index of the name in blendshapeNames(), which must have it.
std::size_t blendshapeIndex(const std::string& name);

/// Returns which blendshapes make which readings.
const ScoreTable& blendshapeTable();

/// As above, for the shapes of ARKit.
const ScoreTable& arkitTable();

/// How far eyes turn that have a score of 1.
struct EyeScale
{
  float yaw = 30.f;    ///< [deg]
  float pitch = 25.f;  ///< [deg]
};

/// Returns the names of the scores of eyeGaze(), in its order.
const std::vector<std::string>& eyeScoreNames();

/// Returns where the eyes look, relative to the head; nothing if a score is unknown (NaN).
std::optional<KV::Gaze> eyeGaze(const std::vector<float>& eyeScores, const EyeScale& scale);

/// Returns the gaze of eyes that are turned so in a head that is turned so; without a head posture, that of the eyes.
KV::Gaze gazeOf(const KV::Gaze& inHead, const std::optional<KV::HeadPosture>& head);

/// Returns a score as it counts: no more than 1 and no less than 0; NaN stays NaN.
float blendshapeScore(double score);

}  // namespace KV::recordings
