#pragma once

#include <skeigiot/api.hpp>

#include <iosfwd>

namespace KV
{

/// How much at ease a person's posture looks. Stores its values unchanged.
struct SKEIGIOT_API BodyLanguageEase
{
  /// Makes the ease before the first estimate: level 0, confidence 0.
  BodyLanguageEase() = default;
  /// Stores both as they are given.
  BodyLanguageEase(float level_, float confidence_) : level(level_), confidence(confidence_) {}

  float level = 0.f;       ///< ease in [-0.5, 0.5], both ends included; negative is discomfort, 0 is neutral
  float confidence = 0.f;  ///< 0 before the first estimate, 0.5 after it
};

/// Writes level and confidence with a word for the feeling, without a line end.
///
/// Deliberate: fixed notation and precision 1 stay set on the stream, and the lowest word is spelt "akwards".
SKEIGIOT_API std::ostream& operator<<(std::ostream& stream, const BodyLanguageEase& ease);

}  // namespace KV
