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
  Other,      ///< action units are taken as OpenFace's, blendshapes as MediaPipe's
  OpenFace,   ///< version 2 or older
  PyFeat,     ///< any version
  MediaPipe,  ///< the FaceLandmarker
  LiveLink,   ///< ARKit's blendshapes
  Ros4Hri     ///< messages of hri_msgs
};

/// The output of a front end for one face in one frame, in the units of this library. Every part may be missing.
///
/// Each front end has a structure with its own units and signs: OpenFaceFace, PyFeatFace, MediaPipeFace, LiveLinkFace
/// and RosFace. faceOf() converts such a structure to a Face.
struct SKEIGIOT_API Face
{
  FrontEnd frontEnd = FrontEnd::Other;     ///< decides the tables and the typical rest
  float confidence = 1.f;                  ///< that this is a face and well tracked, in [0, 1]; above counts as 1
  FacePose pose;                           ///< if the gaze is missing, it is computed from the blendshapes of the eyes
  std::optional<ActionUnits> actionUnits;  ///< they make smile and expressions
  std::optional<EmotionScores> emotions;   ///< they make the expressions instead of action units or blendshapes
  std::optional<Blendshapes> blendshapes;  ///< they make smile and expressions where there are no action units
  std::optional<FaceLandmarks> landmarks;  ///< they make the facial points
};

}  // namespace KV::recordings
