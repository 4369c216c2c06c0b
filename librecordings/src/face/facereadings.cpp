#include "face/facereadings.hpp"

namespace KV::recordings
{
namespace
{
constexpr double degreesPerRadian = 57.295779513082320877;

template <typename Angles>
std::optional<Angles> asWanted(const std::optional<Angles>& angles, const Bearing& bearing, bool mirrored)
{
  if (!angles)
    return {};
  const Angles relative = relativeToLineOfSight(*angles, bearing);
  return mirrored ? unmirrored(relative) : relative;
}

}  // namespace

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

void setPose(FaceReadings& readings, const FacePose& pose, const ReadingOptions& options)
{
  if (pose.position)
  {
    readings.distance = static_cast<float>(pose.position->distance() / pose.positionUnitsPerMetre);
    if (options.cameraHeight)
      readings.headHeight =
          *options.cameraHeight - static_cast<float>(pose.position->down / pose.positionUnitsPerMetre);
  }
  const auto bearing = pose.position && options.lineOfSight ? bearingOf(*pose.position) : Bearing();
  readings.headPosture = asWanted(pose.headPosture, bearing, options.mirrored);
  readings.gaze = asWanted(pose.gaze, bearing, options.mirrored);
}

float degrees(double radians)
{
  return static_cast<float>(radians * degreesPerRadian);
}

}  // namespace KV::recordings
