#pragma once

#include <skeigiot/recordings/inputlimits.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace KV::recordings
{

using Vector3 = std::array<double, 3>;

/// A rotation, as the matrix of the rotated axes.
class Rotation
{
public:
  Rotation() = default;  ///< no rotation

  /// Makes a rotation from a quaternion x, y, z, w of any length; nothing if its length is 0 or no number.
  static std::optional<Rotation> fromQuaternion(const std::array<double, 4>& quaternion);

  Rotation inverse() const;
  Rotation operator*(const Rotation& other) const;
  Vector3 operator*(const Vector3& vector) const;

  /// Returns one of the rotated axes x, y, z.
  Vector3 axis(std::size_t index) const { return {_rows[0][index], _rows[1][index], _rows[2][index]}; }

  /// Returns the angle of the rotation, in radians.
  double angle() const;

private:
  std::array<Vector3, 3> _rows{{{1., 0., 0.}, {0., 1., 0.}, {0., 0., 1.}}};
};

/// The place of a frame in another one.
struct Transform
{
  Rotation rotation;
  Vector3 translation{};

  Transform inverse() const;
  Transform operator*(const Transform& other) const;
};

/// The frames of a robot and of the things it sees, each as last reported.
class TransformTree
{
public:
  /// More frames are not kept.
  static constexpr std::size_t mostFrames = limits::mostFrames;

  /// Places `child` in `parent`; returns false if there are too many frames.
  bool set(const std::string& parent, const std::string& child, const Transform& transform);

  /// Forgets where a frame is.
  void remove(const std::string& child) { _parents.erase(child); }

  /// Returns where `frame` is in `reference`; nothing if that is not known.
  std::optional<Transform> find(const std::string& reference, const std::string& frame) const;

  /// Returns the names of the frame's parent, of its parent, and so on.
  std::vector<std::string> ancestors(const std::string& frame) const;

private:
  using Link = std::pair<std::string, Transform>;
  std::vector<Link> _pathToRoot(const std::string& frame) const;

  std::map<std::string, Link> _parents;
};

}  // namespace KV::recordings
