#pragma once

#include <skeigiot/recordings/labels.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns whether the first row names the columns of spans or tracks.
bool isCsvLabels(std::string_view text);

/// \throws Error for the first mistake in it.
Labels readCsvLabels(const std::string& path, const std::string& text);

}  // namespace KV::recordings
