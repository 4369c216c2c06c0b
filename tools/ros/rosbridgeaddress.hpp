#pragma once

#include <skeigiot/ros2/rosbridge.hpp>

#include <string>

namespace KV::tools
{

/// Reads where rosbridge listens: "ws://HOST:PORT", with a path behind it where rosbridge has one. Without a port, it
/// is 9090. An IPv6 address is in brackets.
///
/// \throws std::invalid_argument "expected ws://HOST:PORT, found '...'"
ros2::RosbridgeAddress parseRosbridgeAddress(const std::string& text);

}  // namespace KV::tools
