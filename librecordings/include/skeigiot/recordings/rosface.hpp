#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/face.hpp>

#include <array>
#include <optional>

namespace KV::recordings
{

/// Position of a face and its gaze in ROS4HRI: the frames of face and gaze, relative to the frame of the camera.
///
/// The frame of a camera has x to the right in the image, y down and z away from the camera (an optical frame); that of
/// a face has x out of the face, y to the person's own left and z up; z of a gaze points along the gaze.
struct SKEIGIOT_API RosFace
{
  std::array<double, 3> translation{};                ///< [m] x, y, z of the face
  std::array<double, 4> rotation{0., 0., 0., 1.};     ///< quaternion x, y, z, w of the face, of any length but 0
  std::optional<std::array<double, 4>> gazeRotation;  ///< quaternion x, y, z, w of the gaze, of any length but 0
};

/// Returns the face in the units and signs of the library.
///
/// \throws std::invalid_argument "The pose of the face has a number that is not finite, or its rotation is 0."
/// \throws std::invalid_argument "The rotation of the gaze has a number that is not finite, or is 0."
SKEIGIOT_API Face faceOf(const RosFace& detected);

}  // namespace KV::recordings
