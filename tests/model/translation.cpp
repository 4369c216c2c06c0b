#include "model/translation.hpp"

#include <cstddef>

namespace model
{

namespace
{

KV::ValueConfidence<float> toLibrary(const Scored& scored)
{
  return {scored.value, scored.confidence};
}

KV::Smile toSmile(const Scored& smile)
{
  return {smile.value, smile.confidence};
}

KV::Gaze toGaze(const Gaze& gaze)
{
  return {gaze.yaw, gaze.pitch};
}

KV::HeadPosture toHeadPosture(const HeadPosture& posture)
{
  return {posture.yaw, posture.pitch, posture.roll};
}

KV::RobotHeadPosture toRobotHeadPosture(const RobotHeadPosture& posture)
{
  return {posture.yaw, posture.pitch};
}

template <typename Emotions>
Emotions toEmotions(const Expressions& expressions)
{
  Emotions emotions;
  KV::Expressions& scores = emotions;
  scores.calm = toLibrary(expressions.calm);
  scores.anger = toLibrary(expressions.anger);
  scores.joy = toLibrary(expressions.joy);
  scores.sorrow = toLibrary(expressions.sorrow);
  scores.laughter = toLibrary(expressions.laughter);
  scores.excitement = toLibrary(expressions.excitement);
  scores.surprise = toLibrary(expressions.surprise);
  return emotions;
}

KV::FacialPoints toFacialPoints(const FacialPoints& points)
{
  KV::FacialPoints result;
  for (std::size_t i = 0; i < points.confidences.size(); ++i)
    result.setFacialPoint(static_cast<KV::PointDescription>(i), {{0.f, 0.f}, points.confidences[i]});
  return result;
}

KV::ContextEmotion toContextEmotion(const ContextEmotion& emotion)
{
  return {emotion.valence, emotion.lifetime};
}

template <typename T>
KV::ValueConfidence<T> toCertain(const T& value)
{
  return {value, 1.f};
}

template <typename T>
T unchanged(const T& value)
{
  return value;
}

template <typename T, typename Library, typename Translate>
void translate(const std::optional<Reading<T>>& reading, boost::optional<KV::Timestamped<Library>>& result,
               Translate toValue)
{
  if (reading)
    result = KV::Timestamped<Library>(toTimePoint(reading->time), toValue(reading->value));
}

}  // namespace

ko::SystemClock::time_point toTimePoint(Nanoseconds time)
{
  return ko::SystemClock::time_point(boost::chrono::nanoseconds(time));
}

Nanoseconds toNanoseconds(ko::SystemClock::time_point time)
{
  return time.time_since_epoch().count();
}

KV::PersonObservation toLibrary(const Observation& observation)
{
  KV::PersonObservation result;
  translate(observation.lookingAtRobot, result.lookingAtRobot, unchanged<bool>);
  translate(observation.headHeight, result.headHeight, unchanged<float>);
  translate(observation.distance, result.distance, unchanged<float>);
  translate(observation.gaze, result.gaze, toGaze);
  translate(observation.smile, result.smile, toSmile);
  translate(observation.expressions, result.expressions, toEmotions<KV::Expressions>);
  translate(observation.headPosture, result.headPosture, toHeadPosture);
  translate(observation.gender, result.gender, toCertain<bool>);
  translate(observation.age, result.age, toCertain<unsigned int>);
  translate(observation.faceDetected, result.faceDetected, unchanged<bool>);
  translate(observation.facialPoints, result.facialPoints, toFacialPoints);
  translate(observation.voiceEmotion, result.voiceEmotion, toEmotions<KV::VoiceEmotion>);
  translate(observation.asrEmotion, result.asrEmotion, unchanged<float>);
  translate(observation.touchEmotion, result.touchEmotion, unchanged<int>);
  translate(observation.contextEmotion, result.contextEmotion, toContextEmotion);
  translate(observation.speaking, result.speaking, unchanged<bool>);
  translate(observation.robotHeadPosture, result.robotHeadPosture, toRobotHeadPosture);
  return result;
}

}  // namespace model
