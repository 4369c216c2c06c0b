#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/face.hpp>

#include <array>
#include <optional>

namespace KV::recordings
{

/// One face in the form of OpenFace 2. A group with a number that is not finite counts as missing.
struct SKEIGIOT_API OpenFaceFace
{
  float confidence = 1.f;                            ///< confidence
  std::optional<std::array<double, 3>> position;     ///< [mm] pose_Tx to the right in the image, _Ty down, _Tz away
  std::optional<std::array<double, 3>> rotation;     ///< [rad] pose_Rx down, _Ry to the own right, _Rz to the own left
                                                     ///< shoulder
  std::optional<std::array<double, 2>> gazeAngle;    ///< [rad] gaze_angle_x to the own left, _y down
  std::optional<std::array<double, 6>> gazeVectors;  ///< gaze_0_x, _y, _z, gaze_1_x, _y, _z: read without gazeAngle
  std::optional<ActionUnits> actionUnits;            ///< AU01_r to AU45_r, from 0 to 5
  std::optional<FaceLandmarks> landmarks;            ///< [pixels] x_0, y_0 to x_67, y_67
};

/// Returns the face in the units and signs of the library.
SKEIGIOT_API Face faceOf(const OpenFaceFace& detected);

}  // namespace KV::recordings
