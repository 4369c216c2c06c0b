#include "featuresum.hpp"

#include <cstddef>
#include <stdexcept>

namespace KV::classification
{

float featureSum(const std::vector<float>& weights, const std::vector<float>& features)
{
  if (features.size() != weights.size())
    throw std::runtime_error("Z vector size does not match the feature size");
  float sum = 0.f;
  for (std::size_t i = 0; i < weights.size(); ++i)
    sum += weights[i] * features[i];
  return sum;
}

std::vector<float> unitWeights(int n)
{
  return std::vector<float>(static_cast<std::size_t>(n), 1.f);
}

std::vector<float> narrowed(std::initializer_list<double> weights)
{
  std::vector<float> result;
  for (const double weight : weights)
    result.push_back(static_cast<float>(weight));
  return result;
}

}  // namespace KV::classification
