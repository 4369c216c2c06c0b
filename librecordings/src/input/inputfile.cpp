#include <skeigiot/recordings/inputfile.hpp>

#include "input/bytesource.hpp"

#include <skeigiot/recordings/badline.hpp>

#include <algorithm>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::size_t firstBufferSize = std::size_t{256} << 10U;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

}  // namespace

InputFile::InputFile(const std::string& path) : InputFile(path, bytesOfFile(path)) {}

InputFile::InputFile(std::istream& stream, const std::string& name) : InputFile(name, bytesOfStream(stream, name)) {}

InputFile::InputFile(std::string path, std::unique_ptr<ByteSource> source)
  : _path(std::move(path)), _source(std::move(source)), _buffer(firstBufferSize)
{
  _readAtLeast(byteOrderMark.size());
  if (_unread().substr(0, byteOrderMark.size()) == byteOrderMark)
    _begin = byteOrderMark.size();
}

InputFile::InputFile(InputFile&& other) noexcept = default;

InputFile::~InputFile() = default;

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
  return _source->progress();
}

std::string InputFile::head(const std::string& path, std::size_t count)
{
  return InputFile(path).peek(count);
}

std::string InputFile::peek(std::size_t count)
{
  _readAtLeast(count);
  return std::string(_unread().substr(0, count));
}

// The bytes before a fault of the file can be read; reading after them throws the fault.
void InputFile::_readAtLeast(std::size_t count)
{
  while (_unread().size() < count && _readOn())
  {}
  if (_unread().empty())
    _readMore();
}

// Reads bytes after those not returned yet; false at the end of the file.
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
  const std::size_t count = _source->read(_buffer.data() + _end, _buffer.size() - _end);
  if (count > 0)
  {
    _end += count;
    return true;
  }
  _atEnd = true;
  _fault = _source->fault();
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
