#include <skeigiot/isfinite.hpp>

#include "leaveout.hpp"

#include <cmath>
#include <type_traits>
#include <utility>

namespace KV
{

namespace
{

template <typename Value>
bool areFinitePartsOf(const Value& value);

template <typename T>
bool isFiniteValue(const T& value)
{
  if constexpr (std::is_integral_v<T>)
    return true;
  else if constexpr (std::is_floating_point_v<T>)
    return std::fabs(value) <= greatestReading;  // a NaN is not less than anything
  else
    return areFinitePartsOf(value);
}

bool isFiniteValue(const std::pair<float, float>& position)
{
  return isFiniteValue(position.first) && isFiniteValue(position.second);
}

// An impossible surprise of a voice is checked together with the other scores.
bool isFiniteValue(const VoiceEmotion& emotion)
{
  return isFinite(static_cast<const Expressions&>(emotion));
}

// All are compared, which is faster than a branch for each.
template <typename Value>
bool areFinitePartsOf(const Value& value)
{
  unsigned areAll = 1;
  forEachPart<Value>([&](const auto& part) { areAll &= static_cast<unsigned>(isFiniteValue(part.in(value))); });
  return areAll != 0;
}

}  // namespace

bool isFinite(const Gaze& gaze)
{
  return areFinitePartsOf(gaze);
}

bool isFinite(const HeadPosture& posture)
{
  return areFinitePartsOf(posture);
}

bool isFinite(const RobotHeadPosture& posture)
{
  return areFinitePartsOf(posture);
}

bool isFinite(const Smile& smile)
{
  return areFinitePartsOf(smile);
}

bool isFinite(const Expressions& expressions)
{
  return areFinitePartsOf(expressions);
}

bool isFinite(const FacialPoints& points)
{
  return areFinitePartsOf(points);
}

bool isFinite(const ContextEmotion& emotion)
{
  return areFinitePartsOf(emotion);
}

bool isFinite(const PersonObservation& observation)
{
  bool areAll = true;
  forEachReading([&](const auto& known) {
    const auto& reading = known.in(observation);
    areAll &= !reading || isFiniteValue(reading->value);
  });
  return areAll;
}

std::size_t leaveOutNonFinite(PersonObservation& observation)
{
  return leaveOut(observation, [](const auto& reading) { return !isFiniteValue(reading.value); });
}

}  // namespace KV
