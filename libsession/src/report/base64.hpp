#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace KV::session
{

/// Returns the bytes in base64, filled up with "=".
std::string base64(std::string_view bytes);

/// Returns the numbers in base64 as they lie in memory, which is little-endian wherever this library runs.
template <typename Number>
std::string base64(const std::vector<Number>& numbers)
{
  static_assert(std::is_arithmetic_v<Number>);
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the bytes of numbers
  return base64(std::string_view(reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(Number)));
}

}  // namespace KV::session
