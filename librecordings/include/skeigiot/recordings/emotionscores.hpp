#pragma once

#include <skeigiot/api.hpp>

#include <limits>

namespace KV::recordings
{

/// How strongly a classifier believes in each of the six basic emotions and the neutral face: shares in [0, 1]. What is
/// beyond counts as the nearest of both, NaN as unknown.
struct SKEIGIOT_API EmotionScores
{
  static constexpr float unknown = std::numeric_limits<float>::quiet_NaN();

  float neutral = unknown;
  float happy = unknown;
  float sad = unknown;
  float surprise = unknown;
  float fear = unknown;
  float disgust = unknown;
  float anger = unknown;
};

}  // namespace KV::recordings
