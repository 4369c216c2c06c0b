#include "ros4hri/ros4hritopics.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace KV::recordings
{
namespace
{
struct Pattern
{
  std::string_view prefix;
  std::string_view suffix;  // after the id; empty: there is no id
  RosTopicKind kind;
  std::string_view type;
};

constexpr std::array<Pattern, 13> patterns{{
    {"/tf", "", RosTopicKind::Transforms, "tf2_msgs/msg/TFMessage"},
    {"/tf_static", "", RosTopicKind::Transforms, "tf2_msgs/msg/TFMessage"},
    {"/humans/faces/tracked", "", RosTopicKind::TrackedFaces, "hri_msgs/msg/IdsList"},
    {"/humans/faces/", "/expression", RosTopicKind::Expression, "hri_msgs/msg/Expression"},
    {"/humans/faces/", "/facs", RosTopicKind::ActionUnits, "hri_msgs/msg/FacialActionUnits"},
    {"/humans/faces/", "/landmarks", RosTopicKind::Landmarks, "hri_msgs/msg/FacialLandmarks"},
    {"/humans/faces/", "/softbiometrics", RosTopicKind::SoftBiometrics, "hri_msgs/msg/SoftBiometrics"},
    {"/humans/persons/", "/face_id", RosTopicKind::FaceOfPerson, "std_msgs/msg/String"},
    {"/humans/persons/", "/voice_id", RosTopicKind::VoiceOfPerson, "std_msgs/msg/String"},
    {"/humans/persons/", "/alias", RosTopicKind::AliasOfPerson, "std_msgs/msg/String"},
    {"/humans/persons/", "/anonymous", RosTopicKind::AnonymousPerson, "std_msgs/msg/Bool"},
    {"/humans/voices/", "/is_speaking", RosTopicKind::Speaking, "std_msgs/msg/Bool"},
    {"/humans/voices/", "/speech", RosTopicKind::Speech, "hri_msgs/msg/LiveSpeech"},
}};

std::optional<std::string> idIn(std::string_view name, const Pattern& pattern)
{
  if (pattern.suffix.empty())
    return name == pattern.prefix ? std::make_optional(std::string()) : std::nullopt;
  const std::size_t around = pattern.prefix.size() + pattern.suffix.size();
  if (name.size() <= around || name.substr(0, pattern.prefix.size()) != pattern.prefix ||
      name.substr(name.size() - pattern.suffix.size()) != pattern.suffix)
    return {};
  const std::string_view id = name.substr(pattern.prefix.size(), name.size() - around);
  return std::all_of(id.begin(), id.end(), mayBeInRosId) ? std::make_optional(std::string(id)) : std::nullopt;
}

}  // namespace

bool mayBeInRosId(char character)
{
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '_';
}

std::optional<RosTopic> rosTopicOf(const std::string& name)
{
  for (const Pattern& pattern : patterns)
    if (const auto id = idIn(name, pattern))
      return RosTopic{pattern.kind, std::string(pattern.type), *id};
  return {};
}

std::vector<std::string> rosTopicPatterns()
{
  std::vector<std::string> names;
  names.reserve(patterns.size());
  for (const Pattern& pattern : patterns)
    names.push_back(std::string(pattern.prefix) + (pattern.suffix.empty() ? "" : "*") + std::string(pattern.suffix));
  return names;
}

std::vector<std::string> rosIdLists()
{
  return {"/humans/faces/tracked", "/humans/persons/tracked", "/humans/persons/known", "/humans/voices/tracked"};
}

bool isAboutPersons(const RosTopic& topic)
{
  switch (topic.kind)
  {
    case RosTopicKind::FaceOfPerson:
    case RosTopicKind::VoiceOfPerson:
    case RosTopicKind::AliasOfPerson:
    case RosTopicKind::AnonymousPerson:
      return true;
    default:
      return false;
  }
}

std::string expectedRosTopics()
{
  return "expected /tf or topics of ROS4HRI below /humans";
}

std::string describeRosTopics(const std::vector<RosTopic>& topics)
{
  const auto has = [&topics](RosTopicKind kind) {
    return std::any_of(topics.begin(), topics.end(), [kind](const RosTopic& topic) { return topic.kind == kind; });
  };
  return describeMissing({{has(RosTopicKind::Transforms), "frames"},
                          {has(RosTopicKind::TrackedFaces), "tracked faces"},
                          {has(RosTopicKind::Expression), "expressions"},
                          {has(RosTopicKind::ActionUnits), "action units"},
                          {has(RosTopicKind::Landmarks), "landmarks"},
                          {has(RosTopicKind::Speaking) || has(RosTopicKind::Speech), "speech"}});
}

}  // namespace KV::recordings
