#include "face/landmarks.hpp"

#include <cmath>
#include <vector>

namespace KV::recordings
{
namespace
{
constexpr std::size_t count = facialPointLandmarks.size();

std::vector<std::string> namesOfLandmarks()
{
  std::vector<std::string> names;
  for (const char* const axis : {"x_", "y_"})
    for (const int landmark : facialPointLandmarks)
      names.push_back(axis + std::to_string(landmark));
  return names;
}

const std::vector<std::string>& landmarkNames()
{
  static const std::vector<std::string> names = namesOfLandmarks();
  return names;
}

// The landmark of a facial point.
std::size_t numberOf(std::size_t point)
{
  return static_cast<std::size_t>(facialPointLandmarks.at(point));
}

// In a mirror image an analyser confuses the left eye with the right one, and so on.
std::size_t placeOf(std::size_t point, bool mirrored)
{
  constexpr std::array<std::size_t, count> opposite = {3, 2, 1, 0, 5, 4, 6, 8, 7, 9, 10, 11};
  return mirrored ? opposite.at(point) : point;
}

}  // namespace

LandmarkColumns findLandmarks(const CsvHeader& header)
{
  return header.findAll<2 * count>(landmarkNames());
}

std::optional<FaceLandmarks> readLandmarks(const CsvNumbers& numbers, const LandmarkColumns& columns)
{
  if (!columns)
    return {};
  FaceLandmarks landmarks;
  for (std::size_t i = 0; i < count; ++i)
    landmarks.points.at(numberOf(i)) = {static_cast<float>(numbers.number((*columns)[i])),
                                        static_cast<float>(numbers.number((*columns)[count + i]))};
  return landmarks;
}

std::optional<KV::FacialPoints> facialPointsOf(const FaceLandmarks& landmarks, float confidence, bool mirrored)
{
  std::optional<KV::FacialPoints> points;
  for (std::size_t i = 0; i < count; ++i)
  {
    const auto& [x, y] = landmarks.points.at(numberOf(i));
    if (!std::isfinite(x) || !std::isfinite(y))
      continue;
    if (!points)
      points.emplace();
    points->setFacialPoint(static_cast<KV::PointDescription>(placeOf(i, mirrored)), {{x, y}, confidence});
  }
  return points;
}

}  // namespace KV::recordings
