#pragma once

#include <string>

namespace KV::tools
{

/// Returns the address of the video in a page: relative to the folder of the page, as a link has it, every byte that
/// has a meaning there escaped. A page on standard output, "-", counts as lying in the working directory.
///
/// \throws Error if there is no such file.
std::string addressOfVideo(const std::string& video, const std::string& page);

}  // namespace KV::tools
