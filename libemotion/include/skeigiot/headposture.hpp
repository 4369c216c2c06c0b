#pragma once

#include <skeigiot/api.hpp>

#include <iosfwd>

namespace KV
{

/// Orientation of a person's head. Stores its values unchanged.
///
/// A NaN angle answers false to every direction test. A posture can be both up and left; it is never both up and down.
class SKEIGIOT_API HeadPosture
{
public:
  static constexpr float upBoundary = 6.f;     ///< [deg] a pitch from here on is "up"
  static constexpr float downBoundary = -6.f;  ///< [deg] a pitch from here downwards is "down"
  static constexpr float leftBoundary = -6.f;  ///< [deg] a yaw from here downwards is "left"
  static constexpr float rightBoundary = 6.f;  ///< [deg] a yaw from here on is "right"

  /// Makes a head that is straight: all angles 0.
  HeadPosture() = default;
  /// Stores the three angles [deg] as they are given.
  HeadPosture(float yaw, float pitch, float roll) : _yaw(yaw), _pitch(pitch), _roll(roll) {}

  float yaw() const { return _yaw; }      ///< [deg], positive is turned to the person's own right
  float pitch() const { return _pitch; }  ///< [deg], positive is up
  float roll() const { return _roll; }    ///< [deg], positive is tilted to the person's own right shoulder

  void setYaw(float yaw) { _yaw = yaw; }                    ///< [deg], stored as it is given
  void setPitch(float pitch) { _pitch = pitch; }            ///< [deg], stored as it is given
  void setRoll(float roll) { _roll = roll; }                ///< [deg], stored as it is given
  void setHeadPosture(float yaw, float pitch, float roll);  ///< [deg], stored as they are given

  bool isUp() const { return _pitch >= upBoundary; }      ///< up, from upBoundary on
  bool isDown() const { return _pitch <= downBoundary; }  ///< down, from downBoundary on
  bool isLeft() const { return _yaw <= leftBoundary; }    ///< to the person's own left, from leftBoundary on
  bool isRight() const { return _yaw >= rightBoundary; }  ///< to the person's own right, from rightBoundary on

private:
  float _yaw = 0.f;
  float _pitch = 0.f;
  float _roll = 0.f;
};

/// Writes the three angles and a word for pitch and yaw, without a line end.
///
/// Deliberate: fixed notation and precision 1 stay set on the stream.
SKEIGIOT_API std::ostream& operator<<(std::ostream& stream, const HeadPosture& posture);

}  // namespace KV
