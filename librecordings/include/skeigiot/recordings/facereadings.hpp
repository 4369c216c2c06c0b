#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

#include <optional>

namespace KV::recordings
{

/// What is read of one face, in the units and signs of PersonObservation, without a time.
struct SKEIGIOT_API FaceReadings
{
  std::optional<KV::HeadPosture> headPosture;
  std::optional<KV::Gaze> gaze;
  std::optional<float> distance;    ///< [m] from the camera
  std::optional<float> headHeight;  ///< [m] above the floor
  std::optional<KV::Smile> smile;
  std::optional<KV::Expressions> expressions;
  std::optional<KV::FacialPoints> facialPoints;

  /// Tells whether there is no reading.
  bool empty() const;

  /// Returns the observation of a detected face with these readings, all made at `time`.
  KV::PersonObservation observedAt(ko::SystemClock::time_point time) const;
};

}  // namespace KV::recordings
