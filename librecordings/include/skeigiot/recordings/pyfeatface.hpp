#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/pyfeatunits.hpp>

#include <array>
#include <optional>

namespace KV::recordings
{

/// One face in the form of py-feat. A group with a number that is not finite counts as missing.
struct SKEIGIOT_API PyFeatFace
{
  float confidence = 1.f;                         ///< FaceScore
  PyFeatUnits units;                              ///< of the angles below
  std::optional<std::array<double, 3>> rotation;  ///< Pitch, Roll to the own right shoulder, Yaw to the own right
  std::optional<std::array<double, 2>> gaze;      ///< gaze_pitch, gaze_yaw
  std::optional<ActionUnits> actionUnits;         ///< AU01 to AU43: shares, whatever their full scale says
  std::optional<EmotionScores> emotions;          ///< anger to neutral: shares in [0, 1]
  std::optional<FaceLandmarks> landmarks;         ///< [pixels] x_0, y_0 to x_67, y_67
};

/// Returns the face in the units and signs of the library.
SKEIGIOT_API Face faceOf(const PyFeatFace& detected);

}  // namespace KV::recordings
