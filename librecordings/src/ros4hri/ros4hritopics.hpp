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
  FaceOfPerson,
  VoiceOfPerson,
  Speaking,
  Speech
};

/// A topic that is read: the kind of its messages, and the face, voice or person that they are about.
struct RosTopic
{
  RosTopicKind kind;
  std::string type;  ///< that its messages must have
  std::string id;    ///< of the face, the voice or the person; empty if it is about none
};

/// Returns what the topic with this name tells; nothing if it is not read.
std::optional<RosTopic> rosTopicOf(const std::string& name);

/// Tells whether the topic says who has which face or voice.
bool isAboutPersons(const RosTopic& topic);

/// Says which topics are read, for an error about a source that has none of them.
std::string expectedRosTopics();

/// Says which kinds of topics these are, and which are missing.
std::string describeRosTopics(const std::vector<RosTopic>& topics);

}  // namespace KV::recordings
