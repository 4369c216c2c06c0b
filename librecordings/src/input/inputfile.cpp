#include <skeigiot/recordings/inputfile.hpp>

#include <skeigiot/recordings/recording.hpp>

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::size_t firstBufferSize = std::size_t{256} << 10U;
constexpr unsigned int compressedBufferSize = 128U << 10U;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

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

}  // namespace

void InputFile::Close::operator()(gzFile_s* file) const
{
  gzclose(file);
}

InputFile::InputFile(const std::string& path) : _path(path), _size(sizeOf(path)), _buffer(firstBufferSize)
{
  refuseWhatIsNoFile(path);
  errno = 0;
  _file.reset(gzopen(path.c_str(), "rb"));
  if (!_file)
    throw Error({path, 0, {}}, std::string("cannot be opened: ") + std::strerror(errno));
  gzbuffer(_file.get(), compressedBufferSize);

  _readAtLeast(byteOrderMark.size());
  if (_unread().substr(0, byteOrderMark.size()) == byteOrderMark)
    _begin = byteOrderMark.size();
}

bool InputFile::readLine(std::string_view& line)
{
  std::size_t searched = 0;
  while (true)
  {
    const std::size_t length = _unread().find('\n', searched);
    if (length != std::string_view::npos)
    {
      _handOut(length, true, line);
      return true;
    }
    searched = _unread().size();
    if (searched > longestLine)
    {
      _skipLine();
      throw BadLine({_path, _lineNumber, {}},
                    "is longer than " + std::to_string(longestLine >> 20U) + " MiB: this is no line of a recording");
    }
    if (!_readMore())
      break;
  }

  const std::size_t length = _unread().size();
  if (length == 0)
    return false;
  _handOut(length, false, line);
  return true;
}

bool InputFile::readBlock(std::string_view& block)
{
  if (_unread().empty() && !_readMore())
    return false;
  block = _unread();
  _begin = _end;
  return true;
}

double InputFile::progress() const
{
  if (_atEnd && _unread().empty())
    return 1.0;
  if (_size == 0)
    return 0.0;
  const auto offset = gzoffset(_file.get());
  return offset < 0 ? 0.0 : std::min(1.0, static_cast<double>(offset) / static_cast<double>(_size));
}

std::string InputFile::head(const std::string& path, std::size_t count)
{
  InputFile file(path);
  file._readAtLeast(count);
  return std::string(file._unread().substr(0, count));
}

// What stands before a fault of the file is there to be read all the same; whoever reads on learns of the fault.
void InputFile::_readAtLeast(std::size_t count)
{
  while (_unread().size() < count && _readOn())
  {}
  if (_unread().empty())
    _readMore();
}

// Reads on behind what is not handed out yet; false at the end of the file.
bool InputFile::_readMore()
{
  if (_readOn())
    return true;
  if (_fault.empty())
    return false;
  throw Error({_path, _lineNumber, {}}, std::exchange(_fault, {}));
}

// As above; false at a fault as well.
bool InputFile::_readOn()
{
  if (_atEnd)
    return false;
  _makeRoom();
  const int count = gzread(_file.get(), _buffer.data() + _end, static_cast<unsigned int>(_buffer.size() - _end));
  if (count > 0)
  {
    _end += static_cast<std::size_t>(count);
    return true;
  }

  _atEnd = true;
  int error = Z_OK;
  const char* const message = gzerror(_file.get(), &error);
  if (error == Z_BUF_ERROR)
    _fault = "the compressed data end too early: the file was cut";
  else if (error == Z_ERRNO)
    _fault = std::string("cannot be read: ") + std::strerror(errno);
  else if (error != Z_OK && error != Z_STREAM_END)
    _fault = std::string("the compressed data are damaged: ") + message;
  return false;
}

void InputFile::_makeRoom()
{
  std::copy(_buffer.begin() + static_cast<std::ptrdiff_t>(_begin), _buffer.begin() + static_cast<std::ptrdiff_t>(_end),
            _buffer.begin());
  _end -= _begin;
  _begin = 0;
  if (_end == _buffer.size())
    _buffer.resize(2 * _buffer.size());
}

void InputFile::_handOut(std::size_t length, bool ended, std::string_view& line)
{
  line = _unread().substr(0, length);
  if (ended && !line.empty() && line.back() == '\r')
    line.remove_suffix(1);
  _begin += length + (ended ? 1 : 0);
  _lineEnded = ended;
  ++_lineNumber;
}

void InputFile::_skipLine()
{
  ++_lineNumber;
  do
  {
    const std::size_t length = _unread().find('\n');
    if (length != std::string_view::npos)
    {
      _begin += length + 1;
      return;
    }
    _begin = _end;
  } while (_readMore());
}

}  // namespace KV::recordings
