#include "openface/openfaceface.hpp"

#include "face/csvscores.hpp"
#include "face/viewingangles.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

namespace KV::recordings
{
namespace
{
constexpr double millimetresPerMetre = 1000.0;

template <std::size_t Count>
bool areKnown(const std::optional<std::array<double, Count>>& values)
{
  return values && std::all_of(values->begin(), values->end(), [](double value) { return std::isfinite(value); });
}

std::optional<FacePosition> positionOf(const OpenFaceFace& detected)
{
  if (!detected.position)
    return {};
  const auto& [right, down, forward] = *detected.position;
  const FacePosition position{right, down, forward};
  const double distance = position.distance();
  if (!std::isfinite(distance) || distance <= 0.0)
    return {};
  return position;
}

// OpenFace: Rx > 0 is down, Ry > 0 to the person's own right, Rz > 0 tilted to their own left shoulder.
std::optional<KV::HeadPosture> headPostureOf(const OpenFaceFace& detected)
{
  if (!areKnown(detected.rotation))
    return {};
  const auto& [pitch, yaw, roll] = *detected.rotation;
  return KV::HeadPosture(degrees(yaw), -degrees(pitch), -degrees(roll));
}

// The angles of the mean of both eyes, computed as in OpenFace.
std::optional<std::array<double, 2>> gazeAngleOfVectors(const OpenFaceFace& detected)
{
  if (!detected.gazeVectors)
    return {};
  const auto& [x0, y0, z0, x1, y1, z1] = *detected.gazeVectors;
  const double x = x0 + x1;
  const double y = y0 + y1;
  const double z = z0 + z1;
  return {{std::atan2(x, -z), std::atan2(y, -z)}};
}

// OpenFace: x > 0 is to the person's own left, y > 0 down.
std::optional<KV::Gaze> gazeOf(const OpenFaceFace& detected)
{
  const auto angle = detected.gazeAngle ? detected.gazeAngle : gazeAngleOfVectors(detected);
  if (!areKnown(angle))
    return {};
  const auto& [x, y] = *angle;
  return KV::Gaze(degrees(x), -degrees(y));
}

}  // namespace

OpenFaceFace readOpenFaceFace(const CsvNumbers& numbers, const OpenFaceColumns& columns, const FaceAdapter& adapter)
{
  OpenFaceFace face;
  face.position = numbers.all(columns.position);
  face.rotation = numbers.all(columns.rotation);
  face.gazeAngle = numbers.all(columns.gazeAngle);
  if (!columns.gazeAngle)
    face.gazeVectors = numbers.all(columns.gazeVectors);
  face.actionUnits = readActionUnits(numbers, columns.actionUnits, adapter);
  face.landmarks = readLandmarks(numbers, columns.landmarks);
  return face;
}

Face faceOf(const OpenFaceFace& detected)
{
  Face face;
  face.frontEnd = FrontEnd::OpenFace;
  face.confidence = detected.confidence;
  face.pose = {positionOf(detected), millimetresPerMetre, headPostureOf(detected), gazeOf(detected)};
  face.actionUnits = detected.actionUnits;
  face.landmarks = detected.landmarks;
  return face;
}

}  // namespace KV::recordings
