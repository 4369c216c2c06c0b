#pragma once

#include <skeigiot/recordings/labels.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns whether the first line begins with two numbers between tabs.
bool isAudacityLabels(std::string_view text);

/// \throws Error for the first mistake in it.
Labels readAudacityLabels(const std::string& path, const std::string& text);

}  // namespace KV::recordings
