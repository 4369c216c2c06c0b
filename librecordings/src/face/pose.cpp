#include "face/pose.hpp"

#include "face/viewingangles.hpp"

#include <skeigiot/recordings/description.hpp>

#include <optional>

namespace KV::recordings
{
namespace
{
template <typename Angles>
std::optional<Angles> asWanted(const std::optional<Angles>& angles, const Bearing& bearing, bool mirrored)
{
  if (!angles)
    return {};
  const Angles relative = relativeToLineOfSight(*angles, bearing);
  return mirrored ? unmirrored(relative) : relative;
}

// The direction of a look at the robot, seen from the face.
Bearing bearingOfRobot(const FacePose& pose, const ReadingOptions& options, FrontEnd frontEnd)
{
  const LookAt::Kind kind = lookAtOf(options, frontEnd);
  if (!pose.position || kind == LookAt::Kind::Axis || kind == LookAt::Kind::Learned)
    return {};
  if (kind == LookAt::Kind::Camera)
    return bearingOf(*pose.position);
  const FacePosition& robot = options.lookAt.point;
  const double units = pose.positionUnitsPerMetre;
  return bearingOf({pose.position->right - robot.right * units, pose.position->down - robot.down * units,
                    pose.position->forward - robot.forward * units});
}

}  // namespace

void setPose(FaceReadings& readings, const FacePose& pose, const ReadingOptions& options, FrontEnd frontEnd)
{
  if (pose.position)
  {
    readings.distance = static_cast<float>(pose.position->distance() / pose.positionUnitsPerMetre);
    if (options.cameraHeight)
      readings.headHeight =
          *options.cameraHeight - static_cast<float>(pose.position->down / pose.positionUnitsPerMetre);
  }
  const auto bearing = bearingOfRobot(pose, options, frontEnd);
  readings.headPosture = asWanted(pose.headPosture, bearing, options.mirrored);
  readings.gaze = asWanted(pose.gaze, bearing, options.mirrored);
}

LookAt::Kind lookAtOf(const ReadingOptions& options, FrontEnd frontEnd)
{
  if (options.lookAt.kind != LookAt::Kind::FormatsOwn)
    return options.lookAt.kind;
  return options.lineOfSight && frontEnd != FrontEnd::Ros4Hri ? LookAt::Kind::Camera : LookAt::Kind::Axis;
}

bool refinesAxis(const ReadingOptions& options, FrontEnd frontEnd)
{
  return options.lookAt.kind == LookAt::Kind::FormatsOwn && frontEnd == FrontEnd::Ros4Hri && options.lineOfSight &&
         options.rest.kind == Rest::Kind::Learned;
}

std::string describeOrigin(const ReadingOptions& options, FrontEnd frontEnd, bool positionIsKnown)
{
  const LookAt::Kind kind = lookAtOf(options, frontEnd);
  if (kind == LookAt::Kind::Learned)
    return "counted from where the head rests";
  if (refinesAxis(options, frontEnd))
    return "counted from the optical axis of the camera, moved by up to 5 degrees towards where the head rests";
  if (!positionIsKnown || kind == LookAt::Kind::Axis)
    return "counted from the optical axis of the camera";
  if (kind == LookAt::Kind::Camera)
    return "counted from the line of sight to the camera";
  const FacePosition& robot = options.lookAt.point;
  return "counted from the line of sight to the robot, from the camera " +
         shortNumber(static_cast<float>(robot.right)) + " m to the right, " +
         shortNumber(static_cast<float>(robot.down)) + " m down, " + shortNumber(static_cast<float>(robot.forward)) +
         " m forward";
}

}  // namespace KV::recordings
