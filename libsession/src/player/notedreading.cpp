#include "player/notedreading.hpp"

#include <utility>

namespace KV::session
{

namespace
{

constexpr std::size_t mostWarnings = 10;

}  // namespace

NotedReading::Read NotedReading::next(boost::optional<recordings::Step>& step)
{
  step = boost::none;
  const Read read = _read(step);
  _noteWarnings();
  return read;
}

NotedReading::Read NotedReading::_read(boost::optional<recordings::Step>& step)
{
  try
  {
    step = _reader.next();
    return step ? Read::Taken : Read::End;
  }
  catch (const recordings::BadLine& error)
  {
    if (_skipBad)
    {
      if (++_notes.badLines == 1)
        _notes.firstBadLine = error.what();
      return Read::Skipped;
    }
    _notes.error = error;
  }
  catch (const recordings::Error& error)
  {
    _notes.error = error;
  }
  return Read::End;
}

void NotedReading::_noteWarnings()
{
  for (std::string& text : _reader.takeWarnings())
  {
    if (_notes.warnings.size() < mostWarnings)
      _notes.warnings.push_back(std::move(text));
    else
      ++_notes.moreWarnings;
  }
}

}  // namespace KV::session
