#pragma once

#include <string>

namespace KV::tools
{

/// Returns the address of the video for a page: relative to the folder of the page, in the form of a link, with every
/// special character escaped. A page on standard output, "-", counts as a file in the working directory.
///
/// \throws Error if there is no such file.
std::string addressOfVideo(const std::string& video, const std::string& page);

}  // namespace KV::tools
