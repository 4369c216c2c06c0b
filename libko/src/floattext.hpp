#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ko
{

/// Returns the number with as few digits as identify it; "NaN", "Infinity" or "-Infinity" if it is not finite.
std::string floatText(double number);

/// Returns the number for "NaN", "Infinity" and "-Infinity", and nothing for any other text.
std::optional<double> nonFiniteFromText(std::string_view text);

/// Returns the double with the shortest text of the float: 0.1 for 0.1f. The double rounds to the float.
double shortestDouble(float number);

}  // namespace ko
