#include <skeigiot/isfinite.hpp>

#include "eachreading.hpp"

#include <cmath>
#include <type_traits>

namespace KV
{

namespace
{

// A NaN is not less than anything. All are compared, which takes less time than a branch for each.
template <typename... Numbers>
bool areFinite(Numbers... numbers)
{
  return static_cast<bool>((static_cast<unsigned>(std::fabs(numbers) <= greatestReading) & ...));
}

template <typename T>
bool isFiniteValue(const T& value)
{
  if constexpr (std::is_integral_v<T>)
    return true;
  else if constexpr (std::is_floating_point_v<T>)
    return areFinite(value);
  else
    return isFinite(value);
}

template <typename T>
bool isFiniteValue(const ValueConfidence<T>& value)
{
  return isFiniteValue(value.value) && areFinite(value.confidence);
}

}  // namespace

bool isFinite(const Gaze& gaze)
{
  return areFinite(gaze.yaw, gaze.pitch);
}

bool isFinite(const HeadPosture& posture)
{
  return areFinite(posture.yaw(), posture.pitch(), posture.roll());
}

bool isFinite(const RobotHeadPosture& posture)
{
  return areFinite(posture.yaw, posture.pitch);
}

bool isFinite(const Smile& smile)
{
  return areFinite(smile.value, smile.confidence);
}

bool isFinite(const Expressions& expressions)
{
  return isFiniteValue(expressions.calm) && isFiniteValue(expressions.anger) && isFiniteValue(expressions.joy) &&
         isFiniteValue(expressions.sorrow) && isFiniteValue(expressions.laughter) &&
         isFiniteValue(expressions.excitement) && isFiniteValue(expressions.surprise);
}

bool isFinite(const FacialPoints& points)
{
  for (int i = FacialPoint0; i <= FacialPoint11; ++i)
  {
    const FacialPoints::Point point = points.facialPoint(static_cast<PointDescription>(i));
    if (!areFinite(point.value.first, point.value.second, point.confidence))
      return false;
  }
  return true;
}

bool isFinite(const ContextEmotion& emotion)
{
  return areFinite(emotion.lifetime);
}

bool isFinite(const PersonObservation& observation)
{
  bool areAll = true;
  forEachReading(observation, [&areAll](const auto& reading) { areAll &= !reading || isFiniteValue(reading->value); });
  return areAll;
}

std::size_t leaveOutNonFinite(PersonObservation& observation)
{
  return leaveOut(observation, [](const auto& reading) { return !isFiniteValue(reading.value); });
}

}  // namespace KV
