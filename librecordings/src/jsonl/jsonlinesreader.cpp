#include "jsonl/jsonlinesreader.hpp"

#include <skeigiot/recordings/observationjson.hpp>

#include <string_view>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::string_view blanks = " \t\r\n";

bool isBlank(std::string_view line)
{
  return line.find_first_not_of(blanks) == std::string_view::npos;
}

}  // namespace

bool looksLikeJsonLines(const std::string& head)
{
  const std::size_t begin = head.find_first_not_of(blanks);
  return begin != std::string::npos && head[begin] == '{';
}

JsonLinesReader::JsonLinesReader(InputFile input) : _file(std::move(input)) {}

boost::optional<Step> JsonLinesReader::next()
{
  std::string_view line;
  do
  {
    if (!_file.readLine(line))
      return {};
  } while (isBlank(line));

  try
  {
    Step entry = stepFromJson(line);
    if (_anyRead && entry.time < _time)
      throw MemberError("time", "time runs backwards, expected the lines in the order of their times");
    if (_anyRead && !entry.isDated)
      throw MemberError("dated", "only the first line tells whether the recording has a date");
    if (const auto found = _units.look(entry))
      throw Error({_file.path(), _file.lineNumber(), found->member}, found->message);
    if (const auto found = implausibleReading(entry))
      throw MemberError("observation." + found->member, found->message);
    _isDated = _anyRead ? _isDated : entry.isDated;
    _anyRead = true;
    _time = entry.time;
    return entry;
  }
  catch (const MemberError& error)
  {
    const bool mayBeCut = !_file.lineEnded() && error.isSyntax();
    throw BadLine({_file.path(), _file.lineNumber(), error.member()},
                  std::string(error.what()) + (mayBeCut ? "; the last line is not complete: the file may be cut" : ""));
  }
}

std::vector<std::string> JsonLinesReader::describe() const
{
  return {"JSON Lines: angles in degrees; head yaw to the own right, gaze yaw to the own left, pitch up",
          _isDated ? "times in nanoseconds since 1970, as the lines say; persons by their member person"
                   : "times in nanoseconds, of an unknown day; persons by their member person"};
}

}  // namespace KV::recordings
