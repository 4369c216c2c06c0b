#pragma once

#include "face/scoretable.hpp"
#include "ros4hri/rosmessages.hpp"

#include <skeigiot/expressions.hpp>
#include <skeigiot/facialpoints.hpp>

#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns what a named expression, or else its valence, says of the readings; nothing if neither is told.
std::optional<KV::Expressions> expressionsOf(const RosExpression& expression);

/// Scores of action units, and how far they can be relied on.
struct RosScores
{
  std::vector<float> scores;  ///< in [0, 1], or NaN if unknown
  float confidence = 0.f;
};

/// Returns the scores with these names ("AU12"); the confidence is the mean of theirs, and one of confidence 0 is
/// unknown.
RosScores scoresOf(const RosActionUnits& units, const std::vector<std::string>& names, float fullScale);

/// Returns the facial points among the landmarks, in pixels.
KV::FacialPoints facialPointsOf(const RosLandmarks& landmarks);

}  // namespace KV::recordings
