#include "input/bytesource.hpp"

#include "input/unpacker.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <exception>
#include <filesystem>
#include <istream>
#include <string_view>
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
constexpr std::size_t compressedBufferSize = std::size_t{128} << 10U;
constexpr std::size_t largestPiece = std::size_t{1} << 20U;  // [bytes] that are unpacked at once
constexpr const char* isCut = "the compressed data end too early: the file was cut";
constexpr const char* isDamaged = "the compressed data are damaged: ";
constexpr int longestWait = 100;  // [ms] for a pipe, before the thread may be interrupted

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

/// Bytes in their stored form.
class StoredBytes
{
public:
  virtual ~StoredBytes() = default;

  /// Reads up to `count` bytes; returns the number read, and 0 at the end or at a fault.
  virtual std::size_t read(char* bytes, std::size_t count) = 0;

  /// Explains why the last read() returned nothing; empty at the end.
  const std::string& fault() const { return _fault; }

  /// Returns the number of bytes; 0 if it is unknown.
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
  /// Waits for a while; returns whether something can be read, or the end was reached.
  bool _isReady() const
  {
    pollfd descriptor{_file, POLLIN, 0};
    return ::poll(&descriptor, 1, longestWait) > 0;
  }

  bool _mustWait;     // for the program that writes into a pipe
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
    {}  // as the caller asked of the stream; its state has the error, too
    const auto read = static_cast<std::size_t>(_stream.gcount());
    if (read == 0 && _stream.bad())
      _fault = "the stream cannot be read";
    return read;
  }

  std::size_t size() const override { return 0; }

private:
  std::istream& _stream;
};

/// One method of compression.
struct Packing
{
  std::string_view name;
  std::string_view magic;  // at the begin of each part
  std::unique_ptr<Unpacker> (*makeUnpacker)();
};

constexpr std::array<Packing, 2> packings = {{{"gzip", gzipMagic, gzipUnpacker}, {"zstd", zstdMagic, zstdUnpacker}}};

// Bytes that do not begin as gzip or zstd are read unchanged. Packed parts may follow each other, and zeros the last
// one, as tapes and disks pad files. Anything else after a part is a fault, since it would be lost.
class UnpackedBytes : public ByteSource
{
public:
  explicit UnpackedBytes(std::unique_ptr<StoredBytes> stored)
    : _stored(std::move(stored)), _packed(compressedBufferSize)
  {}
  UnpackedBytes(const UnpackedBytes&) = delete;
  UnpackedBytes& operator=(const UnpackedBytes&) = delete;

  std::size_t read(char* bytes, std::size_t count) override
  {
    if (!_begun)
      _begin();
    if (_unpacker == nullptr)
      return _copy(bytes, count);
    InterruptionCheck::ask();  // few stored bytes may unpack to many
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
    while (_waiting.size() < longestPackedMagic && _fetch())
    {}
    for (const Packing& packing : packings)
      if (_beginsWith(packing.magic))
      {
        _packing = &packing;
        _unpacker = packing.makeUnpacker();
        _inPart = true;
      }
  }

  bool _beginsWith(std::string_view magic) const { return _waiting.substr(0, magic.size()) == magic; }

  // Returns the number of stored bytes that were read.
  std::uint64_t _place() const { return _fetched - _waiting.size(); }

  // Reads bytes after those that wait to be unpacked; false if there are no more.
  bool _fetch()
  {
    std::copy(_waiting.begin(), _waiting.end(), _packed.begin());
    const std::size_t count = _read(_packed.data() + _waiting.size(), _packed.size() - _waiting.size());
    _waiting = {_packed.data(), _waiting.size() + count};
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
    if (_waiting.empty())
      return _read(bytes, count);
    const std::size_t copied = std::min(count, _waiting.size());
    std::memcpy(bytes, _waiting.data(), copied);
    _waiting.remove_prefix(copied);
    return copied;
  }

  std::size_t _unpack(char* bytes, std::size_t count)
  {
    std::size_t made = 0;
    while (fault().empty() && _inPart && made == 0)
      made = _unpackOn(bytes, count);
    return made;
  }

  std::size_t _unpackOn(char* bytes, std::size_t count)
  {
    const bool isLast = _waiting.empty() && !_fetch();
    if (!fault().empty())
      return 0;
    try
    {
      const Unpacker::Progress progress = _unpacker->unpack(_waiting, bytes, count);
      _waiting.remove_prefix(progress.taken);
      if (progress.ended)
        _beginNextPart();
      else if (isLast && progress.made == 0)
        _fault = isCut;
      else if (progress.taken + progress.made == 0)
        throw UnpackError("they do not go on");
      return progress.made;
    }
    catch (const UnpackError& error)
    {
      _fault = std::string(isDamaged) + error.what();
      return 0;
    }
  }

  void _beginNextPart()
  {
    _inPart = false;
    if (!_skipZeros())
      return;
    if (_waiting.size() < longestPackedMagic)
      _fetch();
    _inPart = _beginsWith(_packing->magic);
    if (_inPart)
      _unpacker->restart();
    else
      _fault =
          "other data follow the compressed data, at byte " + std::to_string(_place()) + ": the rest cannot be read";
  }

  // Skips to the next byte that is not 0; false at the end.
  bool _skipZeros()
  {
    while (!_waiting.empty() || _fetch())
    {
      if (_waiting.front() != 0)
        return true;
      _waiting.remove_prefix(1);
    }
    return false;
  }

  std::unique_ptr<StoredBytes> _stored;
  std::vector<char> _packed;   // holds bytes that are fetched and not unpacked yet
  std::string_view _waiting;   // to be unpacked, in _packed
  std::uint64_t _fetched = 0;  // [bytes] of the stored form
  const Packing* _packing = nullptr;
  std::unique_ptr<Unpacker> _unpacker;  // null: the bytes are not packed
  bool _begun = false;
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
