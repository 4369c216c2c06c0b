#pragma once

#include <skeigiot/api.hpp>

#include <array>
#include <cstdint>

namespace KV::recordings
{

/// hri_msgs/msg/FacialLandmarks
struct SKEIGIOT_API RosLandmarks
{
  /// hri_msgs/msg/NormalizedPointOfInterest2D
  struct Point
  {
    float x = 0.f;           ///< share of the width of the image
    float y = 0.f;           ///< share of its height
    float confidence = 0.f;  ///< in [0, 1]; 0: the point is unknown
  };

  std::array<Point, 70> points{};  ///< the usual 68, and the pupils
  std::uint32_t height = 0;        ///< [pixels] of the image
  std::uint32_t width = 0;         ///< [pixels]
};

}  // namespace KV::recordings
