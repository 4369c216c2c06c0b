#pragma once

#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/facepose.hpp>
#include <skeigiot/recordings/facereadings.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <string>

namespace KV::recordings
{

/// Sets head posture, gaze, distance and head height, as the options want them: relative to where the robot is,
/// mirrored or not.
void setPose(FaceReadings& readings, const FacePose& pose, const ReadingOptions& options, FrontEnd frontEnd);

/// Returns what the options mean for this front end; FormatsOwn is none of it.
LookAt::Kind lookAtOf(const ReadingOptions& options, FrontEnd frontEnd);

/// Tells whether the axis follows the head at rest a little.
bool refinesAxis(const ReadingOptions& options, FrontEnd frontEnd);

/// Says what angles count from.
std::string describeOrigin(const ReadingOptions& options, FrontEnd frontEnd, bool positionIsKnown);

}  // namespace KV::recordings
