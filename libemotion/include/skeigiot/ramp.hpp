#pragma once

#include <skeigiot/api.hpp>

namespace KV
{

/// Which way a Ramp runs.
enum SKEIGIOT_API RampSlope : int
{
  RampDown = 0,  ///< falls from the amplitude to 0 as the input rises
  RampUp = 1     ///< rises from 0 to the amplitude
};

/// A smooth step between 0 and an amplitude.
///
///     k = 4 / width,  t = tanh((x - center) * k)
///     RampDown: ((1 - t) * amplitude) * 0.5        RampUp: ((t + 1) * amplitude) * 0.5
///
/// Half the amplitude at the center; about 98 % of the transition lies within the width. A width of 0 divides by zero.
/// Made for float input and output, with both slopes.
template <RampSlope Slope, typename Input, typename Output>
class SKEIGIOT_API Ramp
{
public:
  /// Makes a ramp with all fields 0, which is of no use until they are set.
  Ramp() = default;
  /// Stores the three values as they are given.
  Ramp(float center_, float width_, float amplitude_) : center(center_), width(width_), amplitude(amplitude_) {}

  /// Returns the height of the ramp at `x`, in single precision.
  Output operator()(Input x) const;

  float center = 0.f;     ///< input at which the output is half the amplitude
  float width = 0.f;      ///< span of input over which the transition is made
  float amplitude = 0.f;  ///< output at the high end
};

extern template class Ramp<RampDown, float, float>;
extern template class Ramp<RampUp, float, float>;

}  // namespace KV
