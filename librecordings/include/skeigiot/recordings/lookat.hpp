#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/faceposition.hpp>

#include <string>

namespace KV::recordings
{

/// The point that a person looks at who looks at the robot: head posture and gaze are 0 / 0 there.
struct SKEIGIOT_API LookAt
{
  /// By what the direction of the robot is known.
  enum class Kind
  {
    FormatsOwn,  ///< Camera; for ROS4HRI the axis, moved by up to 5 degrees towards where the head rests
    Camera,      ///< the camera, wherever the person is
    Axis,        ///< parallel to the optical axis of the camera
    Point,       ///< `point`: the head or the face of the robot
    Learned      ///< where the head rests most
  };

  Kind kind = Kind::FormatsOwn;  ///< by what it is known
  FacePosition point;            ///< [m] from the camera: right, down, forward
};

/// Reads "camera", "axis", "learned", or three numbers of metres such as "0,-0.2,0.05".
///
/// \throws std::invalid_argument for any other text.
SKEIGIOT_API LookAt parseLookAt(const std::string& text);

}  // namespace KV::recordings
