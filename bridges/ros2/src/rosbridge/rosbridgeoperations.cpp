#include "rosbridge/rosbridgeoperations.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <boost/optional/optional.hpp>

#include <stdexcept>

namespace KV::ros2
{
namespace
{

using Json = nlohmann::json;
using Kind = RosbridgeText::Kind;

constexpr std::size_t longestWords = 200;  // of rosbridge, in a warning

RosbridgeText invalid(const std::string& why)
{
  RosbridgeText text;
  text.words = why;
  return text;
}

/// Returns the member if it is a text; empty if not.
std::string textIn(const Json& object, const char* name)
{
  const auto member = object.find(name);
  return member != object.end() && member->is_string() ? member->get<std::string>() : std::string();
}

/// \throws std::invalid_argument for a text that is no JSON.
Json parse(std::string_view text)
{
  if (text.find('\0') != std::string_view::npos)  // which the parser takes for the end
    throw std::invalid_argument("it has a character NUL");
  // The depth is that around a value.
  const auto checkDepth = [](int depth, Json::parse_event_t event, const Json&) {
    const bool begins = event == Json::parse_event_t::array_start || event == Json::parse_event_t::object_start;
    if (begins && depth >= recordings::limits::deepestJson)
      throw std::invalid_argument("it has more than " + std::to_string(recordings::limits::deepestJson) + " levels");
    return true;
  };
  try
  {
    return Json::parse(text.begin(), text.end(), checkDepth);
  }
  catch (const Json::exception&)
  {
    throw std::invalid_argument("it is no JSON");
  }
}

RosbridgeText statusOf(const Json& operation)
{
  RosbridgeText text;
  const std::string level = textIn(operation, "level");
  text.kind = level == "info" || level == "none" ? Kind::Information : Kind::Status;
  text.words = textIn(operation, "msg").substr(0, longestWords);
  if (text.words.empty())
    text.words = "an error without words";
  return text;
}

/// Returns the member if it is a whole number from 0 on.
boost::optional<std::size_t> countIn(const Json& object, const char* name)
{
  const auto member = object.find(name);
  if (member == object.end() || !member->is_number_unsigned())
    return boost::none;
  return member->get<std::size_t>();
}

RosbridgeText fragmentOf(const Json& operation)
{
  const auto id = operation.find("id");
  const auto data = operation.find("data");
  const auto number = countIn(operation, "num");
  const auto total = countIn(operation, "total");
  const bool hasId = id != operation.end() && (id->is_string() || id->is_number_integer());
  if (!hasId || data == operation.end() || !data->is_string() || !number || !total)
    return invalid("it is a fragment without 'id', 'data', 'num' or 'total'");
  RosbridgeText text;
  text.kind = Kind::Fragment;
  text.fragment = {id->dump(), data->get<std::string>(), *number, *total};
  return text;
}

}  // namespace

std::string subscribeOperation(const std::string& topic, const std::string& type)
{
  return Json{{"op", "subscribe"}, {"topic", topic}, {"type", type}}.dump();
}

std::string unsubscribeOperation(const std::string& topic)
{
  return Json{{"op", "unsubscribe"}, {"topic", topic}}.dump();
}

std::string advertiseOperation(const std::string& topic, const std::string& type)
{
  return Json{{"op", "advertise"}, {"topic", topic}, {"type", type}}.dump();
}

std::string advertiseLatchedOperation(const std::string& topic, const std::string& type, int kept)
{
  return Json{{"op", "advertise"}, {"topic", topic}, {"type", type}, {"latch", true}, {"queue_size", kept}}.dump();
}

std::string unadvertiseOperation(const std::string& topic)
{
  return Json{{"op", "unadvertise"}, {"topic", topic}}.dump();
}

std::string publishOperation(const std::string& topic, const Json& message)
{
  return Json{{"op", "publish"}, {"topic", topic}, {"msg", message}}.dump();
}

RosbridgeText readRosbridgeText(std::string_view text)
try
{
  Json operation = parse(text);
  if (!operation.is_object())
    return invalid("it is no object");
  const std::string name = textIn(operation, "op");
  if (name == "status")
    return statusOf(operation);
  if (name == "fragment")
    return fragmentOf(operation);
  if (name != "publish")
    return invalid("its 'op' is none of 'publish', 'fragment' and 'status'");
  RosbridgeText message;
  message.topic = textIn(operation, "topic");
  const auto member = operation.find("msg");
  if (message.topic.empty() || member == operation.end())
    return invalid("it has no 'topic' or no 'msg'");
  message.kind = Kind::Message;
  message.message = std::move(*member);
  return message;
}
catch (const std::invalid_argument& error)
{
  return invalid(error.what());
}

std::vector<std::string> idsIn(const Json& message)
{
  std::vector<std::string> ids;
  if (!message.is_object())
    return ids;
  const auto list = message.find("ids");
  if (list == message.end() || !list->is_array())
    return ids;
  for (const Json& id : *list)
    if (id.is_string())
      ids.push_back(id.get<std::string>());
  return ids;
}

}  // namespace KV::ros2
