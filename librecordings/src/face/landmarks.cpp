#include "face/landmarks.hpp"

#include <algorithm>
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

// In a mirror image an analyser takes the left eye for the right one, and so on.
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

bool isLandmark(const std::string& name)
{
  return std::find(landmarkNames().begin(), landmarkNames().end(), name) != landmarkNames().end();
}

std::optional<KV::FacialPoints> readFacialPoints(const CsvNumbers& numbers, const LandmarkColumns& columns,
                                                 float confidence, bool mirrored)
{
  if (!columns)
    return {};
  std::optional<KV::FacialPoints> points;
  for (std::size_t i = 0; i < count; ++i)
  {
    const double x = numbers.number((*columns)[i]);
    const double y = numbers.number((*columns)[count + i]);
    if (!std::isfinite(x) || !std::isfinite(y))
      continue;
    if (!points)
      points.emplace();
    points->setFacialPoint(static_cast<KV::PointDescription>(placeOf(i, mirrored)),
                           {{static_cast<float>(x), static_cast<float>(y)}, confidence});
  }
  return points;
}

}  // namespace KV::recordings
