#include "face/csvfacefile.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <utility>

namespace KV::recordings
{

CsvFaceFile::CsvFaceFile(InputFile input, bool (*isRead)(const std::string& name))
  : _rows(std::move(input)), _header(_readHeader(isRead))
{}

CsvHeader CsvFaceFile::_readHeader(bool (*isRead)(const std::string& name))
{
  if (!_rows.next())
    throw Error({path(), 0, {}}, "the file is empty");
  refuseOtherDelimiters(_rows.fields(), place(), isRead);
  return {_rows.fields(), place(), isRead};
}

void FrameCounter::count(Frame& frame, bool facesAreIdentified)
{
  if (_last)
  {
    const bool isSameFrame = facesAreIdentified && frame.timestamp == _last->timestamp;
    frame.number = _last->number + (isSameFrame ? 0 : 1);
  }
  _last = frame;
}

}  // namespace KV::recordings
