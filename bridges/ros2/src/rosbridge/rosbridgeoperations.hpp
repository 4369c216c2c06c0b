#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace KV::ros2
{

// Each returns an operation of the protocol of rosbridge, as text.

std::string subscribeOperation(const std::string& topic, const std::string& type);
std::string unsubscribeOperation(const std::string& topic);
std::string advertiseOperation(const std::string& topic, const std::string& type);
/// As above. Readers that come later get the last messages, as many as `kept`.
std::string advertiseLatchedOperation(const std::string& topic, const std::string& type, int kept);
std::string unadvertiseOperation(const std::string& topic);
std::string publishOperation(const std::string& topic, const nlohmann::json& message);

/// A part of a text that rosbridge sent in several parts.
struct RosbridgeFragment
{
  std::string id;          ///< of the text: text or number, as JSON
  std::string data;        ///< the part
  std::size_t number = 0;  ///< of the part, from 0 on
  std::size_t total = 0;   ///< of parts
};

/// A text that rosbridge sent.
struct RosbridgeText
{
  enum class Kind
  {
    Message,      ///< of a topic
    Fragment,     ///< a part of another text
    Status,       ///< an error or a warning of rosbridge
    Information,  ///< rosbridge says how it is, which is no warning
    Invalid       ///< none of these
  };

  Kind kind = Kind::Invalid;
  std::string topic;       ///< of a message
  nlohmann::json message;  ///< of the topic
  RosbridgeFragment fragment;
  std::string words;  ///< of a status; or why the text is invalid
};

/// Reads a text of rosbridge. It may have any content, and at most 16 levels.
RosbridgeText readRosbridgeText(std::string_view text);

/// Returns the ids in a message of the type hri_msgs/msg/IdsList; none if it has another form.
std::vector<std::string> idsIn(const nlohmann::json& message);

}  // namespace KV::ros2
