#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ko
{

/// Returns the number with as few digits as give it back; "NaN", "Infinity" or "-Infinity" if it is not finite.
std::string floatText(double number);

/// Returns what "NaN", "Infinity" and "-Infinity" stand for, and nothing for any other text.
std::optional<double> nonFiniteFromText(std::string_view text);

/// Returns the double that is written with as few digits as the float needs: 0.1 for 0.1f. It rounds to the float.
double shortestDouble(float number);

}  // namespace ko
