#pragma once

#include "snapshot.hpp"

#include <cstddef>
#include <string>

namespace tools
{

/// Returns the time as "m:ss.s", or "h:mm:ss.s" from one hour on, rounded to that many decimals (0 to 3).
std::string clockText(Duration time, int decimals = 1);

/// Returns the number with a sign and two decimals: "+0.41", "-0.02", " 0.00".
std::string signedNumber(double value);

/// Returns the number with two decimals.
std::string plainNumber(double value);

/// Returns the share in [0, 1] as "42 %", and "<1 %" or ">99 %" where rounding would claim none or all.
std::string percentage(double share);

/// Returns "1 update", "2 updates": the noun takes an s unless there is exactly one.
std::string counted(std::size_t count, const std::string& noun);

/// Breaks the text at blanks so that each line takes at most that many columns, lines after the first with their
/// indentation. A word that is longer stays whole.
std::string wrapped(const std::string& text, std::size_t width, std::size_t indentation);

/// Returns how many columns the UTF-8 text takes in a terminal, each character being one column wide.
std::size_t displayWidth(const std::string& text);

/// Fills the text with blanks up to that width, behind or before it; a wider text stays whole.
std::string padRight(const std::string& text, std::size_t width);
std::string padLeft(const std::string& text, std::size_t width);

}  // namespace tools
