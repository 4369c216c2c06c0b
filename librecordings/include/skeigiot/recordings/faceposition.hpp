#pragma once

#include <skeigiot/api.hpp>

namespace KV::recordings
{

/// Where a face is, seen from the camera, in any unit of length.
struct SKEIGIOT_API FacePosition
{
  double right = 0.0;    ///< to the right in the image
  double down = 0.0;     ///< down in the image
  double forward = 0.0;  ///< away from the camera, along its optical axis

  /// Returns the distance from the camera, in the unit of the position.
  double distance() const;
};

}  // namespace KV::recordings
