#pragma once

#include <skeigiot/api.hpp>

namespace KV
{

/// Direction of a person's gaze. Stores its values unchanged.
struct SKEIGIOT_API Gaze
{
  /// Makes a gaze straight ahead.
  Gaze() = default;
  /// Stores both angles [deg] as they are given.
  Gaze(float yaw_, float pitch_) : yaw(yaw_), pitch(pitch_) {}

  float yaw = 0.f;    ///< [deg], positive is to the person's own left (the opposite sign of a head yaw)
  float pitch = 0.f;  ///< [deg], positive is up
};

}  // namespace KV
