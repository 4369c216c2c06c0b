#include <skeigiot/ramp.hpp>

#include <ko/log.hpp>

#include <cmath>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.ramp");

}  // namespace

template <RampSlope Slope, typename Input, typename Output>
Output Ramp<Slope, Input, Output>::operator()(Input x) const
{
  const float k = 4.f / width;
  const float t = std::tanh((x - center) * k);
  if constexpr (Slope == RampDown)
    return ((1.f - t) * amplitude) * 0.5f;
  else
    return ((t + 1.f) * amplitude) * 0.5f;
}

template class Ramp<RampDown, float, float>;
template class Ramp<RampUp, float, float>;

}  // namespace KV
