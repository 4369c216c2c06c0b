#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace KV::recordings
{

/// Returns the numbers of a text in which `separator` is between them; nothing if the text is anything else, or one of
/// the numbers is not finite.
inline std::vector<double> numbersOf(std::string_view text, std::string_view separator)
{
  std::vector<double> numbers;
  while (true)
  {
    const std::size_t end = std::min(text.find(separator), text.size());
    double number = 0.;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + end, number);
    if (error != std::errc() || rest != text.data() + end || !std::isfinite(number))
      return {};
    numbers.push_back(number);
    if (end == text.size())
      return numbers;
    text.remove_prefix(end + separator.size());
  }
}

}  // namespace KV::recordings
