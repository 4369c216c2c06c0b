#include "ros4hri/rosangles.hpp"

#include "face/viewingangles.hpp"

#include <cmath>

namespace KV::recordings
{
namespace
{
struct Direction
{
  double ownRight;  // [rad], 0 is towards the camera
  double up;        // [rad]
};

Direction directionOf(const Vector3& vector)
{
  const auto& [right, down, forward] = vector;
  return {std::atan2(-right, -forward), std::atan2(-down, std::hypot(right, forward))};
}

// [rad], positive is to the person's own right shoulder: then the left side of the face goes up.
double rollOf(const Vector3& toOwnLeft, const Vector3& up)
{
  return std::atan2(-toOwnLeft[1], -up[1]);
}

}  // namespace

FacePose poseOf(const Transform& faceInCamera)
{
  const Rotation& rotation = faceInCamera.rotation;
  const auto& [right, down, forward] = faceInCamera.translation;
  const Direction face = directionOf(rotation.axis(0));
  FacePose pose;
  pose.position = FacePosition{right, down, forward};
  pose.headPosture =
      KV::HeadPosture(degrees(face.ownRight), degrees(face.up), degrees(rollOf(rotation.axis(1), rotation.axis(2))));
  return pose;
}

KV::Gaze gazeOf(const Transform& gazeInCamera)
{
  const Direction gaze = directionOf(gazeInCamera.rotation.axis(2));
  return {-degrees(gaze.ownRight), degrees(gaze.up)};  // a gaze yaw is positive to the person's own left
}

}  // namespace KV::recordings
