#pragma once

#include <cstddef>
#include <string>

namespace KV::tools
{

/// Breaks the text at blanks so that each line takes at most that many columns, lines after the first with their
/// indentation. A longer word stays whole. Text from outside is shown as by shown().
std::string wrapped(const std::string& text, std::size_t width, std::size_t indentation);

/// Returns how many columns the UTF-8 text takes in a terminal, if each character is one column wide.
std::size_t displayWidth(const std::string& text);

/// Pads the text with blanks to that width, after or before it; a wider text stays whole.
std::string padRight(const std::string& text, std::size_t width);
std::string padLeft(const std::string& text, std::size_t width);

}  // namespace KV::tools
