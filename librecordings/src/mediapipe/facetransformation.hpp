#pragma once

#include <skeigiot/recordings/facepose.hpp>

#include <array>
#include <optional>

namespace KV::recordings
{

/// The 4x4 matrix by which MediaPipe turns and moves a face from its own coordinates into those of the camera: X to the
/// right in the image, Y up, Z towards the camera, in centimetres.
using FaceMatrix = std::array<double, 16>;

/// Returns head posture and position; nothing if this is no such matrix.
///
/// Both orders are read, column by column, as MediaPipe writes it, and row by row: the place of 0, 0, 0, 1 decides.
std::optional<FacePose> poseOf(const FaceMatrix& matrix);

}  // namespace KV::recordings
