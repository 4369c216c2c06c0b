#pragma once

#include "librecordings/rosbag2/mcapwriter.hpp"

#include <fastcdr/Cdr.h>
#include <fastcdr/FastBuffer.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct sqlite3;

namespace support
{

/// Writes the parts of a message in CDR.
class CdrWriter
{
public:
  explicit CdrWriter(bool bigEndian = false)
    : _cdr(_buffer, bigEndian ? eprosima::fastcdr::Cdr::BIG_ENDIANNESS : eprosima::fastcdr::Cdr::LITTLE_ENDIANNESS,
           eprosima::fastcdr::Cdr::DDS_CDR)
  {
    _cdr.serialize_encapsulation();
  }

  template <typename Value>
  CdrWriter& operator<<(const Value& value)
  {
    _cdr << value;
    return *this;
  }
  CdrWriter& operator<<(const char* text) { return *this << std::string(text); }

  CdrWriter& header(const std::string& frame) { return *this << std::int32_t{1} << std::uint32_t{2} << frame; }

  std::string bytes() { return {_buffer.getBuffer(), _cdr.getSerializedDataLength()}; }

private:
  eprosima::fastcdr::FastBuffer _buffer;
  eprosima::fastcdr::Cdr _cdr;
};

/// The place of one frame in another.
struct FrameMessage
{
  std::string parent;
  std::string child;
  std::array<double, 3> translation{};
  std::array<double, 4> rotation{0., 0., 0., 1.};  ///< x, y, z, w
};

std::string tfMessage(const std::vector<FrameMessage>& frames, bool bigEndian = false);
std::string idsMessage(const std::vector<std::string>& ids, const std::string& frame = "camera_optical");
std::string expressionMessage(const std::string& name, float valence, float confidence);
std::string stringMessage(const std::string& text);
std::string boolMessage(bool value);
std::string jointStatesMessage(const std::vector<std::string>& names, const std::vector<double>& positions);
std::string clockMessage(std::int64_t nanoseconds);
std::string softBiometricsMessage(std::uint8_t age, float ageConfidence, std::uint8_t gender, float genderConfidence);
std::string speechMessage(const std::string& incremental, const std::string& final);

/// A quaternion x, y, z, w that turns by so many degrees about an axis.
std::array<double, 4> turned(double degrees, const std::array<double, 3>& axis);

/// The quaternion that turns first by `right`, then by `left`.
std::array<double, 4> product(const std::array<double, 4>& left, const std::array<double, 4>& right);

/// The frame of a face that looks straight into a camera along its axis: in the camera's optical frame.
constexpr std::array<double, 4> facingCamera{0.5, 0.5, -0.5, 0.5};

/// The frame of a gaze straight out of a face: in the frame of the face.
constexpr std::array<double, 4> gazeAhead{-0.5, 0.5, -0.5, 0.5};

/// A face at this place, turned by so many degrees to its own right and up, and tilted to its own right shoulder.
FrameMessage faceFrame(const std::string& id, const std::array<double, 3>& position, double ownRight = 0.,
                       double up = 0., double tilt = 0.);

/// Writes a bag, as a file of SQLite, and again in any other form.
class BagWriter
{
public:
  /// Makes the file, with the tables of a bag that begins so many nanoseconds after 1970.
  BagWriter(const std::string& path, std::int64_t begin);
  ~BagWriter();
  BagWriter(const BagWriter&) = delete;
  BagWriter& operator=(const BagWriter&) = delete;

  /// Adds a topic with any type; add() uses the type that the topic has on robots, unless it was added before.
  void topic(const std::string& name, const std::string& type, const std::string& format = "cdr");

  /// Adds a message received so many seconds after the beginning.
  void add(double seconds, const std::string& topic, const std::string& data);

  /// Runs a statement on the file. Its changes are missing in the other forms.
  void run(const std::string& sql);

  /// Returns the same bag as a file of MCAP; nothing if a statement changed the file.
  std::string inMcap(const McapForm& form) const;

private:
  struct Topic
  {
    std::string name;
    std::string type;
    std::string format;
  };
  struct Message
  {
    std::int64_t time;
    std::string topic;
    std::string data;
  };

  void _run(const std::string& sql);

  sqlite3* _database = nullptr;
  std::int64_t _begin;
  std::map<std::string, std::int64_t> _topics;
  std::vector<Topic> _allTopics;
  std::vector<Message> _messages;
  bool _isChanged = false;
};

}  // namespace support
