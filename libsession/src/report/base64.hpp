#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace KV::session
{

/// Returns the bytes in base64, padded with "=".
std::string base64(std::string_view bytes);

/// Returns the numbers in base64 as they are in memory: little-endian on all machines that this library supports.
template <typename Number>
std::string base64(const std::vector<Number>& numbers)
{
  static_assert(std::is_arithmetic_v<Number>);
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the bytes of numbers
  return base64(std::string_view(reinterpret_cast<const char*>(numbers.data()), numbers.size() * sizeof(Number)));
}

}  // namespace KV::session
