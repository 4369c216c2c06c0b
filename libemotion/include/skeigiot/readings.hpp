#pragma once

#include <skeigiot/personobservation.hpp>

namespace KV
{

/// Hands every reading of an observation to `visit(name, member)`, under the name that files call it by.
template <typename Visit>
void forEachReading(Visit&& visit)
{
  using Observation = KV::PersonObservation;
  visit("lookingAtRobot", &Observation::lookingAtRobot);
  visit("headHeight", &Observation::headHeight);
  visit("distance", &Observation::distance);
  visit("gaze", &Observation::gaze);
  visit("smile", &Observation::smile);
  visit("expressions", &Observation::expressions);
  visit("headPosture", &Observation::headPosture);
  visit("gender", &Observation::gender);
  visit("age", &Observation::age);
  visit("faceDetected", &Observation::faceDetected);
  visit("facialPoints", &Observation::facialPoints);
  visit("voiceEmotion", &Observation::voiceEmotion);
  visit("asrEmotion", &Observation::asrEmotion);
  visit("touchEmotion", &Observation::touchEmotion);
  visit("contextEmotion", &Observation::contextEmotion);
  visit("speaking", &Observation::speaking);
  visit("robotHeadPosture", &Observation::robotHeadPosture);
}

}  // namespace KV
