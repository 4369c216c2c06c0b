#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <type_traits>

namespace benchmarks
{

/// A fingerprint of a sequence of values: FNV-1a with 64 bits over their bytes, the lowest first.
class Digest
{
public:
  /// Adds the bits of a float. Every NaN counts as the same: its sign and payload depend on the compiler's order of
  /// operands.
  void add(float value)
  {
    std::uint32_t bits = 0;
    static_assert(sizeof bits == sizeof value);
    const float canonical = std::isnan(value) ? std::numeric_limits<float>::quiet_NaN() : value;
    std::memcpy(&bits, &canonical, sizeof bits);
    add(bits);
  }

  template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
  void add(Integer value)
  {
    constexpr unsigned bitsPerByte = 8;
    const auto bits = static_cast<std::uint64_t>(value);
    for (unsigned byte = 0; byte < sizeof value; ++byte)
      _add(static_cast<unsigned char>(bits >> (bitsPerByte * byte)));
  }

  /// The length goes first, so that "a", "bc" differs from "ab", "c".
  void add(std::string_view text)
  {
    add(static_cast<std::uint64_t>(text.size()));
    for (const char character : text)
      _add(static_cast<unsigned char>(character));
  }

  std::uint64_t value() const { return _value; }

private:
  void _add(unsigned char byte)
  {
    constexpr std::uint64_t prime = 0x100000001b3;
    _value = (_value ^ byte) * prime;
  }

  std::uint64_t _value = 0xcbf29ce484222325;
};

}  // namespace benchmarks
