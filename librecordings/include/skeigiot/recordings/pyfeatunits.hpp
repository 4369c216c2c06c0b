#pragma once

#include <skeigiot/api.hpp>

namespace KV::recordings
{

/// Units and signs of the angles of py-feat, which differ between its versions and detectors. The default is what
/// version 0.7 was seen to give.
struct SKEIGIOT_API PyFeatUnits
{
  bool rotationInDegrees = false;  ///< Pitch, Roll, Yaw; false: in radians
  bool pitchIsUp = false;          ///< Pitch > 0 is up; false: down
  bool gazeInDegrees = false;      ///< gaze_pitch, gaze_yaw; false: in radians
  bool gazeYawIsLeft = true;       ///< gaze_yaw > 0 is to the person's own left; false: to the own right
  bool gazePitchIsUp = true;       ///< gaze_pitch > 0 is up; false: down
};

}  // namespace KV::recordings
