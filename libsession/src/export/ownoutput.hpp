#pragma once

#include <string>

namespace KV::session
{

/// Returns whether this is the content of a file that this library wrote, and can write again: an export, an agreement,
/// an HTML page; or an empty file. `head` is its first 64 KiB, or all of it.
bool isOwnOutput(const std::string& head);

}  // namespace KV::session
