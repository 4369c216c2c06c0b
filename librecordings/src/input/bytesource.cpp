#include "input/bytesource.hpp"

#include <skeigiot/recordings/error.hpp>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <istream>
#include <system_error>
#include <vector>

namespace KV::recordings
{
namespace
{
constexpr unsigned int compressedBufferSize = 128U << 10U;
constexpr const char* isCut = "the compressed data end too early: the file was cut";
constexpr const char* isDamaged = "the compressed data are damaged: ";
constexpr std::array<Bytef, 2> gzipMagic = {0x1f, 0x8b};

void refuseWhatIsNoFile(const std::string& path)
{
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status))
    throw Error({path, 0, {}}, "there is no such file");
  if (std::filesystem::is_directory(status))
    throw Error({path, 0, {}}, "is a folder, expected a file");
}

std::size_t sizeOf(const std::string& path)
{
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(size);
}

class FileBytes : public ByteSource
{
public:
  explicit FileBytes(const std::string& path) : _size(sizeOf(path))
  {
    refuseWhatIsNoFile(path);
    errno = 0;
    _file.reset(gzopen(path.c_str(), "rb"));
    if (!_file)
      throw Error({path, 0, {}}, std::string("cannot be opened: ") + std::strerror(errno));
    gzbuffer(_file.get(), compressedBufferSize);
  }

  std::size_t read(char* bytes, std::size_t count) override
  {
    const int read = gzread(_file.get(), bytes, static_cast<unsigned int>(count));
    return read > 0 ? static_cast<std::size_t>(read) : 0;
  }

  std::string fault() const override
  {
    int error = Z_OK;
    const char* const message = gzerror(_file.get(), &error);
    if (error == Z_BUF_ERROR)
      return isCut;
    if (error == Z_ERRNO)
      return std::string("cannot be read: ") + std::strerror(errno);
    if (error != Z_OK && error != Z_STREAM_END)
      return std::string(isDamaged) + message;
    return {};
  }

  double progress() const override
  {
    if (_size == 0)
      return 0.0;
    const auto offset = gzoffset(_file.get());
    return offset < 0 ? 0.0 : std::min(1.0, static_cast<double>(offset) / static_cast<double>(_size));
  }

private:
  struct Close
  {
    void operator()(gzFile_s* file) const { gzclose(file); }
  };

  std::size_t _size;  // [bytes] of the file as it is stored, 0 if unknown
  std::unique_ptr<gzFile_s, Close> _file;
};

// Decides as gzread() does: what does not begin as gzip is taken as it is, packed parts may follow each other, and
// anything else behind them is left out.
class StreamBytes : public ByteSource
{
public:
  explicit StreamBytes(std::istream& stream) : _stream(stream), _packed(compressedBufferSize) {}
  StreamBytes(const StreamBytes&) = delete;
  StreamBytes& operator=(const StreamBytes&) = delete;
  ~StreamBytes() override { inflateEnd(&_inflater); }

  std::size_t read(char* bytes, std::size_t count) override
  {
    if (!_begun)
      _begin();
    return _isPacked ? _unpack(bytes, count) : _copy(bytes, count);
  }

  std::string fault() const override { return _fault; }
  double progress() const override { return 0.0; }

private:
  void _begin()
  {
    _begun = true;
    _isPacked = _fetch() && _beginsPart();
    if (_isPacked)
      _inPart = inflateInit2(&_inflater, 15 + 16) == Z_OK;
    if (_isPacked && !_inPart)
      _fault = "there is not enough memory to unpack it";
  }

  bool _beginsPart() const
  {
    return _inflater.avail_in >= gzipMagic.size() && std::equal(gzipMagic.begin(), gzipMagic.end(), _inflater.next_in);
  }

  // Reads on behind the bytes that wait to be unpacked; false if there are no more.
  bool _fetch()
  {
    std::copy_n(_inflater.next_in, _inflater.avail_in, _packed.begin());
    const std::size_t count =
        _readStream(reinterpret_cast<char*>(_packed.data()) + _inflater.avail_in, _packed.size() - _inflater.avail_in);
    _inflater.next_in = _packed.data();
    _inflater.avail_in += static_cast<uInt>(count);
    return count > 0;
  }

  std::size_t _readStream(char* bytes, std::size_t count)
  {
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

  std::size_t _copy(char* bytes, std::size_t count)
  {
    if (_inflater.avail_in == 0)
      return _readStream(bytes, count);
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
    while (_fault.empty() && _inPart && _inflater.avail_out == count)
      _unpackOn();
    return count - _inflater.avail_out;
  }

  void _unpackOn()
  {
    if (_inflater.avail_in == 0 && !_fetch())
    {
      if (_fault.empty())
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
    if (_inflater.avail_in < gzipMagic.size())
      _fetch();
    _inPart = _beginsPart();
    if (_inPart)
      inflateReset(&_inflater);
  }

  std::istream& _stream;
  std::vector<Bytef> _packed;  // what is fetched and not unpacked yet stands in it
  z_stream _inflater{};
  bool _begun = false;
  bool _isPacked = false;
  bool _inPart = false;  // of the packed parts
  std::string _fault;
};

}  // namespace

std::unique_ptr<ByteSource> bytesOfFile(const std::string& path)
{
  return std::make_unique<FileBytes>(path);
}

std::unique_ptr<ByteSource> bytesOfStream(std::istream& stream, const std::string& name)
{
  if (stream.fail())
    throw Error({name, 0, {}}, "the stream cannot be read");
  return std::make_unique<StreamBytes>(stream);
}

}  // namespace KV::recordings
