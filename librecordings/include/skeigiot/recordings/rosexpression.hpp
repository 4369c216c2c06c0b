#pragma once

#include <skeigiot/api.hpp>

#include <string>

namespace KV::recordings
{

/// hri_msgs/msg/Expression
struct SKEIGIOT_API RosExpression
{
  std::string expression;  ///< one of the names of hri_msgs ("happy"); the valence counts where it is another
  float valence = 0.f;     ///< -1 to 1
  float arousal = 0.f;     ///< -1 to 1; not read
  float confidence = 0.f;  ///< 0 to 1
};

}  // namespace KV::recordings
