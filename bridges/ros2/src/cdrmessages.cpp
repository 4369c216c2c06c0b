#include "cdrmessages.hpp"

#include <cstddef>
#include <cstring>

namespace KV::ros2
{
namespace
{

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

/// Writes the members of a message, one after the other.
///
/// The writer of the library that reads messages leaves bytes of the memory between the members, where these are
/// aligned: others on the network would see them. Here those bytes are 0.
class CdrWriter
{
public:
  CdrWriter& operator<<(std::uint8_t number) { return _add(number); }
  CdrWriter& operator<<(std::int32_t number) { return _add(static_cast<std::uint32_t>(number)); }
  CdrWriter& operator<<(std::uint32_t number) { return _add(number); }

  CdrWriter& operator<<(float number)
  {
    std::uint32_t bits = 0;
    static_assert(sizeof(bits) == sizeof(number));
    std::memcpy(&bits, &number, sizeof(bits));
    return _add(bits);
  }

  CdrWriter& operator<<(const std::string& text)
  {
    count(text.size() + 1);
    _bytes.insert(_bytes.end(), text.begin(), text.end());
    _bytes.push_back('\0');
    return *this;
  }

  /// std_msgs/msg/Header without a frame
  CdrWriter& header(std::int64_t stamp)
  {
    return *this << static_cast<std::int32_t>(stamp / nanosecondsPerSecond)
                 << static_cast<std::uint32_t>(stamp % nanosecondsPerSecond) << std::string();
  }

  CdrWriter& count(std::size_t count) { return *this << static_cast<std::uint32_t>(count); }

  CdrWriter& gid(const Gid& gid, Distribution distribution)
  {
    constexpr std::size_t bytesUpToHumble = 24;
    const std::size_t size = distribution == Distribution::Humble ? bytesUpToHumble : gid.size();
    for (std::size_t i = 0; i < size; ++i)
      *this << (i < gid.size() ? gid.at(i) : std::uint8_t{0});
    return *this;
  }

  CdrBytes bytes() { return _bytes; }

private:
  static constexpr std::size_t encapsulation = 4;

  template <typename Number>
  CdrWriter& _add(Number number)
  {
    while ((_bytes.size() - encapsulation) % sizeof(Number) != 0)
      _bytes.push_back('\0');
    constexpr unsigned bitsOfByte = 8;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
      _bytes.push_back(static_cast<char>(static_cast<std::uint8_t>(number >> (bitsOfByte * i))));
    return *this;
  }

  CdrBytes _bytes{0, 1, 0, 0};  // little endian
};

}  // namespace

CdrBytes cdrOf(const EngagementMessage& message)
{
  return (CdrWriter().header(message.stamp) << message.level).bytes();
}

CdrBytes cdrOf(const ExpressionMessage& message)
{
  return (CdrWriter().header(message.stamp)
          << message.expression << message.valence << message.arousal << message.confidence)
      .bytes();
}

CdrBytes cdrOf(const GazeMessage& message)
{
  return (CdrWriter().header(message.stamp) << message.sender << message.receiver).bytes();
}

CdrBytes cdrOf(const DiagnosticMessage& message)
{
  const std::string noHardware;
  CdrWriter writer;
  writer.header(message.stamp).count(1) << message.level << message.name << message.message << noHardware;
  writer.count(message.values.size());
  for (const auto& [name, value] : message.values)
    writer << name << value;
  return writer.bytes();
}

CdrBytes cdrOf(const NodeMessage& message, Distribution distribution)
{
  CdrWriter writer;
  writer.gid(message.participant, distribution).count(1) << std::string("/") << message.name;
  for (const std::vector<Gid>* gids : {&message.readers, &message.writers})
  {
    writer.count(gids->size());
    for (const Gid& gid : *gids)
      writer.gid(gid, distribution);
  }
  return writer.bytes();
}

}  // namespace KV::ros2
