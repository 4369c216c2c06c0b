#include "study/filedigest.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <nettle/sha2.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include <sys/stat.h>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;

class Sha256
{
public:
  Sha256() { sha256_init(&_context); }

  void add(const void* bytes, std::size_t count)
  {
    sha256_update(&_context, count, static_cast<const std::uint8_t*>(bytes));
  }

  std::array<std::uint8_t, 32> result()
  {
    std::array<std::uint8_t, 32> digest{};
    sha256_digest(&_context, digest.size(), digest.data());
    return digest;
  }

private:
  sha256_ctx _context{};
};

std::string hex(const std::array<std::uint8_t, 32>& bytes)
{
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes)
    text.append({digits[byte >> 4U], digits[byte & 15U]});
  return text;
}

std::string digestOfContents(const std::string& path)
{
  std::ifstream file(path, std::ios::binary);
  std::vector<char> bytes(1U << 18U);
  Sha256 digest;
  while (file)
  {
    recordings::InterruptionCheck::ask();
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    digest.add(bytes.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (!file.eof())
    throw recordings::Error({path, 0, {}}, std::string("cannot be read: ") + std::strerror(errno));
  return hex(digest.result());
}

/// The files of a folder in the order of their names; of a file, it alone.
std::vector<std::string> filesOf(const std::string& path)
{
  std::error_code error;
  if (!fs::is_directory(path, error))
    return {path};
  std::vector<std::string> files;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error))
    if (std::error_code ofEntry; entry->is_regular_file(ofEntry))
      files.push_back(entry->path().string());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::array<std::uint8_t, 32> sha256(std::string_view text)
{
  Sha256 digest;
  digest.add(text.data(), text.size());
  return digest.result();
}

std::string hexSha256(std::string_view text)
{
  return hex(sha256(text));
}

bool lookAtFile(const std::string& path, FileDigest& digest)
{
  digest = {};
  for (const std::string& file : filesOf(path))
  {
    struct stat status
    {};
    if (stat(file.c_str(), &status) != 0)
      return false;
    digest.bytes += static_cast<std::uintmax_t>(status.st_size);
    digest.modified = std::max(digest.modified,
                               static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec);
  }
  return true;
}

FileDigest digestOfFile(const std::string& path)
{
  FileDigest digest;
  if (!lookAtFile(path, digest))
    throw recordings::Error({path, 0, {}}, std::string("cannot be read: ") + std::strerror(errno));
  const std::vector<std::string> files = filesOf(path);
  if (files.size() == 1 && files.front() == path)
    digest.sha256 = digestOfContents(path);
  else
  {
    std::string list;
    for (const std::string& file : files)
      list += digestOfContents(file) + "  " + fs::path(file).filename().string() + "\n";
    digest.sha256 = hexSha256(list);
  }
  return digest;
}

}  // namespace KV::session
