#include "recording/scalecheck.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace KV::recordings
{
namespace
{
std::string textOf(double number)
{
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr};
}

// A number without a unit is a share, or a sign with a strength.
std::string likelyUnit(double value, const KV::Scale& scale)
{
  const std::string_view unit = scale.unit;
  if (unit.empty() && std::abs(value) <= 100.)
    return "it looks like percent: divide it by 100";
  if (unit.empty() && value > 0. && value <= 255.)
    return "it looks like a byte: divide it by 255";
  if (unit == "m")
    return "it looks like millimetres: divide it by 1000";
  return {};
}

}  // namespace

bool isFarFrom(double value, const KV::Scale& scale)
{
  const double width = scale.greatest - scale.least;
  return value < scale.least - width || value > scale.greatest + width;
}

std::string farFromText(double value, const KV::Scale& scale)
{
  const std::string unit = scale.unit;
  std::string text = textOf(value) + " is far from its range, " + textOf(scale.least) + " to " +
                     textOf(scale.greatest) + (unit.empty() ? "" : " " + unit);
  const std::string likely = likelyUnit(value, scale);
  return likely.empty() ? text : text + "; " + likely;
}

}  // namespace KV::recordings
