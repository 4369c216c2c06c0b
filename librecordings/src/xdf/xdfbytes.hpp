#pragma once

#include <skeigiot/recordings/inputfile.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace KV::recordings
{

/// The file ends within something, or a length in it cannot be.
class XdfDamage
{
public:
  explicit XdfDamage(std::string what) : _what(std::move(what)) {}
  const std::string& what() const { return _what; }

private:
  std::string _what;
};

/// The bytes of a file, one after the other; numbers are little-endian, as all machines are that this library is built
/// for.
class XdfBytes
{
public:
  explicit XdfBytes(InputFile file) : _file(std::move(file)) {}

  /// Returns how many bytes were taken.
  std::uint64_t position() const { return _position; }
  const InputFile& file() const { return _file; }

  bool atEnd();

  /// The following throw XdfDamage if the file ends before that. @{
  void skip(std::uint64_t count);
  /// Takes memory only for bytes that are there.
  std::string text(std::size_t count);
  /// Returns a length of 1, 4 or 8 bytes; the byte before it is their number.
  std::uint64_t length();

  template <typename Number>
  Number number()
  {
    std::array<char, sizeof(Number)> bytes{};
    _take(bytes.data(), bytes.size());
    Number value{};
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  /// @}

private:
  void _take(char* target, std::size_t count);

  InputFile _file;
  std::string_view _block;
  std::uint64_t _position = 0;
};

}  // namespace KV::recordings
