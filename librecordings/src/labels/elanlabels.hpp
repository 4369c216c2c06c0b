#pragma once

#include <skeigiot/recordings/labels.hpp>

#include <string>
#include <string_view>

namespace KV::recordings
{

/// Tells whether the text is a document of ELAN.
bool isElanLabels(std::string_view text);

/// \throws Error for what is wrong in it.
Labels readElanLabels(const std::string& path, const std::string& text);

}  // namespace KV::recordings
