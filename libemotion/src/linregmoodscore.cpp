#include <skeigiot/classification/linregmoodscore.hpp>

#include "featuresum.hpp"

namespace KV::classification
{

LinregMoodScore::LinregMoodScore(int n, float intercept) : _weights(unitWeights(n)), _intercept(intercept) {}

LinregMoodScore::LinregMoodScore(const Coefficient& coefficient)
  : _weights(coefficient.weights), _intercept(coefficient.intercept)
{}

float LinregMoodScore::calculateScore(const MoodClass&, const std::vector<float>& features) const
{
  return (featureSum(_weights, features) + _intercept) / static_cast<float>(features.size());
}

// Fitted offline; one weight each for smile, calm, joy, anger and sorrow.

const Coefficient& LinregMoodScore::COEFFICIENT_POS()
{
  static const Coefficient set(
      narrowed({0.347842195293, -0.426107582215, 0.530306722283, -0.298138523784, -0.253809017785}), 0.35163465f);
  return set;
}

const Coefficient& LinregMoodScore::COEFFICIENT_NEU()
{
  static const Coefficient set(
      narrowed({0.0808290898056, 0.891293775228, -0.491957517638, -0.425402390317, -0.111974310571}), 0.3218228f);
  return set;
}

const Coefficient& LinregMoodScore::COEFFICIENT_NEG()
{
  static const Coefficient set(
      narrowed({-0.561094814733, -0.328849006716, 0.0550064449134, 0.777949578444, 0.281221762619}), 0.3727249f);
  return set;
}

}  // namespace KV::classification
