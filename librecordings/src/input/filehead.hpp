#pragma once

#include <cstddef>
#include <string>

namespace KV::recordings
{

/// Returns the first bytes of a file, as they are stored; fewer than `count` if the file is shorter.
///
/// \throws Error if it cannot be opened or read. A stream of the standard library would not say so.
std::string headOfFile(const std::string& path, std::size_t count);

}  // namespace KV::recordings
