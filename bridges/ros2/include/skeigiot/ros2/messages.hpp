#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace KV::ros2
{

/// hri_msgs/msg/EngagementLevel
struct EngagementMessage
{
  static constexpr const char* type = "hri_msgs/msg/EngagementLevel";  ///< its name in ROS

  std::int64_t stamp = 0;  ///< [ns] since 1970
  std::uint8_t level = 0;  ///< 0 unknown, 1 disengaged, 2 engaging, 3 engaged, 4 disengaging
};

/// hri_msgs/msg/Expression
struct ExpressionMessage
{
  static constexpr const char* type = "hri_msgs/msg/Expression";  ///< its name in ROS

  std::int64_t stamp = 0;  ///< [ns] since 1970
  std::string expression;  ///< one of the names of hri_msgs
  float valence = 0.f;     ///< in [-1, 1]
  float arousal = 0.f;     ///< in [-1, 1]
  float confidence = 0.f;  ///< in [0, 1]
};

/// hri_msgs/msg/Gaze
struct GazeMessage
{
  static constexpr const char* type = "hri_msgs/msg/Gaze";  ///< its name in ROS

  std::int64_t stamp = 0;  ///< [ns] since 1970
  std::string sender;      ///< id of the person who looks
  std::string receiver;    ///< id of the person who is looked at; empty: the robot
};

/// diagnostic_msgs/msg/DiagnosticArray with one status
struct DiagnosticMessage
{
  static constexpr const char* type = "diagnostic_msgs/msg/DiagnosticArray";  ///< its name in ROS

  std::int64_t stamp = 0;                                   ///< [ns] since 1970
  std::uint8_t level = 0;                                   ///< 0 all is well, 1 warning, 2 error, 3 nothing comes in
  std::string name;                                         ///< of the part that has the status
  std::string message;                                      ///< the status in words
  std::vector<std::pair<std::string, std::string>> values;  ///< names and values
};

/// std_msgs/msg/String
struct TextMessage
{
  static constexpr const char* type = "std_msgs/msg/String";  ///< its name in ROS

  std::string text;
};

}  // namespace KV::ros2
