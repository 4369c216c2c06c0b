#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

#include <optional>

namespace KV::recordings
{

/// The readings of one face, in the units and signs of PersonObservation, without a time.
struct SKEIGIOT_API FaceReadings
{
  std::optional<KV::HeadPosture> headPosture;    ///< [deg] yaw to the own right, pitch up
  std::optional<KV::Gaze> gaze;                  ///< [deg] yaw to the own left, pitch up
  std::optional<float> distance;                 ///< [m] from the camera
  std::optional<float> headHeight;               ///< [m] above the floor
  std::optional<KV::Smile> smile;                ///< degree in [0, 1]
  std::optional<KV::Expressions> expressions;    ///< one score for each; confidence 0: unknown
  std::optional<KV::FacialPoints> facialPoints;  ///< those of the landmarks that are known

  /// Returns whether there is no reading.
  bool empty() const;

  /// Returns the observation of a detected face with these readings, all made at `time`.
  KV::PersonObservation observedAt(ko::SystemClock::time_point time) const;
};

}  // namespace KV::recordings
