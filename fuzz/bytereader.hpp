#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

namespace fuzz
{

/// Takes values from the front of a string of bytes; after its end all are 0.
class ByteReader
{
public:
  explicit ByteReader(std::string_view bytes) : _bytes(bytes) {}

  bool atEnd() const { return _bytes.empty(); }

  /// Takes the bits of a number.
  template <typename Number>
  Number bits()
  {
    Number number{};
    const std::size_t size = std::min(sizeof(number), _bytes.size());
    std::memcpy(&number, _bytes.data(), size);
    _bytes.remove_prefix(size);
    return number;
  }

  /// Takes a number from 0 to `limit` - 1.
  unsigned below(unsigned limit) { return bits<std::uint8_t>() % limit; }

  bool flag() { return below(2) == 1; }

  /// Takes a float: of a plain size, of any bits, or one of the usual limits.
  float anyFloat()
  {
    using Limits = std::numeric_limits<float>;
    static constexpr std::array<float, 16> borders = {0.f,
                                                      -0.f,
                                                      1.f,
                                                      -1.f,
                                                      6.f,
                                                      -6.f,
                                                      0.5f,
                                                      1.4f,
                                                      10.f,
                                                      -10.f,
                                                      35.f,
                                                      Limits::infinity(),
                                                      -Limits::infinity(),
                                                      Limits::quiet_NaN(),
                                                      Limits::max(),
                                                      Limits::denorm_min()};
    switch (below(4))
    {
      case 0:
        return bits<float>();
      case 1:
        return borders.at(below(borders.size()));
      default:
        return static_cast<float>(bits<std::int8_t>()) / 100.f;
    }
  }

  /// Takes an angle of a plain size, or any float.
  float angle() { return below(8) == 0 ? anyFloat() : static_cast<float>(bits<std::int8_t>()) / 2.f; }

private:
  std::string_view _bytes;
};

}  // namespace fuzz
