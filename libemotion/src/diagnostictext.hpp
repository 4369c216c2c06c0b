#pragma once

#include <boost/container/small_vector.hpp>

#include <array>
#include <charconv>
#include <cstddef>
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
  DiagnosticText& operator<<(std::string_view item)
  {
    _characters.insert(_characters.end(), item.begin(), item.end());
    return *this;
  }

  DiagnosticText& operator<<(char item) { return *this << std::string_view(&item, 1); }

  /// Flags as 1 or 0, floating-point numbers in general notation with six significant digits.
  template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
  DiagnosticText& operator<<(Number item)
  {
    std::array<char, 32> digits;  // NOLINT(cppcoreguidelines-pro-type-member-init): written before it is read
    char* const first = digits.data();
    char* const last = first + digits.size();
    std::to_chars_result end{};
    if constexpr (std::is_same_v<Number, bool>)
      end = std::to_chars(first, last, static_cast<int>(item));
    else if constexpr (std::is_floating_point_v<Number>)
      end = std::to_chars(first, last, item, std::chars_format::general, 6);
    else
      end = std::to_chars(first, last, item);
    return *this << std::string_view(first, static_cast<std::size_t>(end.ptr - first));
  }

  std::string text() const { return {_characters.begin(), _characters.end()}; }

private:
  boost::container::small_vector<char, 256> _characters;  // without an allocation for any text about a single force
};

}  // namespace KV
