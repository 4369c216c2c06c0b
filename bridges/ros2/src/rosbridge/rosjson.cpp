#include "rosbridge/rosjson.hpp"

#include "cdrwriter.hpp"
#include "typedescriptions.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <vector>

namespace KV::ros2
{
namespace
{

using Json = nlohmann::json;

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

// Ids of type_description_interfaces/msg/FieldType.
constexpr int nestedId = 1;
constexpr int int8Id = 2;
constexpr int uint8Id = 3;
constexpr int int32Id = 6;
constexpr int uint32Id = 7;
constexpr int float32Id = 10;
constexpr int float64Id = 11;
constexpr int boolId = 15;
constexpr int stringId = 17;
constexpr int arrayOffset = 48;
constexpr int sequenceOffset = 144;

/// The layouts of a type and of the types of its members are made once.
const std::vector<TypeDescription>& layoutsOf(const std::string& type)
{
  static const std::map<std::string, std::vector<TypeDescription>> layouts = [] {
    std::map<std::string, std::vector<TypeDescription>> all;
    for (const std::string& name : knownTypes())
      all.emplace(name, descriptionsOf(name));
    return all;
  }();
  static const std::vector<TypeDescription> none;
  const auto found = layouts.find(type);
  return found == layouts.end() ? none : found->second;
}

bool hasAllMembers(const Json& message, const TypeDescription& type)
{
  return std::all_of(type.fields.begin(), type.fields.end(),
                     [&message](const FieldDescription& field) { return message.contains(field.name); });
}

/// Writes one message; the path of the member at hand is in errors.
class Translation
{
public:
  CdrBytes of(const Json& message, const std::string& type)
  {
    _message(message, type);
    return _cdr.bytes();
  }

private:
  void _message(const Json& json, const std::string& type)
  {
    const std::vector<TypeDescription>& layouts = layoutsOf(type);
    if (layouts.empty())
      _refuse("the type " + type + " is not known");
    if (!json.is_object())
      _refuseType(json, "an object");
    const auto fitting = std::find_if(layouts.begin(), layouts.end(),
                                      [&json](const TypeDescription& layout) { return hasAllMembers(json, layout); });
    for (const FieldDescription& field : (fitting == layouts.end() ? layouts.front() : *fitting).fields)
    {
      const std::size_t length = _path.size();
      _path += (_path.empty() ? "" : ".") + field.name;
      const auto member = json.find(field.name);
      if (member == json.end())
        _refuse("is missing");
      _member(*member, field);
      _path.resize(length);
    }
  }

  void _member(const Json& json, const FieldDescription& field)
  {
    if (field.typeId < arrayOffset)
      return _value(json, field.typeId, field.nestedType);
    const bool isArray = field.typeId < sequenceOffset;
    if (!json.is_array())
      _refuseType(json, "an array");
    if (isArray && json.size() != field.capacity)
      _refuse("expected " + std::to_string(field.capacity) + " elements, found " + std::to_string(json.size()));
    if (!isArray)
      _cdr.count(json.size());
    const std::size_t length = _path.size();
    for (std::size_t i = 0; i < json.size(); ++i)
    {
      _path += "[" + std::to_string(i) + "]";
      _value(json[i], field.typeId - (isArray ? arrayOffset : sequenceOffset), field.nestedType);
      _path.resize(length);
    }
  }

  void _value(const Json& json, int typeId, const std::string& nestedType)
  {
    switch (typeId)
    {
      case nestedId:
        return _message(json, nestedType);
      case int8Id:
        return _integer<std::int8_t>(json);
      case uint8Id:
        return _integer<std::uint8_t>(json);
      case int32Id:
        return _integer<std::int32_t>(json);
      case uint32Id:
        return _integer<std::uint32_t>(json);
      case float32Id:
        _cdr << _float(json);
        return;
      case float64Id:
        _cdr << _double(json);
        return;
      case boolId:
        if (!json.is_boolean())
          _refuseType(json, "true or false");
        _cdr << json.get<bool>();
        return;
      case stringId:
        if (!json.is_string())
          _refuseType(json, "a text");
        _cdr << json.get_ref<const std::string&>();
        return;
      default:
        _refuse("its type is not read from JSON");
    }
  }

  template <typename Integer>
  void _integer(const Json& json)
  {
    if (!json.is_number_integer())
      _refuseType(json, "an integer");
    const bool isHuge = json.is_number_unsigned() &&
                        json.get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::uint32_t>::max()};
    const std::int64_t number = isHuge ? std::numeric_limits<std::int64_t>::max() : json.get<std::int64_t>();
    if (number < std::int64_t{std::numeric_limits<Integer>::min()} ||
        number > std::int64_t{std::numeric_limits<Integer>::max()})
      _refuse("is out of its range");
    _cdr << static_cast<Integer>(number);
  }

  double _double(const Json& json) const
  {
    if (json.is_null())
      return std::numeric_limits<double>::quiet_NaN();
    if (!json.is_number())
      _refuseType(json, "a number");
    return json.get<double>();
  }

  float _float(const Json& json) const
  {
    constexpr auto greatest = static_cast<double>(std::numeric_limits<float>::max());
    const double number = _double(json);
    if (std::abs(number) > greatest)
      return number > 0. ? std::numeric_limits<float>::infinity() : -std::numeric_limits<float>::infinity();
    return static_cast<float>(number);
  }

  [[noreturn]] void _refuseType(const Json& json, const std::string& expected) const
  {
    _refuse("expected " + expected + ", found " + json.type_name());
  }

  [[noreturn]] void _refuse(const std::string& why) const
  {
    throw RosJsonError(_path.empty() ? why : "its member '" + _path + "': " + why);
  }

  CdrWriter _cdr;
  std::string _path;
};

Json headerOf(std::int64_t stamp)
{
  return {{"stamp", {{"sec", stamp / nanosecondsPerSecond}, {"nanosec", stamp % nanosecondsPerSecond}}},
          {"frame_id", ""}};
}

}  // namespace

CdrBytes cdrOfJson(const Json& message, const std::string& type)
{
  return Translation().of(message, type);
}

Json jsonOf(const EngagementMessage& message)
{
  return {{"header", headerOf(message.stamp)}, {"level", message.level}};
}

Json jsonOf(const ExpressionMessage& message)
{
  return {{"header", headerOf(message.stamp)},
          {"expression", message.expression},
          {"valence", message.valence},
          {"arousal", message.arousal},
          {"confidence", message.confidence}};
}

Json jsonOf(const GazeMessage& message)
{
  return {{"header", headerOf(message.stamp)}, {"sender", message.sender}, {"receiver", message.receiver}};
}

Json jsonOf(const TextMessage& message)
{
  return {{"data", message.text}};
}

Json jsonOf(const DiagnosticMessage& message)
{
  Json values = Json::array();
  for (const auto& [name, value] : message.values)
    values.push_back({{"key", name}, {"value", value}});
  Json status = {{"level", message.level},
                 {"name", message.name},
                 {"message", message.message},
                 {"hardware_id", ""},
                 {"values", values}};
  return {{"header", headerOf(message.stamp)}, {"status", Json::array({status})}};
}

}  // namespace KV::ros2
