#include <skeigiot/recordings/facereadings.hpp>

namespace KV::recordings
{

bool FaceReadings::empty() const
{
  return !headPosture && !gaze && !distance && !headHeight && !smile && !expressions && !facialPoints;
}

KV::PersonObservation FaceReadings::observedAt(ko::SystemClock::time_point time) const
{
  KV::PersonObservation observation;
  const auto put = [time](const auto& reading, auto& target) {
    if (reading)
      target.emplace(time, *reading);
  };
  observation.faceDetected.emplace(time, true);
  put(headPosture, observation.headPosture);
  put(gaze, observation.gaze);
  put(distance, observation.distance);
  put(headHeight, observation.headHeight);
  put(smile, observation.smile);
  put(expressions, observation.expressions);
  put(facialPoints, observation.facialPoints);
  return observation;
}

}  // namespace KV::recordings
