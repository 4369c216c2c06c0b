#include <skeigiot/recordings/pyfeatface.hpp>

#include "face/viewingangles.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace KV::recordings
{
namespace
{
constexpr float fullShare = 1.f;  // py-feat gives shares

template <std::size_t Count>
bool areKnown(const std::optional<std::array<double, Count>>& angles)
{
  return angles && std::all_of(angles->begin(), angles->end(), [](double angle) { return std::isfinite(angle); });
}

float inDegrees(double angle, bool isInDegrees)
{
  return isInDegrees ? static_cast<float>(angle) : degrees(angle);
}

float signedBy(bool isPositive, float angle)
{
  return isPositive ? angle : -angle;
}

std::optional<KV::HeadPosture> headPostureOf(const PyFeatFace& detected)
{
  if (!areKnown(detected.rotation))
    return {};
  const auto& [pitch, roll, yaw] = *detected.rotation;
  const bool isInDegrees = detected.units.rotationInDegrees;
  return KV::HeadPosture(inDegrees(yaw, isInDegrees), signedBy(detected.units.pitchIsUp, inDegrees(pitch, isInDegrees)),
                         inDegrees(roll, isInDegrees));
}

std::optional<KV::Gaze> gazeOf(const PyFeatFace& detected)
{
  if (!areKnown(detected.gaze))
    return {};
  const auto& [pitch, yaw] = *detected.gaze;
  const bool isInDegrees = detected.units.gazeInDegrees;
  return KV::Gaze(signedBy(detected.units.gazeYawIsLeft, inDegrees(yaw, isInDegrees)),
                  signedBy(detected.units.gazePitchIsUp, inDegrees(pitch, isInDegrees)));
}

}  // namespace

Face faceOf(const PyFeatFace& detected)
{
  Face face;
  face.frontEnd = FrontEnd::PyFeat;
  face.confidence = detected.confidence;
  face.pose.headPosture = headPostureOf(detected);
  face.pose.gaze = gazeOf(detected);
  face.actionUnits = detected.actionUnits;
  if (face.actionUnits)
    face.actionUnits->fullScale = fullShare;
  face.emotions = detected.emotions;
  face.landmarks = detected.landmarks;
  return face;
}

}  // namespace KV::recordings
