#include <skeigiot/classification/logregmoodscore.hpp>

#include "featuresum.hpp"

#include <cmath>

namespace KV::classification
{

LogregMoodScore::LogregMoodScore(int n, float intercept) : _weights(unitWeights(n)), _intercept(intercept) {}

LogregMoodScore::LogregMoodScore(const Coefficient& coefficient)
  : _weights(coefficient.weights), _intercept(coefficient.intercept)
{}

void LogregMoodScore::setWeights(const std::vector<float>& weights, float intercept)
{
  _weights = weights;
  _intercept = intercept;
}

float LogregMoodScore::calculateScore(const MoodClass&, const std::vector<float>& features) const
{
  return 1.f / (std::exp(-(featureSum(_weights, features) + _intercept)) + 1.f);
}

// Fitted offline; one weight each for smile, calm, joy, anger and sorrow.

const Coefficient& LogregMoodScore::COEFFICIENT_POS()
{
  static const Coefficient set(
      narrowed({2.38828954219, -3.15291359475, 6.85025791269, -1.41616331546, -0.395405045619}), -0.9510546f);
  return set;
}

const Coefficient& LogregMoodScore::COEFFICIENT_NEU()
{
  static const Coefficient set(narrowed({2.939970882, 5.47256141157, -6.78930233561, -1.49980029085, -1.0211854597}),
                               -0.86178476f);
  return set;
}

const Coefficient& LogregMoodScore::COEFFICIENT_NEG()
{
  static const Coefficient set(narrowed({-5.80814485571, -4.06000541074, -3.21490518458, 2.53144329703, 1.6637735194}),
                               -0.50614434f);
  return set;
}

}  // namespace KV::classification
