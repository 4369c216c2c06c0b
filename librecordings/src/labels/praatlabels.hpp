#pragma once

#include <skeigiot/recordings/labels.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Returns whether the text is a TextGrid.
bool isPraatLabels(std::string_view text);

/// \throws Error for the first mistake in it.
Labels readPraatLabels(const std::string& path, const std::string& text);

}  // namespace KV::recordings
