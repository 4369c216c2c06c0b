#include "mediapipe/facetransformation.hpp"

#include "face/viewingangles.hpp"

#include <skeigiot/recordings/mediapipeface.hpp>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr double centimetresPerMetre = 100.0;
constexpr double rounding = 1e-6;

bool areZeroZeroZeroOne(double a, double b, double c, double d)
{
  return std::abs(a) < rounding && std::abs(b) < rounding && std::abs(c) < rounding && std::abs(d - 1.0) < rounding;
}

FaceMatrix transposed(FaceMatrix matrix)
{
  for (std::size_t row = 0; row < 4; ++row)
    for (std::size_t column = row + 1; column < 4; ++column)
      std::swap(matrix.at(4 * row + column), matrix.at(4 * column + row));
  return matrix;
}

bool areKnown(const FaceMatrix& matrix)
{
  return std::all_of(matrix.begin(), matrix.end(), [](double number) { return std::isfinite(number); });
}

// The third column is the direction of the face, the first is its axis from ear to ear.
FacePose poseOfColumns(const FaceMatrix& m)
{
  FacePose pose;
  pose.headPosture.emplace(degrees(std::atan2(-m[8], m[10])), degrees(std::atan2(m[9], std::hypot(m[8], m[10]))),
                           degrees(std::atan2(m[1], std::hypot(m[0], m[2]))));
  const FacePosition position{m[12], -m[13], -m[14]};
  if (position.distance() > 0.0)
    pose.position = position;
  pose.positionUnitsPerMetre = centimetresPerMetre;
  return pose;
}

}  // namespace

std::optional<FacePose> poseOf(const FaceMatrix& matrix)
{
  if (!areKnown(matrix))
    return {};
  if (areZeroZeroZeroOne(matrix[3], matrix[7], matrix[11], matrix[15]))
    return poseOfColumns(matrix);
  if (areZeroZeroZeroOne(matrix[12], matrix[13], matrix[14], matrix[15]))
    return poseOfColumns(transposed(matrix));
  return {};
}

Face faceOf(const MediaPipeFace& detected)
{
  Face face;
  face.frontEnd = FrontEnd::MediaPipe;
  face.confidence = detected.confidence;
  face.blendshapes = detected.blendshapes;
  if (!detected.matrix || !areKnown(*detected.matrix))
    return face;
  const auto pose = poseOf(*detected.matrix);
  if (!pose)
    throw std::invalid_argument(
        "The matrix is no transformation: neither its last row nor its last column is 0, 0, 0, 1.");
  face.pose = *pose;
  return face;
}

}  // namespace KV::recordings
