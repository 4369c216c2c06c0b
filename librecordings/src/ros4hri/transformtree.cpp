#include "ros4hri/transformtree.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace KV::recordings
{
namespace
{
constexpr std::size_t deepestTree = 100;  // a longer path goes in circles

Vector3 sum(const Vector3& left, const Vector3& right)
{
  return {left[0] + right[0], left[1] + right[1], left[2] + right[2]};
}

}  // namespace

std::optional<Rotation> Rotation::fromQuaternion(const std::array<double, 4>& quaternion)
{
  const double length = std::hypot(std::hypot(quaternion[0], quaternion[1]), std::hypot(quaternion[2], quaternion[3]));
  if (!std::isfinite(length) || length <= 0.)
    return {};
  const double x = quaternion[0] / length;
  const double y = quaternion[1] / length;
  const double z = quaternion[2] / length;
  const double w = quaternion[3] / length;
  Rotation rotation;
  rotation._rows = {{{1. - 2. * (y * y + z * z), 2. * (x * y - z * w), 2. * (x * z + y * w)},
                     {2. * (x * y + z * w), 1. - 2. * (x * x + z * z), 2. * (y * z - x * w)},
                     {2. * (x * z - y * w), 2. * (y * z + x * w), 1. - 2. * (x * x + y * y)}}};
  return rotation;
}

Rotation Rotation::inverse() const
{
  Rotation result;
  result._rows = {axis(0), axis(1), axis(2)};
  return result;
}

Rotation Rotation::operator*(const Rotation& other) const
{
  Rotation columns;  // of the product
  for (std::size_t i = 0; i < 3; ++i)
    columns._rows.at(i) = *this * other.axis(i);
  return columns.inverse();
}

Vector3 Rotation::operator*(const Vector3& vector) const
{
  Vector3 result{};
  for (std::size_t i = 0; i < 3; ++i)
    result.at(i) = _rows.at(i)[0] * vector[0] + _rows.at(i)[1] * vector[1] + _rows.at(i)[2] * vector[2];
  return result;
}

double Rotation::angle() const
{
  const double trace = _rows[0][0] + _rows[1][1] + _rows[2][2];
  return std::acos(std::clamp((trace - 1.) / 2., -1., 1.));
}

Transform Transform::inverse() const
{
  const Rotation back = rotation.inverse();
  const Vector3 moved = back * translation;
  return {back, {-moved[0], -moved[1], -moved[2]}};
}

Transform Transform::operator*(const Transform& other) const
{
  return {rotation * other.rotation, sum(rotation * other.translation, translation)};
}

bool TransformTree::set(const std::string& parent, const std::string& child, const Transform& transform)
{
  const auto found = _parents.find(child);
  if (found == _parents.end() && _parents.size() == mostFrames)
    return false;
  _parents[child] = {parent, transform};
  return true;
}

std::optional<Transform> TransformTree::find(const std::string& reference, const std::string& frame) const
{
  const auto fromFrame = _pathToRoot(frame);
  const auto fromReference = _pathToRoot(reference);
  for (const auto& [ancestor, frameInAncestor] : fromFrame)
    for (const auto& [other, referenceInAncestor] : fromReference)
      if (other == ancestor)
        return referenceInAncestor.inverse() * frameInAncestor;
  return {};
}

std::vector<std::string> TransformTree::ancestors(const std::string& frame) const
{
  std::vector<std::string> names;
  for (const auto& [name, transform] : _pathToRoot(frame))
    names.push_back(name);
  names.erase(names.begin());  // the frame itself
  return names;
}

// The frame in itself, in its parent, and so on.
std::vector<TransformTree::Link> TransformTree::_pathToRoot(const std::string& frame) const
{
  std::vector<Link> path{{frame, Transform()}};
  while (path.size() < deepestTree)
  {
    const auto found = _parents.find(path.back().first);
    if (found == _parents.end())
      break;
    const auto& [parent, inParent] = found->second;
    path.emplace_back(parent, inParent * path.back().second);
  }
  return path;
}

}  // namespace KV::recordings
