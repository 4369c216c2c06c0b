#pragma once

#include "cdrmessages.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

namespace KV::ros2
{

/// Writes the members of a message in CDR, one after the other.
///
/// The writer of the library that reads messages leaves bytes of the memory between the members, where these are
/// aligned: others on the network would see them. Here those bytes are 0.
class CdrWriter
{
public:
  CdrWriter& operator<<(bool truth) { return _add(static_cast<std::uint8_t>(truth ? 1 : 0)); }
  CdrWriter& operator<<(std::int8_t number) { return _add(static_cast<std::uint8_t>(number)); }
  CdrWriter& operator<<(std::uint8_t number) { return _add(number); }
  CdrWriter& operator<<(std::int32_t number) { return _add(static_cast<std::uint32_t>(number)); }
  CdrWriter& operator<<(std::uint32_t number) { return _add(number); }
  CdrWriter& operator<<(float number) { return _add(_bitsOf<std::uint32_t>(number)); }
  CdrWriter& operator<<(double number) { return _add(_bitsOf<std::uint64_t>(number)); }

  CdrWriter& operator<<(const char* text) { return *this << std::string(text); }
  CdrWriter& operator<<(const std::string& text)
  {
    count(text.size() + 1);
    _bytes.insert(_bytes.end(), text.begin(), text.end());
    _bytes.push_back('\0');
    return *this;
  }

  /// std_msgs/msg/Header without a frame; `stamp` is in nanoseconds.
  CdrWriter& header(std::int64_t stamp)
  {
    constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
    return *this << static_cast<std::int32_t>(stamp / nanosecondsPerSecond)
                 << static_cast<std::uint32_t>(stamp % nanosecondsPerSecond) << std::string();
  }

  /// The number of the elements of a sequence, which follow it.
  CdrWriter& count(std::size_t count) { return *this << static_cast<std::uint32_t>(count); }

  CdrWriter& gid(const Gid& gid, Distribution distribution)
  {
    constexpr std::size_t bytesUpToHumble = 24;
    const std::size_t size = distribution == Distribution::Humble ? bytesUpToHumble : gid.size();
    for (std::size_t i = 0; i < size; ++i)
      *this << (i < gid.size() ? gid.at(i) : std::uint8_t{0});
    return *this;
  }

  /// Takes the message; nothing may be written after that.
  CdrBytes bytes() { return std::move(_bytes); }

private:
  static constexpr std::size_t encapsulation = 4;

  template <typename Bits, typename Number>
  static Bits _bitsOf(Number number)
  {
    Bits bits = 0;
    static_assert(sizeof(bits) == sizeof(number));
    std::memcpy(&bits, &number, sizeof(bits));
    return bits;
  }

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

}  // namespace KV::ros2
