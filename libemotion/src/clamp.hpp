#pragma once

namespace KV
{

/// \file
/// Minimum, maximum and the clamps of the estimated quantities. The order of the operands decides what a NaN becomes.

/// Returns `a` if it is greater than `b`, else `b`: a NaN on either side gives `b`.
constexpr float maximum(float a, float b)
{
  return a > b ? a : b;
}

/// Returns `a` if it is less than `b`, else `b`: a NaN on either side gives `b`.
constexpr float minimum(float a, float b)
{
  return a < b ? a : b;
}

/// Clamps to [-1, 1]; a NaN stays.
constexpr float clampValence(float value)
{
  return minimum(1.f, maximum(-1.f, value));
}

/// Clamps to [0, 1]; a NaN stays.
constexpr float clampAttention(float value)
{
  return minimum(1.f, maximum(0.f, value));
}

/// Clamps to [0, 1]; a NaN becomes 0.
constexpr float clampConfidence(float value)
{
  return minimum(1.f, maximum(value, 0.f));
}

}  // namespace KV
