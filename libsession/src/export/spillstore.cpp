#include "export/spillstore.hpp"

#include <fcntl.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkostemp is not in the C++ header
#include <unistd.h>

#include <cerrno>

namespace KV::session
{

namespace
{

std::string nameOf(const std::string& folder)
{
  return "temporary file in " + folder;
}

/// Moves all bytes of a block; `move` gets the number of bytes moved before, and returns how many more it moved.
template <typename Move>
void moveAll(const std::string& folder, Move move)
{
  std::size_t done = 0;
  while (done < SpillStore::blockSize)
  {
    const ssize_t count = move(done);
    if (count > 0)
      done += static_cast<std::size_t>(count);
    else if (count == 0 || errno != EINTR)
      throw WriteError(nameOf(folder), count == 0 ? EIO : errno);
  }
}

off_t placeOf(SpillStore::Block block)
{
  return static_cast<off_t>(block * SpillStore::blockSize);
}

}  // namespace

SpillStore::~SpillStore()
{
  if (_fileDescriptor >= 0)
    ::close(_fileDescriptor);
}

SpillStore::Block SpillStore::keep(const char* bytes)
{
  const Block block = _takeFree();
  try
  {
    moveAll(_folder, [&](std::size_t done) {
      return ::pwrite(_fileDescriptor, bytes + done, blockSize - done, placeOf(block) + static_cast<off_t>(done));
    });
  }
  catch (const WriteError&)
  {
    release(block);
    throw;
  }
  return block;
}

void SpillStore::read(Block block, char* bytes) const
{
  moveAll(_folder, [&](std::size_t done) {
    return ::pread(_fileDescriptor, bytes + done, blockSize - done, placeOf(block) + static_cast<off_t>(done));
  });
}

void SpillStore::release(Block block)
{
  const std::lock_guard<std::mutex> lock(_mutex);
  _free.push_back(block);
}

SpillStore::Block SpillStore::_takeFree()
{
  const std::lock_guard<std::mutex> lock(_mutex);
  if (_fileDescriptor < 0)
  {
    std::string pattern = _folder + "/.skeigiot.XXXXXX";
    _fileDescriptor = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (_fileDescriptor < 0)
      throw WriteError(nameOf(_folder), errno);
    ::unlink(pattern.c_str());
  }
  if (_free.empty())
  {
    if (_free.capacity() <= _count)
      _free.reserve(2 * _count + 1);  // so that release() need not allocate
    return _count++;
  }
  const Block block = _free.back();
  _free.pop_back();
  return block;
}

}  // namespace KV::session
