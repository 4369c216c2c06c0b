#include "face/pose.hpp"

#include "face/viewingangles.hpp"

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

// Where whoever looks at the robot looks, seen from the face.
Bearing bearingOfRobot(const FacePose& pose, const ReadingOptions& options, FrontEnd frontEnd)
{
  LookAt::Kind kind = options.lookAt.kind;
  if (kind == LookAt::Kind::FormatsOwn)
    kind = options.lineOfSight && frontEnd != FrontEnd::Ros4Hri ? LookAt::Kind::Camera : LookAt::Kind::Axis;
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

}  // namespace KV::recordings
