#pragma once

#include "clamp.hpp"

namespace KV
{

/// Returns the error function of `x`, evaluated in double precision and narrowed.
float errorFunction(float x);

/// Returns a soft step over `x`, in [0.01, 1]: near 1 below the reference, 0.5 at it, 0.01 far above it.
///
///     k = min(2, max(0.001, 2 / reference)),  w = max((erf(k (reference - x)) + 1) / 2, 0.01)
///
/// NaN gives 0.01.
inline float softStep(float x, float reference)
{
  constexpr float gentlest = 0.001f;
  constexpr float steepest = 2.f;
  constexpr float floor = 0.01f;
  constexpr float atTheFloor = -1.7f;  // from here down the step is below 0.0082: there is no need to evaluate it

  const float steepness = minimum(steepest, maximum(gentlest, 2.f / reference));
  const float argument = steepness * (reference - x);
  if (!(argument > atTheFloor))
    return floor;
  return maximum((errorFunction(argument) + 1.f) * 0.5f, floor);
}

}  // namespace KV
