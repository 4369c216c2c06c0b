#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace KV::ros2
{

// Each returns an operation of the protocol of rosbridge, as text.

std::string subscribeOperation(const std::string& topic, const std::string& type);
std::string unsubscribeOperation(const std::string& topic);
std::string advertiseOperation(const std::string& topic, const std::string& type);
std::string unadvertiseOperation(const std::string& topic);
std::string publishOperation(const std::string& topic, const nlohmann::json& message);

/// A text that rosbridge sent.
struct RosbridgeText
{
  enum class Kind
  {
    Message,  ///< of a topic
    Status,   ///< rosbridge refused something that we asked for
    Invalid   ///< neither
  };

  Kind kind = Kind::Invalid;
  std::string topic;       ///< of a message
  nlohmann::json message;  ///< of the topic
  std::string words;       ///< of a status; or why the text is invalid
};

/// Reads a text of rosbridge. It may have any content, and at most 16 levels.
RosbridgeText readRosbridgeText(std::string_view text);

/// Returns the ids in a message of the type hri_msgs/msg/IdsList; none if it has another form.
std::vector<std::string> idsIn(const nlohmann::json& message);

}  // namespace KV::ros2
