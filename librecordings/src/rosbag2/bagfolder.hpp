#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// Returns whether the path is the folder of a bag of ROS 2.
bool isRosbagFolder(const std::string& path);

/// The files of a bag.
struct BagFiles
{
  std::vector<std::string> paths;
  std::vector<std::string> warnings;
};

/// Finds the files of a bag: the one at `path`; of a folder, those that its metadata.yaml lists, or else all whose
/// names look like files of a bag. All are in the folder itself.
///
/// \throws Error if no file is found.
BagFiles filesOfBag(const std::string& path);

/// Returns the names of the files that a metadata.yaml lists, without folders; empty if it lists no file.
///
/// \throws std::runtime_error with the reason if it cannot be read.
std::vector<std::string> filesListedIn(std::string_view metadata);

}  // namespace KV::recordings
