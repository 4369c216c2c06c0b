#include <skeigiot/recordings/livelinkface.hpp>

#include "face/blendshapes.hpp"
#include "face/viewingangles.hpp"

#include <cmath>

namespace KV::recordings
{
namespace
{
// Taken for the signs of the eyes. If rotation was not streamed, all three are 0.
std::optional<KV::HeadPosture> headOf(const LiveLinkFace& told)
{
  const double yaw = told.headYaw;
  const double pitch = told.headPitch;
  const double roll = told.headRoll;
  const bool isKnown = std::isfinite(yaw) && std::isfinite(pitch) && std::isfinite(roll);
  if (!isKnown || (yaw == 0.0 && pitch == 0.0 && roll == 0.0))
    return {};
  return KV::HeadPosture(degrees(yaw), -degrees(pitch), degrees(roll));
}

// An eye's yaw > 0 is to the own right, its pitch > 0 down.
std::optional<KV::Gaze> eyesOf(const LiveLinkFace& told)
{
  if (!std::isfinite(told.leftEyeYaw) || !std::isfinite(told.rightEyeYaw) || !std::isfinite(told.leftEyePitch) ||
      !std::isfinite(told.rightEyePitch))
    return {};
  return KV::Gaze(-degrees((told.leftEyeYaw + told.rightEyeYaw) / 2.0),
                  -degrees((told.leftEyePitch + told.rightEyePitch) / 2.0));
}

}  // namespace

Face faceOf(const LiveLinkFace& told)
{
  Face face;
  face.frontEnd = FrontEnd::LiveLink;
  face.blendshapes = told.blendshapes;
  face.pose.headPosture = headOf(told);
  if (const auto eyes = eyesOf(told))
    face.pose.gaze = gazeOf(*eyes, face.pose.headPosture);
  return face;
}

}  // namespace KV::recordings
