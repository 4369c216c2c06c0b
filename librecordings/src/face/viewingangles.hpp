#pragma once

#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/recordings/faceposition.hpp>

namespace KV::recordings
{

/// Direction from the camera to a face.
struct Bearing
{
  double azimuth = 0.0;    ///< [deg], positive is to the right in the image
  double elevation = 0.0;  ///< [deg], positive is down in the image
};

/// Returns the direction in which the camera sees the face; both angles are 0 on the optical axis.
Bearing bearingOf(const FacePosition& position);

/// Converts a head posture that counts from the optical axis into one that counts from the line from the face to the
/// camera: there 0 / 0 faces the camera, wherever the person is.
KV::HeadPosture relativeToLineOfSight(const KV::HeadPosture& posture, const Bearing& bearing);

/// As above, for a gaze.
KV::Gaze relativeToLineOfSight(const KV::Gaze& gaze, const Bearing& bearing);

/// Converts a head posture from a mirror image to the person's own: left and right are exchanged.
KV::HeadPosture unmirrored(const KV::HeadPosture& posture);

/// As above, for a gaze.
KV::Gaze unmirrored(const KV::Gaze& gaze);

/// Returns the angle, given in radians, in degrees.
float degrees(double radians);

}  // namespace KV::recordings
