#pragma once

#include <skeigiot/api.hpp>

#include <array>
#include <cstddef>

namespace KV::recordings
{

/// hri_msgs/msg/FacialActionUnits: the index is the number of the action unit.
struct SKEIGIOT_API RosActionUnits
{
  static constexpr std::size_t count = 99;  ///< how many the message has
  std::array<float, count> intensity{};     ///< as ReadingOptions::actionUnitFullScale says
  std::array<float, count> confidence{};    ///< 0: the action unit is unknown
};

}  // namespace KV::recordings
