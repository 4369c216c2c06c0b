#pragma once

#include <filesystem>

namespace benchmarks
{

/// Plays every recording in the folder, or the one in the file, and writes the fingerprint of all states to standard
/// output. Writes on standard error which file was not read, and why.
void writeDigestsOfRecordings(const std::filesystem::path& path);

}  // namespace benchmarks
