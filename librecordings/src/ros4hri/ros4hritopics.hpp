#pragma once

#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The kind of a topic's messages.
enum class RosTopicKind
{
  Transforms,
  TrackedFaces,
  Expression,
  ActionUnits,
  Landmarks,
  SoftBiometrics,
  FaceOfPerson,
  VoiceOfPerson,
  AliasOfPerson,
  AnonymousPerson,
  Speaking,
  Speech
};

/// A topic that is read: the kind of its messages, and the face, voice or person to whom they belong.
struct RosTopic
{
  RosTopicKind kind;
  std::string type;  ///< that its messages must have
  std::string id;    ///< of the face, the voice or the person; empty if the topic is about nobody
};

/// Returns whether ROS allows the character in an id, which is a part of the name of a topic: ASCII letters, digits,
/// "_".
bool mayBeInRosId(char character);

/// Returns the kind and subject of the topic with this name; nothing if it is not read.
std::optional<RosTopic> rosTopicOf(const std::string& name);

/// Returns the names of all topics that are read, with "*" for the id.
std::vector<std::string> rosTopicPatterns();

/// Returns the names of the topics with lists of ids.
std::vector<std::string> rosIdLists();

/// Returns whether the topic says who a person is: which face, which voice, which other id.
bool isAboutPersons(const RosTopic& topic);

/// Lists the topics that are read, for an error about a source without any of them.
std::string expectedRosTopics();

/// Lists the kinds of these topics, and the missing ones.
std::string describeRosTopics(const std::vector<RosTopic>& topics);

}  // namespace KV::recordings
