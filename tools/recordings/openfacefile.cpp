#include "openfacefile.hpp"

#include <cstddef>
#include <utility>

namespace tools
{
namespace
{
// Enough to tell the rate, and what time stamps are worth.
constexpr std::size_t rowsAhead = 300;

}  // namespace

OpenFaceFile::OpenFaceFile(const std::string& path, const ReadingOptions& options)
  : _options(options), _rows(path), _columns(_readHeader())
{
  _lookAhead();
}

std::optional<OpenFaceRow> OpenFaceFile::next()
{
  if (_ahead.empty())
    return _read();
  const auto first = std::move(_ahead.front());
  _ahead.pop_front();
  if (const auto* const error = std::get_if<std::exception_ptr>(&first))
    std::rethrow_exception(*error);
  return std::get<OpenFaceRow>(first);
}

OpenFaceColumns OpenFaceFile::_readHeader()
{
  if (!_rows.next())
    throw RecordingError({path(), 0, {}}, "the file is empty");
  return findOpenFaceColumns(_rows.fields(), path(), _rows.file().lineNumber());
}

void OpenFaceFile::_lookAhead()
{
  while (!_ended && _ahead.size() < rowsAhead)
  {
    try
    {
      if (auto row = _read())
      {
        _firstFrames.push_back(row->frame);
        _ahead.emplace_back(std::move(*row));
      }
    }
    catch (const RecordingError&)
    {
      _ahead.emplace_back(std::current_exception());
    }
  }
  if (_ahead.empty())
    throw RecordingError({path(), _rows.file().lineNumber(), {}}, "there is no row below the header");
  if (_firstFrames.empty())
    _firstFrames.emplace_back();
}

std::optional<OpenFaceRow> OpenFaceFile::_read()
{
  if (_ended)
    return {};
  try
  {
    if (_rows.next())
    {
      OpenFaceRow row = readOpenFaceRow(_rows, _columns, _options);
      _countFrame(row.frame);
      return row;
    }
  }
  catch (const BadLine&)
  {
    throw;
  }
  catch (const RecordingError&)
  {
    _ended = true;
    throw;
  }
  _ended = true;
  return {};
}

// Several faces of one frame have one time stamp; without persons, every row is a frame.
void OpenFaceFile::_countFrame(Frame& frame)
{
  if (_columns.frame)
    return;
  if (_lastFrame)
  {
    const bool isSameFrame = _columns.faceId && frame.timestamp == _lastFrame->timestamp;
    frame.number = _lastFrame->number + (isSameFrame ? 0 : 1);
  }
  _lastFrame = frame;
}

}  // namespace tools
