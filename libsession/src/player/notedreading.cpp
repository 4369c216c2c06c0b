#include "player/notedreading.hpp"

#include <skeigiot/session/wording.hpp>

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

std::vector<std::string> NotedReading::warnings() const
{
  std::vector<std::string> lines = _warnings;
  if (_moreWarnings > 0)
    lines.push_back(counted(_moreWarnings, "more warning"));
  return lines;
}

std::string NotedReading::skippedText() const
{
  return _skipped == 0 ? "" : "skipped " + counted(_skipped, "bad line") + ", the first: " + _firstSkipped;
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
      if (++_skipped == 1)
        _firstSkipped = error.what();
      return Read::Skipped;
    }
    _error = error;
  }
  catch (const recordings::Error& error)
  {
    _error = error;
  }
  return Read::End;
}

void NotedReading::_noteWarnings()
{
  for (std::string& text : _reader.takeWarnings())
  {
    if (_warnings.size() < mostWarnings)
      _warnings.push_back(std::move(text));
    else
      ++_moreWarnings;
  }
}

}  // namespace KV::session
