#pragma once

#include <skeigiot/api.hpp>

#include <cstdint>
#include <string>
#include <vector>

/// \file
/// Messages of ROS that hold no reading. They are in CDR, with the four bytes in front that say the byte order.

namespace KV::recordings
{

/// Returns the time [ns] in a message of the type rosgraph_msgs/msg/Clock.
///
/// \throws std::runtime_error for a message that ends too early, or a time before 0.
SKEIGIOT_API std::int64_t rosClockIn(std::vector<char>& data);

/// Returns the text in a message of the type std_msgs/msg/String.
///
/// \throws std::runtime_error for a message that ends too early.
SKEIGIOT_API std::string rosTextIn(std::vector<char>& data);

}  // namespace KV::recordings
