#pragma once

#include <skeigiot/recordings/rosactionunits.hpp>
#include <skeigiot/recordings/rosexpression.hpp>
#include <skeigiot/recordings/roslandmarks.hpp>

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace KV::recordings
{

/// A message whose data do not fit its type.
class RosMessageError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

/// std_msgs/msg/Header; its stamp is not used, see RosbagReader.
struct RosHeader
{
  std::string frame;
};

/// geometry_msgs/msg/TransformStamped
struct RosTransform
{
  std::string parent;
  std::string child;
  std::array<double, 3> translation{};  ///< x, y, z [m]
  std::array<double, 4> rotation{};     ///< quaternion x, y, z, w
};

/// hri_msgs/msg/IdsList
struct RosIdsList
{
  RosHeader header;
  std::vector<std::string> ids;
};

/// hri_msgs/msg/LiveSpeech
struct RosSpeech
{
  std::string incremental;
  std::string final;
};

/// hri_msgs/msg/SoftBiometrics
struct RosSoftBiometrics
{
  static constexpr std::uint8_t female = 1;
  static constexpr std::uint8_t male = 2;

  std::uint8_t age = 0;
  float ageConfidence = 0.f;
  std::uint8_t gender = 0;  ///< female, male, or neither is known
  float genderConfidence = 0.f;
};

/// sensor_msgs/msg/JointState, as far as it is read
struct RosJointStates
{
  std::vector<std::string> names;
  std::vector<double> positions;  ///< [rad] in the order of the names; there may be fewer
};

using RosData = std::vector<char>;

// Each reads a message in CDR, little or big endian. They throw RosMessageError if it ends too early, or claims more
// elements than it can hold.

std::vector<RosTransform> readTransforms(RosData& data);  ///< tf2_msgs/msg/TFMessage
RosIdsList readIdsList(RosData& data);
RosExpression readExpression(RosData& data);
RosActionUnits readActionUnits(RosData& data);
RosLandmarks readLandmarks(RosData& data);
RosSoftBiometrics readSoftBiometrics(RosData& data);
RosSpeech readSpeech(RosData& data);
RosJointStates readJointStates(RosData& data);
std::int64_t readClock(RosData& data);  ///< rosgraph_msgs/msg/Clock: [ns], not below 0
std::string readString(RosData& data);  ///< std_msgs/msg/String
bool readBool(RosData& data);           ///< std_msgs/msg/Bool

}  // namespace KV::recordings
