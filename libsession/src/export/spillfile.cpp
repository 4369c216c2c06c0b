#include "export/spillfile.hpp"

#include <fcntl.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkostemp is not in the C++ header
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace KV::session
{

namespace
{

constexpr std::size_t pieceSize = std::size_t{64} << 10U;  // [bytes]

std::string nameOf(const std::string& folder)
{
  return "temporary file in " + folder;
}

}  // namespace

SpillFile::SpillFile(const std::string& folder)
{
  std::string pattern = folder + "/.skeigiot.XXXXXX";
  _fileDescriptor = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (_fileDescriptor < 0)
    throw WriteError(nameOf(folder), errno);
  ::unlink(pattern.c_str());
  _stream = std::make_unique<OutputStream>(_fileDescriptor, nameOf(folder));
}

SpillFile::~SpillFile()
{
  if (_fileDescriptor >= 0)
    ::close(_fileDescriptor);
}

void SpillFile::copyTo(std::ostream& target)
{
  _stream->flush();
  std::vector<char> piece(pieceSize);
  off_t offset = 0;
  for (;;)
  {
    const ssize_t count = ::pread(_fileDescriptor, piece.data(), piece.size(), offset);
    if (count == 0)
      return;
    if (count > 0)
      target.write(piece.data(), count);
    else if (errno != EINTR)
      throw WriteError("temporary file", errno);
    offset += count > 0 ? count : 0;
  }
}

}  // namespace KV::session
