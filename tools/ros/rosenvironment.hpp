#pragma once

#include <skeigiot/ros2/busoptions.hpp>

#include <functional>
#include <string>

namespace KV::tools
{

/// Returns the value of an environment variable; empty if it is not set.
using Environment = std::function<std::string(const std::string& name)>;

/// Sets what the variables of ROS say: ROS_DOMAIN_ID, ROS_AUTOMATIC_DISCOVERY_RANGE, ROS_STATIC_PEERS and
/// ROS_LOCALHOST_ONLY. Without a range there, the range stays what it is. As in ROS, ROS_LOCALHOST_ONLY goes before the
/// two others if it is 1.
///
/// \throws std::invalid_argument if one has a value that ROS does not know; the text names the variable.
void applyEnvironment(const Environment& environment, ros2::BusOptions& options);

/// Reads "off", "localhost", "subnet" or "system-default", in any case, also with "_" for "-".
///
/// \throws std::invalid_argument "expected off, localhost, subnet or system-default, found '...'"
ros2::DiscoveryRange parseRange(const std::string& text);

/// Reads a number of a domain, from 0 to 232.
///
/// \throws std::invalid_argument "expected a number from 0 to 232, found '...'"
int parseDomain(const std::string& text);

/// Reads the IPv4 address of another machine.
///
/// \throws std::invalid_argument "expected an IPv4 address such as 192.168.1.2, found '...'"
std::string parsePeer(const std::string& text);

}  // namespace KV::tools
