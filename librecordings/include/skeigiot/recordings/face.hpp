#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/actionunits.hpp>
#include <skeigiot/recordings/blendshapes.hpp>
#include <skeigiot/recordings/emotionscores.hpp>
#include <skeigiot/recordings/facelandmarks.hpp>
#include <skeigiot/recordings/facepose.hpp>

#include <optional>

namespace KV::recordings
{

/// Which front end a face comes from: their scores mean different things, and their faces rest differently.
enum class FrontEnd
{
  Other,  ///< action units are taken as OpenFace's, blendshapes as MediaPipe's
  OpenFace,
  PyFeat,
  MediaPipe,
  LiveLink,  ///< ARKit's blendshapes
  Ros4Hri
};

/// What a front end tells of one face in one frame, in the units of this library. Every part may be missing.
///
/// For the units and signs of a front end itself there are structures of their own, and faceOf() makes a Face of them:
/// OpenFaceFace, PyFeatFace, MediaPipeFace, LiveLinkFace, RosFace.
struct SKEIGIOT_API Face
{
  FrontEnd frontEnd = FrontEnd::Other;
  float confidence = 1.f;                  ///< that this is a face and well tracked, in [0, 1]; above counts as 1
  FacePose pose;                           ///< without a gaze, the blendshapes of the eyes tell it where they are known
  std::optional<ActionUnits> actionUnits;  ///< they make smile and expressions
  std::optional<EmotionScores> emotions;   ///< they make the expressions instead of action units or blendshapes
  std::optional<Blendshapes> blendshapes;  ///< they make smile and expressions where there are no action units
  std::optional<FaceLandmarks> landmarks;  ///< they make the facial points
};

}  // namespace KV::recordings
