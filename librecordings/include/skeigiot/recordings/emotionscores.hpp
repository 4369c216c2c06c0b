#pragma once

#include <skeigiot/api.hpp>

#include <limits>

namespace KV::recordings
{

/// How strongly a classifier believes in each of the six basic emotions and the neutral face: shares in [0, 1]. A
/// number beyond counts as the nearest of both, NaN as unknown.
struct SKEIGIOT_API EmotionScores
{
  static constexpr float unknown =
      std::numeric_limits<float>::quiet_NaN();  ///< a score that the classifier did not give

  float neutral = unknown;   ///< no emotion: the face is at rest
  float happy = unknown;     ///< share in [0, 1]
  float sad = unknown;       ///< share in [0, 1]
  float surprise = unknown;  ///< share in [0, 1]
  float fear = unknown;      ///< share in [0, 1]
  float disgust = unknown;   ///< share in [0, 1]
  float anger = unknown;     ///< share in [0, 1]
};

}  // namespace KV::recordings
