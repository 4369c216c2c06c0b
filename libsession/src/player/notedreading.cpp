#include "notedreading.hpp"

#include "text.hpp"

#include <utility>

namespace tools
{

namespace
{

constexpr std::size_t mostWarnings = 10;

}  // namespace

NotedReading::Step NotedReading::next(boost::optional<RecordingEntry>& entry)
{
  entry = boost::none;
  const Step step = _read(entry);
  _noteWarnings();
  return step;
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

NotedReading::Step NotedReading::_read(boost::optional<RecordingEntry>& entry)
{
  try
  {
    entry = _reader.next();
    return entry ? Step::Taken : Step::End;
  }
  catch (const BadLine& error)
  {
    if (_skipBad)
    {
      if (++_skipped == 1)
        _firstSkipped = error.what();
      return Step::Skipped;
    }
    _error = error;
  }
  catch (const RecordingError& error)
  {
    _error = error;
  }
  return Step::End;
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

}  // namespace tools
