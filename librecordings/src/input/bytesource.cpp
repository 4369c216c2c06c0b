#include "input/bytesource.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <istream>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace KV::recordings
{
namespace
{
constexpr unsigned int compressedBufferSize = 128U << 10U;
constexpr std::size_t largestPiece = std::size_t{1} << 20U;  // [bytes] that are unpacked at once
constexpr const char* isCut = "the compressed data end too early: the file was cut";
constexpr const char* isDamaged = "the compressed data are damaged: ";
constexpr std::array<Bytef, 2> gzipMagic = {0x1f, 0x8b};
constexpr int longestWait = 100;  // [ms] for a pipe, before the thread is asked whether to go on

std::filesystem::file_status statusOf(const std::string& path)
{
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::none)
    throw Error({path, 0, {}}, "cannot be opened: " + error.message());
  if (!std::filesystem::exists(status))
    throw Error({path, 0, {}}, "there is no such file");
  if (std::filesystem::is_directory(status))
    throw Error({path, 0, {}}, "is a folder, expected a file");
  return status;
}

std::size_t sizeOf(const std::string& path)
{
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(size);
}

/// Bytes as they are stored.
class StoredBytes
{
public:
  virtual ~StoredBytes() = default;

  /// Reads up to `count` bytes; returns how many, and 0 at the end or at a fault.
  virtual std::size_t read(char* bytes, std::size_t count) = 0;

  /// Says why the last read() found nothing; empty at the end.
  const std::string& fault() const { return _fault; }

  /// Returns how many bytes there are; 0 if that is not known.
  virtual std::size_t size() const = 0;

protected:
  std::string _fault;
};

class FileBytes : public StoredBytes
{
public:
  explicit FileBytes(const std::string& path)
    : _mustWait(!std::filesystem::is_regular_file(statusOf(path))),
      _size(sizeOf(path)),
      _file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
  {
    if (_file < 0)
      throw Error({path, 0, {}}, std::string("cannot be opened: ") + std::strerror(errno));
  }
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;
  ~FileBytes() override { ::close(_file); }

  std::size_t read(char* bytes, std::size_t count) override
  {
    for (;;)
    {
      InterruptionCheck::ask();
      if (_mustWait && !_isReady())
        continue;
      const ssize_t read = ::read(_file, bytes, count);
      if (read >= 0)
        return static_cast<std::size_t>(read);
      if (errno == EINTR || errno == EAGAIN)
        continue;
      _fault = std::string("cannot be read: ") + std::strerror(errno);
      return 0;
    }
  }

  std::size_t size() const override { return _size; }

private:
  /// Waits for a while; tells whether something can be read, or the end was reached.
  bool _isReady() const
  {
    pollfd descriptor{_file, POLLIN, 0};
    return ::poll(&descriptor, 1, longestWait) > 0;
  }

  bool _mustWait;     // for what writes into a pipe
  std::size_t _size;  // [bytes] 0 if unknown
  int _file;
};

class StreamBytes : public StoredBytes
{
public:
  explicit StreamBytes(std::istream& stream) : _stream(stream) {}

  std::size_t read(char* bytes, std::size_t count) override
  {
    InterruptionCheck::ask();
    try
    {
      _stream.read(bytes, static_cast<std::streamsize>(count));
    }
    catch (const std::exception&)
    {}  // as the caller asked of the stream; its state tells the same
    const auto read = static_cast<std::size_t>(_stream.gcount());
    if (read == 0 && _stream.bad())
      _fault = "the stream cannot be read";
    return read;
  }

  std::size_t size() const override { return 0; }

private:
  std::istream& _stream;
};

// Bytes that do not begin as gzip are taken as they are. Packed parts may follow each other, and zeros the last one, as
// tapes and disks pad files. Anything else behind a part is a fault: what stands there would be lost.
class UnpackedBytes : public ByteSource
{
public:
  explicit UnpackedBytes(std::unique_ptr<StoredBytes> stored)
    : _stored(std::move(stored)), _packed(compressedBufferSize)
  {}
  UnpackedBytes(const UnpackedBytes&) = delete;
  UnpackedBytes& operator=(const UnpackedBytes&) = delete;
  ~UnpackedBytes() override { inflateEnd(&_inflater); }

  std::size_t read(char* bytes, std::size_t count) override
  {
    if (!_begun)
      _begin();
    if (!_isPacked)
      return _copy(bytes, count);
    InterruptionCheck::ask();  // few stored bytes may hold much
    return _unpack(bytes, std::min(count, largestPiece));
  }

  std::string fault() const override { return _fault.empty() ? _stored->fault() : _fault; }

  double progress() const override
  {
    const std::size_t size = _stored->size();
    return size == 0 ? 0.0 : std::min(1.0, static_cast<double>(_place()) / static_cast<double>(size));
  }

private:
  void _begin()
  {
    _begun = true;
    while (_inflater.avail_in < gzipMagic.size() && _fetch())
    {}
    _isPacked = _beginsPart();
    if (_isPacked)
      _inPart = inflateInit2(&_inflater, 15 + 16) == Z_OK;
    if (_isPacked && !_inPart)
      _fault = "there is not enough memory to unpack it";
  }

  bool _beginsPart() const
  {
    return _inflater.avail_in >= gzipMagic.size() && std::equal(gzipMagic.begin(), gzipMagic.end(), _inflater.next_in);
  }

  // Returns how many stored bytes were taken in.
  std::uint64_t _place() const { return _fetched - _inflater.avail_in; }

  // Reads on behind the bytes that wait to be unpacked; false if there are no more.
  bool _fetch()
  {
    std::copy_n(_inflater.next_in, _inflater.avail_in, _packed.begin());
    const std::size_t count =
        _read(reinterpret_cast<char*>(_packed.data()) + _inflater.avail_in, _packed.size() - _inflater.avail_in);
    _inflater.next_in = _packed.data();
    _inflater.avail_in += static_cast<uInt>(count);
    return count > 0;
  }

  std::size_t _read(char* bytes, std::size_t count)
  {
    const std::size_t read = _stored->read(bytes, count);
    _fetched += read;
    return read;
  }

  std::size_t _copy(char* bytes, std::size_t count)
  {
    if (_inflater.avail_in == 0)
      return _read(bytes, count);
    const std::size_t copied = std::min(count, static_cast<std::size_t>(_inflater.avail_in));
    std::memcpy(bytes, _inflater.next_in, copied);
    _inflater.next_in += copied;
    _inflater.avail_in -= static_cast<uInt>(copied);
    return copied;
  }

  std::size_t _unpack(char* bytes, std::size_t count)
  {
    _inflater.next_out = reinterpret_cast<Bytef*>(bytes);
    _inflater.avail_out = static_cast<uInt>(count);
    while (fault().empty() && _inPart && _inflater.avail_out == count)
      _unpackOn();
    return count - _inflater.avail_out;
  }

  void _unpackOn()
  {
    if (_inflater.avail_in == 0 && !_fetch())
    {
      if (fault().empty())
        _fault = isCut;
      return;
    }
    const int result = inflate(&_inflater, Z_NO_FLUSH);
    if (result == Z_STREAM_END)
      _beginNextPart();
    else if (result != Z_OK)
      _fault = std::string(isDamaged) + (_inflater.msg != nullptr ? _inflater.msg : "no gzip");
  }

  void _beginNextPart()
  {
    _inPart = false;
    if (!_skipZeros())
      return;
    if (_inflater.avail_in < gzipMagic.size())
      _fetch();
    _inPart = _beginsPart();
    if (_inPart)
      inflateReset(&_inflater);
    else
      _fault =
          "other data follow the compressed data, at byte " + std::to_string(_place()) + ": the rest cannot be read";
  }

  // Goes to the next byte that is not 0; false at the end.
  bool _skipZeros()
  {
    while (_inflater.avail_in > 0 || _fetch())
    {
      if (*_inflater.next_in != 0)
        return true;
      ++_inflater.next_in;
      --_inflater.avail_in;
    }
    return false;
  }

  std::unique_ptr<StoredBytes> _stored;
  std::vector<Bytef> _packed;  // what is fetched and not unpacked yet stands in it
  std::uint64_t _fetched = 0;  // [bytes] of what is stored
  z_stream _inflater{};
  bool _begun = false;
  bool _isPacked = false;
  bool _inPart = false;  // of the packed parts
  std::string _fault;
};

}  // namespace

std::unique_ptr<ByteSource> bytesOfFile(const std::string& path)
{
  return std::make_unique<UnpackedBytes>(std::make_unique<FileBytes>(path));
}

std::unique_ptr<ByteSource> bytesOfStream(std::istream& stream, const std::string& name)
{
  if (stream.fail())
    throw Error({name, 0, {}}, "the stream cannot be read");
  return std::make_unique<UnpackedBytes>(std::make_unique<StreamBytes>(stream));
}

}  // namespace KV::recordings
