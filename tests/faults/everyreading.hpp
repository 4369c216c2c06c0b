#pragma once

#include "support/clocktest.hpp"

#include <skeigiot/personobservation.hpp>

#include <string>
#include <vector>

/// \file
/// Observations for faults: one for each kind of reading, and one of all of them.

namespace faults
{

struct ObservationCase
{
  std::string name;
  void (*fill)(KV::PersonObservation& observation, ko::SystemClock::time_point time);
};

inline KV::Expressions someExpressions()
{
  KV::Expressions expressions;
  expressions.joy = {0.7f, 0.9f};
  expressions.calm = {0.2f, 0.9f};
  return expressions;
}

inline const std::vector<ObservationCase>& singleReadings()
{
  using Observation = KV::PersonObservation;
  using Time = ko::SystemClock::time_point;
  static const std::vector<ObservationCase> cases = {
      {"LookingAtRobot", [](Observation& o, Time t) { o.lookingAtRobot.emplace(t, true); }},
      {"HeadHeight", [](Observation& o, Time t) { o.headHeight.emplace(t, 1.6f); }},
      {"Distance", [](Observation& o, Time t) { o.distance.emplace(t, 1.1f); }},
      {"Gaze", [](Observation& o, Time t) { o.gaze.emplace(t, KV::Gaze(5.f, -3.f)); }},
      {"Smile", [](Observation& o, Time t) { o.smile.emplace(t, KV::Smile(0.8f, 0.9f)); }},
      {"Expressions", [](Observation& o, Time t) { o.expressions.emplace(t, someExpressions()); }},
      {"HeadPosture", [](Observation& o, Time t) { o.headPosture.emplace(t, KV::HeadPosture(4.f, 8.f, 1.f)); }},
      {"Gender", [](Observation& o, Time t) { o.gender.emplace(t, KV::ValueConfidence<bool>(true, 0.7f)); }},
      {"Age", [](Observation& o, Time t) { o.age.emplace(t, KV::ValueConfidence<unsigned int>(33U, 0.5f)); }},
      {"FaceDetected", [](Observation& o, Time t) { o.faceDetected.emplace(t, true); }},
      {"FacialPoints", [](Observation& o, Time t) { o.facialPoints.emplace(t, KV::FacialPoints()); }},
      {"VoiceEmotion",
       [](Observation& o, Time t) {
         o.voiceEmotion.emplace(t, KV::VoiceEmotion({0.1f, 1.f}, {0.f, 1.f}, {0.8f, 1.f}, {0.f, 1.f}, {}, {}));
       }},
      {"VoiceEmotionTooOldForSilence",  // causes a warning
       [](Observation& o, Time t) {
         o.voiceEmotion.emplace(t - support::seconds(4), KV::VoiceEmotion({}, {}, {0.8f, 1.f}, {}, {}, {}));
       }},
      {"AsrEmotion", [](Observation& o, Time t) { o.asrEmotion.emplace(t, 0.5f); }},
      {"TouchEmotion", [](Observation& o, Time t) { o.touchEmotion.emplace(t, 1); }},
      {"ContextEmotion", [](Observation& o, Time t) { o.contextEmotion.emplace(t, KV::ContextEmotion(1, 5.f)); }},
      {"Speaking", [](Observation& o, Time t) { o.speaking.emplace(t, true); }},
      {"RobotHeadPosture",
       [](Observation& o, Time t) { o.robotHeadPosture.emplace(t, KV::RobotHeadPosture(3.f, 1.f)); }}};
  return cases;
}

/// The single readings, and all of them at once.
inline std::vector<ObservationCase> observationCases()
{
  std::vector<ObservationCase> cases = singleReadings();
  cases.push_back({"Everything", [](KV::PersonObservation& observation, ko::SystemClock::time_point time) {
                     for (const ObservationCase& reading : singleReadings())
                       reading.fill(observation, time);
                   }});
  return cases;
}

/// Returns the observation of `reading` at `time`.
inline KV::PersonObservation observed(const ObservationCase& reading, ko::SystemClock::time_point time)
{
  KV::PersonObservation observation;
  reading.fill(observation, time);
  return observation;
}

}  // namespace faults
