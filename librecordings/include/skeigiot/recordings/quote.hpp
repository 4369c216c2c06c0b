#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns the text in single quotes for a message: one line, printable, and shortened if it is long.
SKEIGIOT_API std::string quote(std::string_view text);

/// Returns the text without quotes, for a name in a message; shortened in the same way.
SKEIGIOT_API std::string shortened(std::string_view text);

}  // namespace KV::recordings
