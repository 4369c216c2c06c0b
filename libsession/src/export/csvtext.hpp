#pragma once

#include <string>
#include <string_view>

namespace KV::session
{

/// Appends the text as a field of comma-separated values: in quotes if it holds a comma, a quote or a line end.
void appendCsvText(std::string& line, std::string_view text);

}  // namespace KV::session
