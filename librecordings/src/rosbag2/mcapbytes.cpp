#include "rosbag2/mcapbytes.hpp"

#include "input/unpacker.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace KV::recordings
{

McapInput::McapInput(const std::string& path, const std::string& name)
  : _name(name), _file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
  struct stat status
  {};
  if (_file < 0 || ::fstat(_file, &status) != 0)
  {
    const int reason = errno;
    if (_file >= 0)
      ::close(_file);
    throw Error({_name, 0, {}}, std::string("cannot be opened: ") + std::strerror(reason));
  }
  _size = static_cast<std::uint64_t>(status.st_size);
}

McapInput::~McapInput()
{
  ::close(_file);
}

std::size_t McapInput::readAt(std::uint64_t place, char* bytes, std::size_t count) const
{
  for (;;)
  {
    InterruptionCheck::ask();
    const ssize_t read = ::pread(_file, bytes, count, static_cast<off_t>(place));
    if (read > 0)
      return static_cast<std::size_t>(read);
    if (read < 0 && errno == EINTR)
      continue;
    throw Error({_name, 0, {}}, read == 0 ? std::string("has become shorter while it was read")
                                          : std::string("cannot be read: ") + std::strerror(errno));
  }
}

std::size_t McapBytes::read(char* bytes, std::size_t count)
{
  std::size_t total = 0;
  while (total < count)
  {
    const std::size_t copied = peek().copy(bytes + total, count - total);
    if (copied == 0)
      break;
    take(copied);
    total += copied;
  }
  return total;
}

std::uint64_t McapBytes::skip(std::uint64_t count)
{
  std::uint64_t total = 0;
  while (total < count)
  {
    if (!_isSummed && _buffered.empty() && _skip(count - total))
    {
      _place += count - total;
      return count;
    }
    const auto skipped = static_cast<std::size_t>(std::min<std::uint64_t>(count - total, peek().size()));
    if (skipped == 0)
      break;
    take(skipped);
    total += skipped;
  }
  return total;
}

std::string_view McapBytes::peek()
{
  if (_buffered.empty())
    _buffered = {_buffer.data(), _fill(_buffer.data(), _buffer.size())};
  return _buffered;
}

void McapBytes::take(std::size_t count)
{
  if (_isSummed)
    _checksum =
        static_cast<std::uint32_t>(::crc32_z(_checksum, reinterpret_cast<const Bytef*>(_buffered.data()), count));
  _buffered.remove_prefix(count);
  _place += count;
}

McapStoredBytes::McapStoredBytes(const McapInput& input, std::uint64_t begin, std::uint64_t count)
  : _input(input), _next(begin), _end(begin + count)
{}

std::size_t McapStoredBytes::_fill(char* bytes, std::size_t count)
{
  if (_next == _end)
    return 0;
  const std::size_t read =
      _input.readAt(_next, bytes, static_cast<std::size_t>(std::min<std::uint64_t>(_end - _next, count)));
  _next += read;
  return read;
}

bool McapStoredBytes::_skip(std::uint64_t count)
{
  if (count > _end - _next)
    return false;
  _next += count;
  return true;
}

McapUnpackedBytes::McapUnpackedBytes(const McapInput& input, std::uint64_t begin, std::uint64_t count,
                                     std::unique_ptr<Unpacker> unpacker)
  : _stored(input, begin, count), _unpacker(std::move(unpacker))
{}

McapUnpackedBytes::~McapUnpackedBytes() = default;

std::size_t McapUnpackedBytes::_fill(char* bytes, std::size_t count)
{
  try
  {
    while (!_ended)
    {
      InterruptionCheck::ask();  // few packed bytes may unpack to many
      const Unpacker::Progress progress = _unpacker->unpack(_stored.peek(), bytes, count);
      _stored.take(progress.taken);
      _ended = progress.ended || progress.taken + progress.made == 0;
      if (progress.made > 0)
        return progress.made;
    }
    return 0;
  }
  catch (const UnpackError& error)
  {
    throw McapError(std::string("its compressed data are damaged: ") + error.what());
  }
}

}  // namespace KV::recordings
