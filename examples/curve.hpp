#pragma once

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

/// A curve over time: straight lines through its points; constant before the first point and after the
/// last.
class Curve
{
public:
  /// The points as (time [s], value), in ascending order of time; at least one.
  Curve(std::initializer_list<std::pair<float, float>> points) : _points(points) {}

  float operator()(float time) const
  {
    const auto isBefore = [](const std::pair<float, float>& point, float t) { return point.first < t; };
    const auto right = std::lower_bound(_points.begin(), _points.end(), time, isBefore);
    if (right == _points.begin())
      return right->second;
    const auto left = right - 1;
    if (right == _points.end())
      return left->second;
    const float share = (time - left->first) / (right->first - left->first);
    return left->second + share * (right->second - left->second);
  }

private:
  std::vector<std::pair<float, float>> _points;
};
