#pragma once

#include <cstddef>
#include <vector>

namespace KV::recordings
{

/// Unpacks the data of a message if zstd packed them, as in a bag with the compression mode "message": no message in
/// CDR begins with the mark of zstd.
///
/// \throws UnpackError if they are damaged, or unpack to more than `most` bytes.
void unpackMessage(std::vector<char>& data, std::size_t most);

}  // namespace KV::recordings
