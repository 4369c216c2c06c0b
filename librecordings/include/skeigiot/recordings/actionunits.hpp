#pragma once

#include <skeigiot/api.hpp>

#include <array>
#include <cstddef>
#include <optional>

namespace KV::recordings
{

/// The action units of a face, by their numbers in the Facial Action Coding System: AU12 is intensity[12].
struct SKEIGIOT_API ActionUnits
{
  static constexpr std::size_t count = 100;  ///< AU00 to AU99

  /// Makes a face of which no action unit is known.
  ActionUnits();

  /// 0 is relaxed; below 0 counts as 0, above the full scale as the full scale, NaN as unknown.
  std::array<float, count> intensity;

  /// The intensity that counts as 1, above 0: 5 where intensities go from A to E, 1 where they are shares. Without it,
  /// ReadingOptions::actionUnitFullScale counts.
  std::optional<float> fullScale;
};

}  // namespace KV::recordings
