#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/recordings/faceposition.hpp>

#include <optional>

namespace KV::recordings
{

/// Where a face is and how it is turned, as the camera sees it.
///
/// All angles are in degrees and count from the optical axis of the camera: a face that is turned parallel to the image
/// plane has 0 / 0 / 0, wherever it is. FaceAdapter makes angles of them that count from the line of sight.
struct SKEIGIOT_API FacePose
{
  std::optional<FacePosition> position;  ///< every number finite, and not all 0; leave it out where it is unknown
  double positionUnitsPerMetre = 1.0;    ///< 1 for metres, 100 for centimetres, 1000 for millimetres
  std::optional<KV::HeadPosture>
      headPosture;               ///< yaw to the person's own right, pitch up, roll to the own right shoulder
  std::optional<KV::Gaze> gaze;  ///< of the eyes in space: yaw to the person's own left, pitch up
};

}  // namespace KV::recordings
