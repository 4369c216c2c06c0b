#pragma once

#include <skeigiot/api.hpp>

namespace KV
{

/// Orientation of the robot's own head. Stores its values unchanged.
struct SKEIGIOT_API RobotHeadPosture
{
  /// Makes a head that is straight.
  RobotHeadPosture() = default;
  /// Stores both angles [deg] as they are given.
  RobotHeadPosture(float yaw_, float pitch_) : yaw(yaw_), pitch(pitch_) {}

  float yaw = 0.f;    ///< [deg]; only its changes are read
  float pitch = 0.f;  ///< [deg]; only its changes are read
};

}  // namespace KV
