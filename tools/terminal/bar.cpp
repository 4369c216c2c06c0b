#include "terminal/bar.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace KV::tools
{

namespace
{

std::string repeated(const char* cell, int count)
{
  std::string text;
  for (int i = 0; i < count; ++i)
    text += cell;
  return text;
}

/// The number of whole filled cells, and whether half a cell follows.
std::pair<int, bool> filledCells(double value, int width)
{
  if (std::isnan(value))
    return {0, false};
  const auto halves = static_cast<int>(std::lround(std::clamp(value, 0., 1.) * 2 * width));
  return {halves / 2, halves % 2 != 0};
}

}  // namespace

std::string bar(double value, int width)
{
  const auto [whole, half] = filledCells(value, width);
  return repeated("█", whole) + (half ? "▌" : "") + repeated("·", width - whole - (half ? 1 : 0));
}

std::string centredBar(double value, int halfWidth)
{
  const auto [left, halfLeft] = filledCells(-value, halfWidth);
  const auto [right, halfRight] = filledCells(value, halfWidth);
  return repeated("·", halfWidth - left - (halfLeft ? 1 : 0)) + (halfLeft ? "▐" : "") + repeated("█", left) + "│" +
         repeated("█", right) + (halfRight ? "▌" : "") + repeated("·", halfWidth - right - (halfRight ? 1 : 0));
}

}  // namespace KV::tools
