#pragma once

#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/facepose.hpp>
#include <skeigiot/recordings/facereadings.hpp>
#include <skeigiot/recordings/recording.hpp>

namespace KV::recordings
{

/// Sets head posture, gaze, distance and head height, as the options want them: relative to where the robot is,
/// mirrored or not.
void setPose(FaceReadings& readings, const FacePose& pose, const ReadingOptions& options, FrontEnd frontEnd);

}  // namespace KV::recordings
