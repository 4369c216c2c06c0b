#pragma once

#include "ros4hri/transformtree.hpp"

#include <skeigiot/recordings/facepose.hpp>

namespace KV::recordings
{

/// Returns the position and posture of a face, from its frame in that of the camera.
///
/// The frame of a face has x out of the face, y to the person's own left and z up; that of a camera has x to the right
/// in the image, y down in the image and z away from the camera.
FacePose poseOf(const Transform& faceInCamera);

/// Returns the direction of a gaze, from its frame in that of the camera: its z points along the gaze.
KV::Gaze gazeOf(const Transform& gazeInCamera);

}  // namespace KV::recordings
