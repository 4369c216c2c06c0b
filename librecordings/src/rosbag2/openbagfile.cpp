#include "rosbag2/openbagfile.hpp"

#include "input/filehead.hpp"
#include "input/unpackedfile.hpp"
#include "rosbag2/mcapfile.hpp"
#include "rosbag2/mcaprecords.hpp"
#include "rosbag2/rosbagdatabase.hpp"

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::string_view databaseMagic("SQLite format 3\0", 16);
constexpr std::size_t longestMagic = 16;

// Files of later versions of MCAP are recognised, and refused.
constexpr std::string_view anyMcapMagic("\x89MCAP", 5);

bool begins(std::string_view head, std::string_view magic)
{
  return head.substr(0, magic.size()) == magic;
}

// The unpacking of a pipe without an end would never finish.
void expectFile(const std::string& path)
{
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error))
    throw Error({path, 0, {}}, "is no regular file, which the files of a bag must be");
  const auto size = std::filesystem::file_size(path, error);
  if (error || size == 0)
    throw Error({path, 0, {}}, "the file is empty");
}

}  // namespace

bool looksLikeBagFile(const std::string& head)
{
  return begins(head, databaseMagic) || begins(head, anyMcapMagic);
}

std::unique_ptr<BagFile> openBagFile(const std::string& path)
{
  expectFile(path);
  std::unique_ptr<const UnpackedFile> unpacked;
  if (!UnpackedFile::packingOf(path).empty())
    unpacked = std::make_unique<const UnpackedFile>(path);
  if (begins(headOfFile(unpacked ? unpacked->path() : path, longestMagic), anyMcapMagic))
    return std::make_unique<McapFile>(path, std::move(unpacked));
  if (unpacked && !unpacked->fault().empty())
    throw Error({path, 0, {}}, unpacked->fault());
  return std::make_unique<RosbagDatabase>(path, std::move(unpacked));
}

}  // namespace KV::recordings
