#pragma once

#include <string>
#include <vector>

namespace KV::session
{

/// Returns the files below a folder, relative to it and in the order of their names. A bag is one file; hidden files
/// and folders are left out, and so are SQLite databases of results.
///
/// \throws recordings::Error if the folder, or one in it, cannot be read.
std::vector<std::string> studyFilesIn(const std::string& folder);

/// Returns the name of a folder, also of "." and of one that is written with a slash at its end.
std::string nameOfFolder(const std::string& folder);

/// Returns whether the name of the file is that of labels for sure: those of ELAN and Praat.
bool isNamedAsLabels(const std::string& path);

}  // namespace KV::session
