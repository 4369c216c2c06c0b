#pragma once

#include "face/viewingangles.hpp"

#include <skeigiot/personobservation.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <optional>

namespace KV::recordings
{

/// What a face analyser tells of one face, in the units and signs of the library.
struct FaceReadings
{
  std::optional<KV::HeadPosture> headPosture;
  std::optional<KV::Gaze> gaze;
  std::optional<float> distance;
  std::optional<float> headHeight;
  std::optional<KV::Smile> smile;
  std::optional<KV::Expressions> expressions;
  std::optional<KV::FacialPoints> facialPoints;

  bool empty() const;

  /// Returns the observation of a detected face with these readings, all made at `time`.
  KV::PersonObservation observedAt(ko::SystemClock::time_point time) const;
};

/// Where a face is and how it is turned, as the camera sees it: angles count from the optical axis.
struct FacePose
{
  std::optional<FacePosition> position;
  double positionUnitsPerMetre = 1.0;
  std::optional<KV::HeadPosture> headPosture;
  std::optional<KV::Gaze> gaze;
};

/// Sets head posture, gaze, distance and head height, as the options want them: relative to the line of sight or not,
/// mirrored or not.
void setPose(FaceReadings& readings, const FacePose& pose, const ReadingOptions& options);

/// Returns the angle, given in radians, in degrees.
float degrees(double radians);

}  // namespace KV::recordings
