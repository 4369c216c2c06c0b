#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/valueconfidence.hpp>

namespace KV
{

/// How much a person smiles. Stores its values unchanged.
struct SKEIGIOT_API Smile
{
  /// Makes no smile, with confidence 0.
  Smile() = default;
  /// Stores both as they are given.
  Smile(float value_, float confidence_) : value(value_), confidence(confidence_) {}

  /// Returns degree and confidence as one value.
  ValueConfidence<float> smile() const { return {value, confidence}; }
  /// Stores degree and confidence as they are given.
  void setSmile(const ValueConfidence<float>& smile);

  float value = 0.f;       ///< degree of the smile, meant to lie in [0, 1]
  float confidence = 0.f;  ///< meant to lie in [0, 1]
};

}  // namespace KV
