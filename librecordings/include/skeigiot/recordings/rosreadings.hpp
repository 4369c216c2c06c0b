#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/facereadings.hpp>
#include <skeigiot/recordings/rosactionunits.hpp>
#include <skeigiot/recordings/rosexpression.hpp>
#include <skeigiot/recordings/roslandmarks.hpp>

/// \file
/// Readings of a face from single messages of ROS4HRI. The pose comes from transforms: RosFace.

namespace KV::recordings
{

/// Returns the expressions by their name, or else by the valence; no reading if neither says anything.
SKEIGIOT_API FaceReadings readingsOf(const RosExpression& expression);

/// Returns smile and expressions. Their confidence is the mean of those of the action units that the adapter's table
/// needs and that are known.
SKEIGIOT_API FaceReadings readingsOf(const RosActionUnits& units, const FaceAdapter& adapter);

/// As above; learns from the action units what this person's face is at rest.
SKEIGIOT_API FaceReadings readingsOf(const RosActionUnits& units, const FaceAdapter& adapter,
                                     ko::SystemClock::time_point time, RestingFace& rest);

/// Returns the facial points in pixels, each with its own confidence. They are not exchanged in a mirror image.
SKEIGIOT_API FaceReadings readingsOf(const RosLandmarks& landmarks);

}  // namespace KV::recordings
