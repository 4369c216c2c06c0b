#pragma once

#include "sixdigits.hpp"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace KV
{

/// A text that an operation composes while it works, and drops when it returns.
///
/// Force traces, update reports and memory reports are composed at each call and are deliberately never handed to the
/// log. Whoever wants to read one calls the overload that takes the text by reference.
///
/// Writes what a std::ostream in the classic locale with default formatting would, at a small part of its cost, which
/// an update pays once per force.
class DiagnosticText
{
public:
  DiagnosticText() = default;
  DiagnosticText(const DiagnosticText&) = delete;
  DiagnosticText& operator=(const DiagnosticText&) = delete;

  /// Makes the compiler compose the text even where it sees that nobody reads it.
  ~DiagnosticText() { asm volatile("" : : "r"(_short.data()) : "memory"); }

  DiagnosticText& operator<<(std::string_view item)
  {
    std::memcpy(_room(item.size()), item.data(), item.size());
    _size += item.size();
    return *this;
  }

  DiagnosticText& operator<<(char item) { return *this << std::string_view(&item, 1); }

  /// Flags as 1 or 0, floats in general notation with six significant digits.
  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
  DiagnosticText& operator<<(Number item)
  {
    constexpr std::size_t longestNumber = 24;
    char* const first = _room(longestNumber);
    char* end = first;
    if constexpr (std::is_same_v<Number, float>)
      end = writeSixDigits(first, item);
    else if constexpr (std::is_same_v<Number, bool>)
      *end++ = item ? '1' : '0';
    else
      end = std::to_chars(first, first + longestNumber, item).ptr;
    _size += static_cast<std::size_t>(end - first);
    return *this;
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
    std::string longer(2 * (_capacity + size), '\0');
    std::memcpy(longer.data(), _first, _size);
    _long.swap(longer);
    _first = _long.data();
    _capacity = _long.size();
  }

  std::array<char, 1000> _short;  // holds every text of an ordinary update, so that none allocates
  std::string _long;              // holds a text that has outgrown it
  char* _first = _short.data();
  std::size_t _size = 0;
  std::size_t _capacity = _short.size();
};

}  // namespace KV
