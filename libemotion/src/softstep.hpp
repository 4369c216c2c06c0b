#pragma once

#include "clamp.hpp"

namespace KV
{

/// Returns the error function of `x`, evaluated in double precision and narrowed.
float errorFunction(float x);

constexpr float softStepFloor = 0.01f;

/// Returns the argument that softStep() gives to the error function.
constexpr float softStepArgument(float x, float reference)
{
  constexpr float gentlest = 0.001f;
  constexpr float steepest = 2.f;
  return minimum(steepest, maximum(gentlest, 2.f / reference)) * (reference - x);
}

/// Returns whether the step is at its floor for this argument, so that it need not be evaluated: from here down the
/// step is below 0.0082. NaN is at the floor, too.
constexpr bool isAtSoftStepFloor(float argument)
{
  constexpr float atTheFloor = -1.7f;
  return !(argument > atTheFloor);
}

/// Returns a soft step over `x`, in [0.01, 1]: near 1 below the reference, 0.5 at it, 0.01 far above it.
///
///     k = min(2, max(0.001, 2 / reference)),  w = max((erf(k (reference - x)) + 1) / 2, 0.01)
///
/// NaN gives 0.01.
inline float softStep(float x, float reference)
{
  const float argument = softStepArgument(x, reference);
  if (isAtSoftStepFloor(argument))
    return softStepFloor;
  return maximum((errorFunction(argument) + 1.f) * 0.5f, softStepFloor);
}

}  // namespace KV
