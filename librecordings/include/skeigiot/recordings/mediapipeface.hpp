#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/face.hpp>

#include <array>
#include <optional>

namespace KV::recordings
{

/// One face as the MediaPipe FaceLandmarker tells it.
struct SKEIGIOT_API MediaPipeFace
{
  float confidence = 1.f;  ///< the FaceLandmarker tells none
  std::optional<Blendshapes> blendshapes;

  /// The facial transformation matrix, column by column as MediaPipe stores it, or row by row: both are told apart by
  /// where 0, 0, 0, 1 stand. With a number that is not finite it counts as missing.
  std::optional<std::array<double, 16>> matrix;
};

/// Returns the face in the units and signs of the library.
///
/// \throws std::invalid_argument "The matrix is no transformation: neither its last row nor its last column is 0, 0, 0,
///   1."
SKEIGIOT_API Face faceOf(const MediaPipeFace& told);

}  // namespace KV::recordings
