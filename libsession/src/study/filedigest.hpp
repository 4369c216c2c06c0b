#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace KV::session
{

/// Returns the SHA-256 of the text.
std::array<std::uint8_t, 32> sha256(std::string_view text);

/// Returns the SHA-256 of the text in 64 hexadecimal digits.
std::string hexSha256(std::string_view text);

/// A digest of the contents of a file, or of a folder that is a recording.
struct FileDigest
{
  std::uintmax_t bytes = 0;   ///< its size, or the sum of those of its files
  std::int64_t modified = 0;  ///< [ns] since 1970, when it was last changed; the latest of its files
  std::string sha256;         ///< of its contents, as the program sha256sum prints it; empty: not computed
};

/// Returns size and time of the last change; false if there is no such file.
bool lookAtFile(const std::string& path, FileDigest& digest);

/// Returns also the SHA-256. That of a folder is made of the names and digests of its files.
///
/// \throws recordings::Error if it cannot be read.
FileDigest digestOfFile(const std::string& path);

}  // namespace KV::session
