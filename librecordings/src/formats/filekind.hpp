#pragma once

#include <string>

namespace KV::recordings
{

/// Describes the kind of a file of no known format, and the remedy, such as "a spreadsheet of Excel: save it
/// as CSV". `head` is the beginning of the file, unpacked and without a byte order mark of UTF-8; it is not
/// empty.
std::string fileKind(const std::string& head);

}  // namespace KV::recordings
