#pragma once

#include <skeigiot/api.hpp>

#include <array>
#include <cstddef>
#include <limits>

namespace KV::recordings
{

/// The usual 68 landmarks of a face, from 0: the jaw from the person's own right ear to the left one, brows, nose,
/// eyes, mouth.
struct SKEIGIOT_API FaceLandmarks
{
  static constexpr std::size_t count = 68;  ///< how many points there are

  /// A point of the image; NaN in one of its numbers: it is unknown.
  struct Point
  {
    float x = std::numeric_limits<float>::quiet_NaN();  ///< [pixels] to the right in the image
    float y = std::numeric_limits<float>::quiet_NaN();  ///< [pixels] down in the image
  };

  std::array<Point, count> points{};  ///< by their numbers; unknown unless set
};

}  // namespace KV::recordings
