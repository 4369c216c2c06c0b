#pragma once

#include <initializer_list>
#include <vector>

namespace KV::classification
{

/// Returns the sum of weight x feature, in float and in index order.
///
/// \throws std::runtime_error "Z vector size does not match the feature size" if there is not one feature per weight.
float featureSum(const std::vector<float>& weights, const std::vector<float>& features);

/// Returns `n` weights of 1.
///
/// \throws std::length_error if `n` is negative.
std::vector<float> unitWeights(int n);

/// Returns the weights, each rounded to single precision.
std::vector<float> narrowed(std::initializer_list<double> weights);

}  // namespace KV::classification
