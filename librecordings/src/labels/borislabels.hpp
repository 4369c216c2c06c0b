#pragma once

#include <skeigiot/recordings/labels.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns whether the text has the columns of events, at its beginning or below a preamble.
bool isBorisLabels(std::string_view text);

/// \throws Error for the first mistake in it.
Labels readBorisLabels(const std::string& path, const std::string& text);

}  // namespace KV::recordings
