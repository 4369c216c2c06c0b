#include "input/unpackedfile.hpp"

#include "input/bytesource.hpp"
#include "input/filehead.hpp"
#include "input/unpacker.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include <unistd.h>

namespace KV::recordings
{
namespace
{
constexpr std::size_t pieceSize = std::size_t{256} << 10U;

[[noreturn]] void fail(const std::string& path, const std::string& what)
{
  throw Error({path, 0, {}}, what);
}

void writeAll(int file, const char* bytes, std::size_t count, const std::string& source)
{
  while (count > 0)
  {
    const ssize_t written = ::write(file, bytes, count);
    if (written < 0 && errno == EINTR)
      continue;
    if (written < 0)
      fail(source, std::string("cannot be unpacked into a temporary file: ") + std::strerror(errno));
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
}

}  // namespace

std::string UnpackedFile::packingOf(const std::string& path)
{
  const std::string head = headOfFile(path, longestPackedMagic);
  if (head.compare(0, gzipMagic.size(), gzipMagic) == 0)
    return "gzip";
  return head == zstdMagic ? "zstd" : "";
}

UnpackedFile::UnpackedFile(const std::string& path) : _packing(packingOf(path))
{
  std::string pattern = (std::filesystem::temp_directory_path() / "skeigiot-XXXXXX").string();
  _file = mkstemp(pattern.data());
  if (_file < 0)
    fail(path, std::string("cannot be unpacked into a temporary file: ") + std::strerror(errno));
  _path = std::move(pattern);
  try
  {
    _unpack(path);
  }
  catch (...)
  {
    close(_file);
    unlink(_path.c_str());
    throw;
  }
}

UnpackedFile::~UnpackedFile()
{
  close(_file);
  unlink(_path.c_str());
}

void UnpackedFile::_unpack(const std::string& source)
{
  const std::uintmax_t most =
      limits::mostUnpackedPerByte * std::filesystem::file_size(source) + limits::mostUnpackedOfAnyBag;
  const std::unique_ptr<ByteSource> bytes = bytesOfFile(source);
  std::vector<char> piece(pieceSize);
  std::uintmax_t total = 0;
  while (const std::size_t count = bytes->read(piece.data(), piece.size()))
  {
    total += count;
    if (total > most)
      fail(source, "unpacks to more than " + std::to_string(most / limits::mebibyte) + " MiB, which is " +
                       std::to_string(limits::mostUnpackedPerByte) + " times its size and " +
                       std::to_string(limits::mostUnpackedOfAnyBag / limits::mebibyte) +
                       " MiB: if you trust it, unpack it yourself");
    writeAll(_file, piece.data(), count, source);
  }
  _fault = bytes->fault();
}

}  // namespace KV::recordings
