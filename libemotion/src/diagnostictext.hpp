#pragma once

#include "sixdigits.hpp"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace KV
{

/// Writes the words and returns their end.
inline char* put(char* end, std::string_view words)
{
  std::memcpy(end, words.data(), words.size());
  return end + words.size();
}

/// A text that an operation composes while it works, and drops when it returns.
///
/// Force traces, update reports and memory reports are composed at each call and are deliberately never handed to the
/// log. To read a text, call the overload that takes it by reference.
///
/// Writes the same text as a std::ostream in the classic locale with default formatting, at a small part of its cost,
/// which an update pays once per force.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the characters are written before they are read
class DiagnosticText
{
public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): as above
  DiagnosticText() = default;
  DiagnosticText(const DiagnosticText&) = delete;
  DiagnosticText& operator=(const DiagnosticText&) = delete;

  /// Makes the compiler compose the text even where it sees that nobody reads it.
  ~DiagnosticText() { asm volatile("" : : "r"(_short.data()) : "memory"); }

  DiagnosticText& operator<<(std::string_view item)
  {
    append(item.size(), [item](char* end) { return put(end, item); });
    return *this;
  }

  DiagnosticText& operator<<(char item) { return *this << std::string_view(&item, 1); }

  /// Flags as 1 or 0, floats in general notation with six significant digits.
  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
  DiagnosticText& operator<<(Number item)
  {
    constexpr std::size_t longestNumber = 24;  // of 64 bits; a float needs sixDigitsSize
    append(longestNumber, [item](char* end) {
      if constexpr (std::is_same_v<Number, float>)
        return writeSixDigits(end, item);
      else if constexpr (std::is_same_v<Number, bool>)
        return put(end, item ? "1" : "0");
      else
        return std::to_chars(end, end + longestNumber, item).ptr;
    });
    return *this;
  }

  /// Appends the text that `write` writes to the place it is given; `write` returns the end: for texts of many parts.
  ///
  /// \pre It writes no more than `size` characters.
  template <typename Write>
  void append(std::size_t size, Write write)
  {
    char* const first = _room(size);
    _size += static_cast<std::size_t>(write(first) - first);
  }

  std::string text() const { return {_first, _size}; }

private:
  /// Returns where the text goes on, with room for `size` more characters.
  char* _room(std::size_t size)
  {
    if (size > _capacity - _size)
      _grow(size);
    return _first + _size;
  }

  void _grow(std::size_t size)
  {
    const std::size_t capacity = 2 * (_capacity + size);
    std::unique_ptr<char[]> longer(new char[capacity]);  // NOLINT(modernize-avoid-c-arrays): of variable size
    std::memcpy(longer.get(), _first, _size);
    _long.swap(longer);
    _capacity = capacity;
    _first = _long.get();
  }

  std::array<char, 1000> _short;  // holds every text of an ordinary update without allocating
  std::unique_ptr<char[]> _long;  // NOLINT(modernize-avoid-c-arrays): holds a text that is too long for it
  char* _first = _short.data();
  std::size_t _size = 0;
  std::size_t _capacity = _short.size();
};

}  // namespace KV
