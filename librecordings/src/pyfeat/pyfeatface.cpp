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

std::optional<KV::HeadPosture> headPostureOf(const PyFeatFace& told)
{
  if (!areKnown(told.rotation))
    return {};
  const auto& [pitch, roll, yaw] = *told.rotation;
  const bool isInDegrees = told.units.rotationInDegrees;
  return KV::HeadPosture(inDegrees(yaw, isInDegrees), signedBy(told.units.pitchIsUp, inDegrees(pitch, isInDegrees)),
                         inDegrees(roll, isInDegrees));
}

std::optional<KV::Gaze> gazeOf(const PyFeatFace& told)
{
  if (!areKnown(told.gaze))
    return {};
  const auto& [pitch, yaw] = *told.gaze;
  const bool isInDegrees = told.units.gazeInDegrees;
  return KV::Gaze(signedBy(told.units.gazeYawIsLeft, inDegrees(yaw, isInDegrees)),
                  signedBy(told.units.gazePitchIsUp, inDegrees(pitch, isInDegrees)));
}

}  // namespace

Face faceOf(const PyFeatFace& told)
{
  Face face;
  face.frontEnd = FrontEnd::PyFeat;
  face.confidence = told.confidence;
  face.pose.headPosture = headPostureOf(told);
  face.pose.gaze = gazeOf(told);
  face.actionUnits = told.actionUnits;
  if (face.actionUnits)
    face.actionUnits->fullScale = fullShare;
  face.emotions = told.emotions;
  face.landmarks = told.landmarks;
  return face;
}

}  // namespace KV::recordings
