#include <skeigiot/recordings/rosface.hpp>

#include "ros4hri/rosangles.hpp"

#include <cmath>
#include <stdexcept>

namespace KV::recordings
{

Face faceOf(const RosFace& detected)
{
  const auto& [x, y, z] = detected.translation;
  const auto rotation = Rotation::fromQuaternion(detected.rotation);
  if (!rotation || !std::isfinite(x + y + z))
    throw std::invalid_argument("The pose of the face has a number that is not finite, or its rotation is 0.");
  Face face;
  face.frontEnd = FrontEnd::Ros4Hri;
  face.pose = poseOf({*rotation, detected.translation});
  if (!detected.gazeRotation)
    return face;
  const auto gaze = Rotation::fromQuaternion(*detected.gazeRotation);
  if (!gaze)
    throw std::invalid_argument("The rotation of the gaze has a number that is not finite, or is 0.");
  face.pose.gaze = gazeOf({*gaze, {}});
  return face;
}

}  // namespace KV::recordings
