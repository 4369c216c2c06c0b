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

/// Returns whether this is one of blendshapeNames().
bool isBlendshape(const std::string& name);

/// Returns the index of the name in blendshapeNames(), which must have it.
std::size_t blendshapeIndex(const std::string& name);

/// Returns the table that makes readings from blendshapes.
const ScoreTable& blendshapeTable();

/// As above, for the shapes of ARKit.
const ScoreTable& arkitTable();

/// How far eyes are turned at a score of 1.
struct EyeScale
{
  float yaw = 30.f;    ///< [deg]
  float pitch = 25.f;  ///< [deg]
};

/// Returns the names of the scores of eyeGaze(), in its order.
const std::vector<std::string>& eyeScoreNames();

/// Returns the direction of the eyes, relative to the head; nothing if a score is unknown (NaN).
std::optional<KV::Gaze> eyeGaze(const std::vector<float>& eyeScores, const EyeScale& scale);

/// Returns the gaze of eyes turned by `eyes` in a head turned by `head`; without a head posture, that of the eyes.
KV::Gaze gazeOf(const KV::Gaze& inHead, const std::optional<KV::HeadPosture>& head);

/// Returns a score clamped to [0, 1]; NaN stays NaN.
float blendshapeScore(double score);

}  // namespace KV::recordings
