#include "ros4hri/rosmessages.hpp"

#include <fastcdr/Cdr.h>
#include <fastcdr/FastBuffer.h>
#include <fastcdr/exceptions/Exception.h>

namespace KV::recordings
{
namespace
{
using eprosima::fastcdr::Cdr;

constexpr std::size_t encapsulationSize = 4;
constexpr std::size_t smallestTransform = 64;  // [bytes] less than header, name and seven numbers of an empty one
constexpr std::size_t smallestText = 4;        // [bytes]

// Reads a message part by part.
class Message
{
public:
  explicit Message(RosData& data) : _buffer(data.data(), data.size()), _cdr(_buffer, Cdr::DEFAULT_ENDIAN, Cdr::DDS_CDR)
  {
    const bool isPlain = data.size() >= encapsulationSize && data[0] == 0 && (data[1] == 0 || data[1] == 1);
    if (!isPlain)
      throw RosMessageError("is no message in CDR");
    _cdr.read_encapsulation();
  }

  template <typename Value>
  Value read()
  {
    Value value{};
    _cdr >> value;
    return value;
  }

  RosHeader header()
  {
    read<std::int32_t>();   // seconds
    read<std::uint32_t>();  // nanoseconds
    return {read<std::string>()};
  }

  /// Reads the number of the elements of a sequence, and checks that so many can follow.
  std::size_t count(std::size_t smallestElement)
  {
    const std::size_t count = read<std::uint32_t>();
    const std::size_t rest = _buffer.getBufferSize() - _cdr.getSerializedDataLength();
    if (count > rest / smallestElement)
      throw RosMessageError("claims " + std::to_string(count) + " elements, but has " + std::to_string(rest) +
                            " bytes left");
    return count;
  }

  template <std::size_t Count>
  std::array<float, Count> floats()
  {
    std::array<float, Count> values{};
    _cdr.deserializeArray(values.data(), values.size());
    return values;
  }

private:
  eprosima::fastcdr::FastBuffer _buffer;
  Cdr _cdr;
};

/// Reads with `read`, and converts errors of the library to RosMessageError.
template <typename Read>
auto guarded(RosData& data, const Read& read)
{
  try
  {
    Message message(data);
    return read(message);
  }
  catch (const eprosima::fastcdr::exception::Exception& error)
  {
    throw RosMessageError(std::string("ends too early, or is of another type than its topic: ") + error.what());
  }
}

RosTransform transformOf(Message& message)
{
  RosTransform transform;
  transform.parent = message.header().frame;
  transform.child = message.read<std::string>();
  for (double& number : transform.translation)
    number = message.read<double>();
  for (double& number : transform.rotation)
    number = message.read<double>();
  return transform;
}

std::vector<double> doublesOf(Message& message)
{
  std::vector<double> numbers(message.count(sizeof(double)));
  for (double& number : numbers)
    number = message.read<double>();
  return numbers;
}

}  // namespace

std::vector<RosTransform> readTransforms(RosData& data)
{
  return guarded(data, [](Message& message) {
    std::vector<RosTransform> transforms(message.count(smallestTransform));
    for (RosTransform& transform : transforms)
      transform = transformOf(message);
    return transforms;
  });
}

RosIdsList readIdsList(RosData& data)
{
  return guarded(data, [](Message& message) {
    RosIdsList list;
    list.header = message.header();
    list.ids.resize(message.count(smallestText));
    for (std::string& id : list.ids)
      id = message.read<std::string>();
    return list;
  });
}

RosExpression readExpression(RosData& data)
{
  return guarded(data, [](Message& message) {
    message.header();
    RosExpression expression;
    expression.expression = message.read<std::string>();
    expression.valence = message.read<float>();
    expression.arousal = message.read<float>();
    expression.confidence = message.read<float>();
    return expression;
  });
}

RosActionUnits readActionUnits(RosData& data)
{
  return guarded(data, [](Message& message) {
    message.header();
    RosActionUnits units;
    units.intensity = message.floats<RosActionUnits::count>();
    units.confidence = message.floats<RosActionUnits::count>();
    return units;
  });
}

RosLandmarks readLandmarks(RosData& data)
{
  return guarded(data, [](Message& message) {
    message.header();
    RosLandmarks landmarks;
    for (RosLandmarks::Point& point : landmarks.points)
    {
      point.x = message.read<float>();
      point.y = message.read<float>();
      point.confidence = message.read<float>();
    }
    landmarks.height = message.read<std::uint32_t>();
    landmarks.width = message.read<std::uint32_t>();
    return landmarks;
  });
}

RosSoftBiometrics readSoftBiometrics(RosData& data)
{
  return guarded(data, [](Message& message) {
    message.header();
    RosSoftBiometrics found;
    found.age = message.read<std::uint8_t>();
    found.ageConfidence = message.read<float>();
    found.gender = message.read<std::uint8_t>();
    found.genderConfidence = message.read<float>();
    return found;
  });
}

RosSpeech readSpeech(RosData& data)
{
  return guarded(data, [](Message& message) {
    message.header();
    RosSpeech speech;
    speech.incremental = message.read<std::string>();
    speech.final = message.read<std::string>();
    return speech;
  });
}

RosJointStates readJointStates(RosData& data)
{
  return guarded(data, [](Message& message) {
    message.header();
    RosJointStates joints;
    joints.names.resize(message.count(smallestText));
    for (std::string& name : joints.names)
      name = message.read<std::string>();
    joints.positions = doublesOf(message);
    doublesOf(message);  // velocities
    doublesOf(message);  // efforts
    return joints;
  });
}

std::int64_t readClock(RosData& data)
{
  return guarded(data, [](Message& message) {
    constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
    const std::int64_t seconds = message.read<std::int32_t>();
    const std::int64_t nanoseconds = message.read<std::uint32_t>();
    if (seconds < 0 || nanoseconds >= nanosecondsPerSecond)
      throw RosMessageError("has a time that is none: " + std::to_string(seconds) + " s and " +
                            std::to_string(nanoseconds) + " ns");
    return seconds * nanosecondsPerSecond + nanoseconds;
  });
}

std::string readString(RosData& data)
{
  return guarded(data, [](Message& message) { return message.read<std::string>(); });
}

bool readBool(RosData& data)
{
  return guarded(data, [](Message& message) { return message.read<bool>(); });
}

}  // namespace KV::recordings
