#pragma once

#include "personstateprivate.hpp"

#include <algorithm>
#include <cmath>
#include <ostream>

/// \file
/// The arithmetic of forces, written a second time from its formulas: tests compare the library with it, bit for
/// bit.

namespace support
{

/// Returns whether two floats are the same number, with 0 and -0 different; any NaN equals any other.
inline bool sameFloat(float left, float right)
{
  if (std::isnan(left) || std::isnan(right))
    return std::isnan(left) && std::isnan(right);
  return left == right && std::signbit(left) == std::signbit(right);
}

/// The soft step: near 1 below the reference, 0.5 at it, never below 0.01, which is also the result for a NaN.
inline float softStep(float x, float reference)
{
  const float steepness = std::fmin(2.f, std::fmax(0.001f, 2.f / reference));
  const auto error = static_cast<float>(std::erf(static_cast<double>(steepness * (reference - x))));
  return std::fmax((error + 1.f) * 0.5f, 0.01f);
}

/// The soft step with a linear term, with which it continues to fall below 0.
inline float fallingStep(float x, float reference)
{
  return 0.5f * ((softStep(x, reference) - (x - reference) / (2.f * reference)) + 0.5f);
}

/// The six numbers that forces move.
struct Estimate
{
  float valence = 0.f;
  float unsmoothedValence = 0.f;
  float valenceConfidence = 0.f;
  float unsmoothedConfidence = 0.f;
  float attention = 0.f;
  float attentionConfidence = 0.f;

  void pullValence(float target, float weight)
  {
    valence = _pulled(valence, target, weight, -1.f);
    unsmoothedValence = _pulled(unsmoothedValence, target, weight, -1.f);
  }

  void pullValenceConfidence(float target, float weight)
  {
    valenceConfidence = _pulled(valenceConfidence, target, weight, 0.f);
    unsmoothedConfidence = _pulled(unsmoothedConfidence, target, weight, 0.f);
  }

  void pullAttention(float target, float weight) { attention = _pulled(attention, target, weight, 0.f); }

  void pullAttentionConfidence(float target, float weight)
  {
    attentionConfidence = _pulled(attentionConfidence, target, weight, 0.f);
  }

private:
  static float _pulled(float from, float target, float weight, float lowest)
  {
    return std::clamp(from + weight * (target - from), lowest, 1.f);
  }
};

inline Estimate estimateOf(const KV::PersonStatePrivate& state)
{
  return {state.valence.value,      state.unsmoothedValence.value,
          state.valence.confidence, state.unsmoothedValence.confidence,
          state.attention.value,    state.attention.confidence};
}

inline bool operator==(const Estimate& left, const Estimate& right)
{
  return sameFloat(left.valence, right.valence) && sameFloat(left.unsmoothedValence, right.unsmoothedValence) &&
         sameFloat(left.valenceConfidence, right.valenceConfidence) &&
         sameFloat(left.unsmoothedConfidence, right.unsmoothedConfidence) &&
         sameFloat(left.attention, right.attention) && sameFloat(left.attentionConfidence, right.attentionConfidence);
}

inline std::ostream& operator<<(std::ostream& stream, const Estimate& estimate)
{
  const auto former = stream.precision(9);
  stream << "valence " << estimate.valence << " (" << estimate.valenceConfidence << "), unsmoothed "
         << estimate.unsmoothedValence << " (" << estimate.unsmoothedConfidence << "), attention " << estimate.attention
         << " (" << estimate.attentionConfidence << ")";
  stream.precision(former);
  return stream;
}

}  // namespace support
