#pragma once

#include <skeigiot/personobservation.hpp>

#include <boost/none.hpp>

#include <cstddef>

namespace KV
{

/// Calls `f` with each field of the observation, whether there is a reading in it or not.
template <typename Observation, typename F>
void forEachReading(Observation& observation, F f)
{
  f(observation.lookingAtRobot);
  f(observation.headHeight);
  f(observation.distance);
  f(observation.gaze);
  f(observation.smile);
  f(observation.expressions);
  f(observation.headPosture);
  f(observation.gender);
  f(observation.age);
  f(observation.faceDetected);
  f(observation.facialPoints);
  f(observation.voiceEmotion);
  f(observation.asrEmotion);
  f(observation.touchEmotion);
  f(observation.contextEmotion);
  f(observation.speaking);
  f(observation.robotHeadPosture);
}

/// Takes the readings for which `isUnwanted` is true out of the observation, and returns how many they were.
template <typename Predicate>
std::size_t leaveOut(PersonObservation& observation, Predicate isUnwanted)
{
  std::size_t count = 0;
  forEachReading(observation, [&](auto& reading) {
    if (!reading || !isUnwanted(*reading))  // GCOV_EXCL_BR_LINE
      return;
    reading = boost::none;
    ++count;
  });
  return count;
}

}  // namespace KV
