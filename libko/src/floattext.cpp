#include "floattext.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace ko
{

namespace
{

using Digits = std::array<char, 32>;  // the shortest text of a double has at most 24 characters

template <typename T>
std::string_view shortest(T number, Digits& digits)
{
  const std::to_chars_result result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  return {digits.data(), static_cast<std::size_t>(result.ptr - digits.data())};
}

}  // namespace

std::string floatText(double number)
{
  if (std::isnan(number))
    return "NaN";
  if (std::isinf(number))
    return number > 0 ? "Infinity" : "-Infinity";
  Digits digits;
  return std::string(shortest(number, digits));
}

std::optional<double> nonFiniteFromText(std::string_view text)
{
  if (text == "NaN")
    return std::numeric_limits<double>::quiet_NaN();
  if (text == "Infinity")
    return std::numeric_limits<double>::infinity();
  if (text == "-Infinity")
    return -std::numeric_limits<double>::infinity();
  return std::nullopt;
}

double shortestDouble(float number)
{
  Digits digits;
  const std::string_view text = shortest(number, digits);
  double nearest = 0;
  std::from_chars(text.data(), text.data() + text.size(), nearest);
  // Rounded twice, 7.038531e-26f (and no other float) would become its neighbour, so it gets all digits of a double.
  return static_cast<float>(nearest) == number ? nearest : static_cast<double>(number);
}

}  // namespace ko
