#include "face/viewingangles.hpp"

#include <cmath>

namespace KV::recordings
{
namespace
{
constexpr double degreesPerRadian = 57.295779513082320877;

float less(float angle, double correction)
{
  return static_cast<float>(static_cast<double>(angle) - correction);
}

}  // namespace

double FacePosition::distance() const
{
  return std::hypot(right, down, forward);
}

Bearing bearingOf(const FacePosition& position)
{
  return {std::atan2(position.right, std::hypot(position.down, position.forward)) * degreesPerRadian,
          std::atan2(position.down, std::hypot(position.right, position.forward)) * degreesPerRadian};
}

KV::HeadPosture relativeToLineOfSight(const KV::HeadPosture& posture, const Bearing& bearing)
{
  return {less(posture.yaw(), bearing.azimuth), less(posture.pitch(), bearing.elevation), posture.roll()};
}

KV::Gaze relativeToLineOfSight(const KV::Gaze& gaze, const Bearing& bearing)
{
  return {less(gaze.yaw, -bearing.azimuth), less(gaze.pitch, bearing.elevation)};
}

KV::HeadPosture unmirrored(const KV::HeadPosture& posture)
{
  return {-posture.yaw(), posture.pitch(), -posture.roll()};
}

KV::Gaze unmirrored(const KV::Gaze& gaze)
{
  return {-gaze.yaw, gaze.pitch};
}

float degrees(double radians)
{
  return static_cast<float>(radians * degreesPerRadian);
}

}  // namespace KV::recordings
