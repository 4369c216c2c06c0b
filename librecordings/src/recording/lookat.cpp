#include <skeigiot/recordings/lookat.hpp>

#include "recording/numbersof.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace KV::recordings
{
namespace
{
constexpr double furthest = 1000.;  // [m]

}  // namespace

LookAt parseLookAt(const std::string& text)
{
  if (text == "camera")
    return {LookAt::Kind::Camera, {}};
  if (text == "axis")
    return {LookAt::Kind::Axis, {}};
  if (text == "learned")
    return {LookAt::Kind::Learned, {}};
  const auto point = numbersOf(text, ",");
  const bool isPoint = point.size() == 3 && std::all_of(point.begin(), point.end(),
                                                        [](double number) { return std::abs(number) <= furthest; });
  if (!isPoint)
    throw std::invalid_argument("'" + text +
                                "' is not camera, axis, learned, or metres RIGHT,DOWN,FORWARD from the camera such as "
                                "0,-0.2,0.05");
  return {LookAt::Kind::Point, {point[0], point[1], point[2]}};
}

}  // namespace KV::recordings
