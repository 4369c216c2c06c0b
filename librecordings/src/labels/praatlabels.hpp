#pragma once

#include <skeigiot/recordings/labels.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Tells whether the text is a TextGrid.
bool isPraatLabels(std::string_view text);

/// \throws Error for what is wrong in it.
Labels readPraatLabels(const std::string& path, const std::string& text);

}  // namespace KV::recordings
