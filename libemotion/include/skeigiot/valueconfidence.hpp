#pragma once

#include <skeigiot/api.hpp>

namespace KV
{

/// A value with the confidence in it.
///
/// Stores its values unchanged: the confidence is meant to lie in [0, 1] and is never tested here. The library uses it
/// for float, bool, unsigned int and std::pair<float, float>.
template <typename T>
struct SKEIGIOT_API ValueConfidence
{
  /// Makes a value-initialised value (0, false) with confidence 0.
  ValueConfidence() = default;
  /// Stores both as they are given.
  ValueConfidence(const T& value_, float confidence_) : value(value_), confidence(confidence_) {}

  T value{};               ///< in the unit of the reading
  float confidence = 0.f;  ///< meant to lie in [0, 1]
};

}  // namespace KV
