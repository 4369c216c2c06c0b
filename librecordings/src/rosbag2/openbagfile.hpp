#pragma once

#include "rosbag2/bagfile.hpp"

#include <memory>
#include <string>

namespace KV::recordings
{

/// Returns whether a file with these first bytes (decompressed) is one of a bag of ROS 2.
bool looksLikeBagFile(const std::string& head);

/// Opens one file of a bag, of SQLite or of MCAP. A packed file is unpacked into a temporary file, which is removed at
/// the end.
///
/// \throws Error if the file cannot be read, or is not a bag file.
std::unique_ptr<BagFile> openBagFile(const std::string& path);

}  // namespace KV::recordings
