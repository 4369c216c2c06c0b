#pragma once

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns the text if it is UTF-8. Otherwise each byte that is not ASCII becomes "?".
std::string utf8Of(std::string_view text);

}  // namespace KV::recordings
