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

}  // namespace

void setPose(FaceReadings& readings, const FacePose& pose, const ReadingOptions& options)
{
  if (pose.position)
  {
    readings.distance = static_cast<float>(pose.position->distance() / pose.positionUnitsPerMetre);
    if (options.cameraHeight)
      readings.headHeight =
          *options.cameraHeight - static_cast<float>(pose.position->down / pose.positionUnitsPerMetre);
  }
  const auto bearing = pose.position && options.lineOfSight ? bearingOf(*pose.position) : Bearing();
  readings.headPosture = asWanted(pose.headPosture, bearing, options.mirrored);
  readings.gaze = asWanted(pose.gaze, bearing, options.mirrored);
}

}  // namespace KV::recordings
