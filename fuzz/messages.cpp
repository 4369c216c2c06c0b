#include "bytereader.hpp"
#include "ros4hri/ros4hridispatch.hpp"
#include "target.hpp"

#include <skeigiot/recordings/observationjson.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Sequences of the messages of a bag: bytes choose the topic, the content and how much later it came. Frames refer to
/// each other in trees and in circles. SQLite is not built for fuzzing, so it is left out.
namespace fuzz
{

namespace
{

using KV::recordings::RosData;
using KV::recordings::RosTopic;
using Time = ko::SystemClock::time_point;

constexpr int mostMessages = 500;

constexpr std::array<const char*, 10> frameNames = {"camera_optical", "world",  "head",         "face_a", "face_b",
                                                    "gaze_a",         "gaze_b", "/other/frame", "",       "face_"};

constexpr std::array<const char*, 12> topicNames = {"/tf",
                                                    "/tf_static",
                                                    "/humans/faces/tracked",
                                                    "/humans/faces/a/expression",
                                                    "/humans/faces/b/expression",
                                                    "/humans/faces/a/facs",
                                                    "/humans/faces/a/landmarks",
                                                    "/humans/persons/ada/face_id",
                                                    "/humans/persons/ben/face_id",
                                                    "/humans/persons/ada/voice_id",
                                                    "/humans/voices/v/is_speaking",
                                                    "/humans/voices/v/speech"};

/// A message in CDR, little endian.
class Message
{
public:
  Message& add(const std::string& text)
  {
    add(static_cast<std::uint32_t>(text.size() + 1));
    _data.insert(_data.end(), text.begin(), text.end());
    _data.push_back('\0');
    return *this;
  }

  template <typename Number>
  Message& add(Number number)
  {
    _data.resize(_data.size() + (sizeof(number) - (_data.size() - encapsulation) % sizeof(number)) % sizeof(number));
    std::array<char, sizeof(number)> bytes{};
    std::memcpy(bytes.data(), &number, sizeof(number));
    _data.insert(_data.end(), bytes.begin(), bytes.end());
    return *this;
  }

  Message& addHeader(const std::string& frame) { return add(std::int32_t{1}).add(std::uint32_t{2}).add(frame); }

  RosData& data() { return _data; }

private:
  static constexpr std::size_t encapsulation = 4;
  RosData _data = {0, 1, 0, 0};
};

std::string anyFrame(ByteReader& bytes)
{
  return frameNames.at(bytes.below(frameNames.size()));
}

double anyCoordinate(ByteReader& bytes)
{
  return static_cast<double>(bytes.anyFloat());
}

Message transforms(ByteReader& bytes)
{
  Message message;
  const std::uint32_t count = bytes.below(5);
  message.add(count);
  for (std::uint32_t i = 0; i < count; ++i)
  {
    message.addHeader(anyFrame(bytes)).add(anyFrame(bytes));
    for (int number = 0; number < 7; ++number)
      message.add(anyCoordinate(bytes));
  }
  return message;
}

Message ids(ByteReader& bytes)
{
  Message message;
  message.addHeader(anyFrame(bytes));
  const std::uint32_t count = bytes.below(4);
  message.add(count);
  for (std::uint32_t i = 0; i < count; ++i)
    message.add(std::string(1, static_cast<char>('a' + bytes.below(4))));
  return message;
}

Message numbers(ByteReader& bytes)
{
  Message message;
  message.addHeader("");
  const unsigned count = bytes.below(2) == 0 ? 198 : 210;
  for (unsigned i = 0; i < count; ++i)
    message.add(bytes.anyFloat());
  return message.add(std::uint32_t{480}).add(std::uint32_t{640});
}

Message otherMessage(ByteReader& bytes)
{
  Message message;
  switch (bytes.below(4))
  {
    case 0:
      return message.add(std::string(1, static_cast<char>('a' + bytes.below(4))));
    case 1:
      message.addHeader("").add(std::string(bytes.flag() ? "happy" : ""));
      return message.add(bytes.anyFloat()).add(bytes.anyFloat()).add(bytes.anyFloat());
    case 2:
      return message.add(bytes.bits<std::uint8_t>());
    default:
      return message.addHeader("").add(std::string("well")).add(std::string(bytes.flag() ? "done" : "")).add(0.5);
  }
}

/// A message of any topic, or an invalid one.
Message anyMessage(ByteReader& bytes)
{
  switch (bytes.below(8))
  {
    case 0:
    case 1:
    case 2:
      return transforms(bytes);
    case 3:
      return ids(bytes);
    case 4:
      return numbers(bytes);
    case 5: {
      Message message;
      for (unsigned i = bytes.below(64); i > 0; --i)
        message.data().push_back(bytes.bits<char>());
      return message;
    }
    default:
      return otherMessage(bytes);
  }
}

/// Takes the steps that are complete.
void takeSteps(KV::recordings::Ros4hriDispatch& dispatch, std::optional<Time>& before)
{
  while (const auto step = dispatch.next())
  {
    expect(!before || step->time >= *before, "times do not run backwards");
    before = step->time;
    const std::string text = KV::recordings::stepToJson(*step);
    expect(KV::recordings::stepToJson(KV::recordings::stepFromJson(text)) == text,
           "a step reads back as it was written");
  }
}

}  // namespace

void fuzzMessages(std::string_view input)
{
  ByteReader bytes(input);
  KV::recordings::ReadingOptions options;
  options.mirrored = bytes.flag();
  if (bytes.flag())
    options.cameraHeight = 1.5f;
  KV::recordings::Ros4hriDispatch dispatch(options);
  Time time(boost::chrono::seconds(1577836800));
  std::optional<Time> before;
  for (int i = 0; i < mostMessages && !bytes.atEnd(); ++i)
  {
    const auto topic = KV::recordings::rosTopicOf(topicNames.at(bytes.below(topicNames.size())));
    expect(topic.has_value(), "the topics are known");
    time += boost::chrono::milliseconds(bytes.bits<std::uint8_t>());
    Message message = anyMessage(bytes);
    try
    {
      dispatch.advance(time);
      dispatch.takePerson(*topic, message.data());
      dispatch.take(*topic, message.data());
    }
    catch (const KV::recordings::RosMessageError& error)
    {
      expect(*error.what() != '\0', "a message that cannot be read is complained of");
    }
    takeSteps(dispatch, before);
  }
  dispatch.finish();
  takeSteps(dispatch, before);
  dispatch.warnings();
  dispatch.describePersons();
  dispatch.describeLearned();
}

}  // namespace fuzz
