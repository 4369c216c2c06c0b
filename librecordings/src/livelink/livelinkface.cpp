#include <skeigiot/recordings/livelinkface.hpp>

#include "face/blendshapes.hpp"
#include "face/viewingangles.hpp"

#include <cmath>

namespace KV::recordings
{
namespace
{
// Assumed as the signs of the eyes. If rotation was not streamed, all three are 0.
std::optional<KV::HeadPosture> headOf(const LiveLinkFace& detected)
{
  const double yaw = detected.headYaw;
  const double pitch = detected.headPitch;
  const double roll = detected.headRoll;
  const bool isKnown = std::isfinite(yaw) && std::isfinite(pitch) && std::isfinite(roll);
  if (!isKnown || (yaw == 0.0 && pitch == 0.0 && roll == 0.0))
    return {};
  return KV::HeadPosture(degrees(yaw), -degrees(pitch), degrees(roll));
}

// An eye's yaw > 0 is to the person's own right, its pitch > 0 down.
std::optional<KV::Gaze> eyesOf(const LiveLinkFace& detected)
{
  if (!std::isfinite(detected.leftEyeYaw) || !std::isfinite(detected.rightEyeYaw) ||
      !std::isfinite(detected.leftEyePitch) || !std::isfinite(detected.rightEyePitch))
    return {};
  return KV::Gaze(-degrees((detected.leftEyeYaw + detected.rightEyeYaw) / 2.0),
                  -degrees((detected.leftEyePitch + detected.rightEyePitch) / 2.0));
}

}  // namespace

Face faceOf(const LiveLinkFace& detected)
{
  Face face;
  face.frontEnd = FrontEnd::LiveLink;
  face.blendshapes = detected.blendshapes;
  face.pose.headPosture = headOf(detected);
  if (const auto eyes = eyesOf(detected))
    face.pose.gaze = gazeOf(*eyes, face.pose.headPosture);
  return face;
}

}  // namespace KV::recordings
