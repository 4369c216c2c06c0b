#include "input/unpackedfile.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <zlib.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

#include <unistd.h>

namespace KV::recordings
{
namespace
{
constexpr std::int64_t mostBytes = std::int64_t{64} << 30U;  // more than any bag that somebody packs as one file
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

bool UnpackedFile::isNeededFor(const std::string& path)
{
  std::array<char, 2> magic{};
  std::ifstream(path, std::ios::binary).read(magic.data(), magic.size());
  return magic[0] == '\x1f' && magic[1] == '\x8b';
}

UnpackedFile::UnpackedFile(const std::string& path)
{
  std::string pattern = (std::filesystem::temp_directory_path() / "skeigiot-XXXXXX").string();
  _file = mkstemp(pattern.data());
  if (_file < 0)
    fail(path, std::string("cannot be unpacked into a temporary file: ") + std::strerror(errno));
  _path = pattern;
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
  const std::unique_ptr<gzFile_s, int (*)(gzFile)> packed(gzopen(source.c_str(), "rb"), gzclose);
  if (!packed)
    fail(source, std::string("cannot be opened: ") + std::strerror(errno));
  std::vector<char> piece(pieceSize);
  std::int64_t total = 0;
  int count = gzread(packed.get(), piece.data(), static_cast<unsigned int>(piece.size()));
  for (; count > 0; count = gzread(packed.get(), piece.data(), static_cast<unsigned int>(piece.size())))
  {
    total += count;
    if (total > mostBytes)
      fail(source, "holds more than " + std::to_string(mostBytes >> 30U) + " GiB: unpack it first");
    writeAll(_file, piece.data(), static_cast<std::size_t>(count), source);
  }
  int error = Z_OK;
  const char* const message = gzerror(packed.get(), &error);
  if (error == Z_BUF_ERROR)
    fail(source, "the compressed data end too early: the file was cut");
  if (error != Z_OK && error != Z_STREAM_END)
    fail(source, std::string("the compressed data are damaged: ") + message);
}

}  // namespace KV::recordings
