#pragma once

#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/facepose.hpp>
#include <skeigiot/recordings/facereadings.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <string>

namespace KV::recordings
{

/// Sets head posture, gaze, distance and head height by the options: relative to the robot's position, mirrored or
/// not.
void setPose(FaceReadings& readings, const FacePose& pose, const ReadingOptions& options, FrontEnd frontEnd);

/// Returns the convention of angles that the options mean for this front end; never FormatsOwn.
LookAt::Kind lookAtOf(const ReadingOptions& options, FrontEnd frontEnd);

/// Returns whether the axis follows the head at rest a little.
bool refinesAxis(const ReadingOptions& options, FrontEnd frontEnd);

/// Describes the direction from which angles count.
std::string describeOrigin(const ReadingOptions& options, FrontEnd frontEnd, bool positionIsKnown);

}  // namespace KV::recordings
