#pragma once

#include <string_view>

namespace KV::recordings
{

/// Tells whether the text is well-formed UTF-8.
bool isUtf8(std::string_view text);

}  // namespace KV::recordings
