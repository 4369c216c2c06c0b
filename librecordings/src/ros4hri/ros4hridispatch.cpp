#include "ros4hri/ros4hridispatch.hpp"

namespace KV::recordings
{

Ros4hriDispatch::Ros4hriDispatch(const ReadingOptions& options, bool isLive, const RobotHead& head)
  : _persons(isLive), _cycles(options, _persons, isLive, head)
{}

void Ros4hriDispatch::advance(RosbagCycles::TimePoint time)
{
  _cycles.advance(time);
}

void Ros4hriDispatch::takePerson(const RosTopic& topic, RosData& data)
{
  switch (topic.kind)
  {
    case RosTopicKind::FaceOfPerson:
      return _persons.addFace(topic.id, readString(data));
    case RosTopicKind::VoiceOfPerson:
      return _persons.addVoice(topic.id, readString(data));
    case RosTopicKind::AliasOfPerson:
      return _persons.setAlias(topic.id, readString(data));
    case RosTopicKind::AnonymousPerson:
      return _persons.setAnonymous(topic.id, readBool(data));
    default:
      return;
  }
}

void Ros4hriDispatch::take(const RosTopic& topic, RosData& data)
{
  switch (topic.kind)
  {
    case RosTopicKind::Transforms:
      return _cycles.transform(readTransforms(data));
    case RosTopicKind::TrackedFaces:
      return _cycles.trackedFaces(readIdsList(data));
    case RosTopicKind::Expression:
      return _cycles.expression(topic.id, readExpression(data));
    case RosTopicKind::ActionUnits:
      return _cycles.actionUnits(topic.id, readActionUnits(data));
    case RosTopicKind::Landmarks:
      return _cycles.landmarks(topic.id, readLandmarks(data));
    case RosTopicKind::SoftBiometrics:
      return _cycles.softBiometrics(topic.id, readSoftBiometrics(data));
    case RosTopicKind::Speaking:
      return _cycles.speaking(topic.id, readBool(data));
    case RosTopicKind::Speech:
      return _takeSpeech(topic.id, data);
    case RosTopicKind::FaceOfPerson:
    case RosTopicKind::VoiceOfPerson:
    case RosTopicKind::AliasOfPerson:
      readString(data);  // takePerson() took its contents
      return;
    case RosTopicKind::AnonymousPerson:
      readBool(data);  // as above
      return;
  }
}

void Ros4hriDispatch::takeJoints(RosData& data)
{
  _cycles.joints(readJointStates(data));
}

// A person whose words are recognised is speaking; with the final text the sentence is over.
void Ros4hriDispatch::_takeSpeech(const std::string& voice, RosData& data)
{
  const RosSpeech speech = readSpeech(data);
  if (!speech.final.empty())
    _cycles.speaking(voice, false);
  else if (!speech.incremental.empty())
    _cycles.speaking(voice, true);
}

void Ros4hriDispatch::finish()
{
  _cycles.finish();
}

boost::optional<Step> Ros4hriDispatch::next()
{
  return _cycles.take();
}

std::vector<std::string> Ros4hriDispatch::warnings() const
{
  switch (_cycles.gaze())
  {
    case RosbagCycles::Gaze::FollowsFace:
      return {"this bag has no eye tracking: gaze equals head direction"};
    case RosbagCycles::Gaze::None:
      return {"this bag has no gaze: attention is unknown for a person who faces the camera"};
    default:
      return {};
  }
}

std::string Ros4hriDispatch::describePersons() const
{
  return _persons.describe();
}

}  // namespace KV::recordings
