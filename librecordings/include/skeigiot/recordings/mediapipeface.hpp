#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/face.hpp>

#include <array>
#include <optional>

namespace KV::recordings
{

/// One face of the MediaPipe FaceLandmarker.
struct SKEIGIOT_API MediaPipeFace
{
  float confidence = 1.f;                  ///< the FaceLandmarker writes no confidence
  std::optional<Blendshapes> blendshapes;  ///< scores in [0, 1]

  /// The facial transformation matrix, column by column (as MediaPipe stores it) or row by row. The position of the
  /// numbers 0, 0, 0, 1 shows which order it is. A matrix with a number that is not finite counts as missing.
  std::optional<std::array<double, 16>> matrix;
};

/// Returns the face in the units and signs of the library.
///
/// \throws std::invalid_argument "The matrix is no transformation: neither its last row nor its last column is 0, 0, 0,
///   1."
SKEIGIOT_API Face faceOf(const MediaPipeFace& detected);

}  // namespace KV::recordings
