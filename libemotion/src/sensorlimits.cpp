#include "personstateprivate.hpp"

#include <skeigiot/ramp.hpp>

namespace KV
{

namespace
{

using FallingRamp = Ramp<RampDown, float, float>;

/// Full trust in the face sensor up to about 1.3 m, no trust beyond about 1.5 m.
FallingRamp makeDistanceRamp()
{
  return {1.4f, 0.2f, 1.f};
}

/// Full trust in the face sensor up to a head height of about 1.8 m, no trust beyond about 2.0 m.
FallingRamp makeHeightRamp()
{
  return {1.9f, 0.2f, 1.f};
}

constexpr float limitationWeight = 0.175f;

}  // namespace

void PersonStatePrivate::_handleOkaoValenceLimitations(float distance, float height)
{
  static const FallingRamp distanceRamp = makeDistanceRamp();
  static const FallingRamp heightRamp = makeHeightRamp();
  _applyForceValenceConfidence(distanceRamp(distance), limitationWeight, "Distance limitation");
  _applyForceValenceConfidence(heightRamp(height), limitationWeight, "Height limitation");
}

float PersonStatePrivate::_handleOkaoAttentionLimitations(float distance, float height) const
{
  static const FallingRamp distanceRamp = makeDistanceRamp();
  static const FallingRamp heightRamp = makeHeightRamp();
  const float byDistance = distanceRamp(distance);
  const float byHeight = heightRamp(height);
  return byHeight < byDistance ? byHeight : byDistance;
}

}  // namespace KV
