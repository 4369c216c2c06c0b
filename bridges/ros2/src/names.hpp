#pragma once

#include <boost/optional/optional.hpp>

#include <string>

namespace KV::ros2
{

/// Returns the name that a topic of ROS has in DDS: "/tf" is "rt/tf".
std::string ddsTopicOf(const std::string& topic);

/// Returns the name in ROS of a topic of DDS; none if it is no topic of ROS.
boost::optional<std::string> rosTopicOfDds(const std::string& name);

/// Returns the name that a type of ROS has in DDS: "std_msgs/msg/Bool" is "std_msgs::msg::dds_::Bool_".
std::string ddsTypeOf(const std::string& type);

/// Returns the name in ROS of a type of DDS, or the name as it is if it is no type of ROS.
std::string rosTypeOfDds(const std::string& name);

}  // namespace KV::ros2
