#pragma once

#include <skeigiot/recordings/labels.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns whether the first line names the columns onset and duration between tabs.
bool isBidsLabels(std::string_view text);

/// \throws Error for what is wrong in it.
Labels readBidsLabels(const std::string& path, const std::string& text);

}  // namespace KV::recordings
