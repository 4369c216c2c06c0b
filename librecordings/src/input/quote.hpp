#pragma once

#include <string>
#include <string_view>

namespace tools
{

/// Returns the text in single quotes for a message: one line, printable, and shortened if it is long.
std::string quote(std::string_view text);

}  // namespace tools
