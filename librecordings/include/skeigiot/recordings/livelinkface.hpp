#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/face.hpp>

#include <limits>
#include <optional>

namespace KV::recordings
{

/// One face of Live Link Face: the blendshapes of ARKit, and angles in radians. A group with a number that is not
/// finite counts as missing.
struct SKEIGIOT_API LiveLinkFace
{
  static constexpr double unknown = std::numeric_limits<double>::quiet_NaN();  ///< an angle that was not streamed

  std::optional<Blendshapes> blendshapes;  ///< scores in [0, 1]

  double headYaw = unknown;    ///< [rad] to the person's own right; if all three are 0, they were not streamed
  double headPitch = unknown;  ///< [rad] down
  double headRoll = unknown;   ///< [rad] to the own right shoulder

  double leftEyeYaw = unknown;     ///< [rad] to the own right, in the head
  double rightEyeYaw = unknown;    ///< [rad] to the own right, in the head
  double leftEyePitch = unknown;   ///< [rad] down, in the head
  double rightEyePitch = unknown;  ///< [rad] down, in the head
};

/// Returns the face in the units and signs of the library; without angles of the eyes the gaze
/// is computed from the blendshapes.
SKEIGIOT_API Face faceOf(const LiveLinkFace& detected);

}  // namespace KV::recordings
