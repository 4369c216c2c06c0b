#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// Where the angles of the robot's own head come from, in messages of its nodes. Without either, they are unknown.
struct SKEIGIOT_API RobotHead
{
  /// The names of the joint that turns the head and of the one that nods, in sensor_msgs/msg/JointState. The second one
  /// may be missing, and either may be empty.
  std::vector<std::string> joints;

  /// The frame of the robot's body, such as "base_link": the angles are those of the camera in it.
  std::string base;
};

}  // namespace KV::recordings
