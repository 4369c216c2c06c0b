#pragma once

#include <skeigiot/api.hpp>

#include <utility>
#include <vector>

namespace KV::classification
{

/// The fitted parameters of a mood score. Stores its values unchanged.
struct SKEIGIOT_API Coefficient
{
  /// Stores both as they are given.
  Coefficient(std::vector<float> weights_, float intercept_) : weights(std::move(weights_)), intercept(intercept_) {}

  std::vector<float> weights;  ///< one weight per feature, in feature order (the "Z vector")
  float intercept;             ///< the constant term
};

}  // namespace KV::classification
