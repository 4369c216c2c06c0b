#pragma once

#include <string>

namespace KV::recordings
{

/// Says what a file looks like that is of no known format, and what to do with it, such as "a spreadsheet of Excel:
/// save it as CSV". `head` is the beginning of the file, unpacked and without a byte order mark of UTF-8; it is not
/// empty.
std::string fileKind(const std::string& head);

}  // namespace KV::recordings
