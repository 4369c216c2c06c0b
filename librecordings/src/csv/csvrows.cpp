#include "csv/csvrows.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <utility>

namespace KV::recordings
{
namespace
{
bool isBlank(char character)
{
  return character == ' ' || character == '\t';
}

// Both look at each character alone: a field has a blank or two, and a search for one of a set costs more than that.

void skipBlanks(std::string_view& text)
{
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
}

std::string_view trimmed(std::string_view field)
{
  skipBlanks(field);
  while (!field.empty() && isBlank(field.back()))
    field.remove_suffix(1);
  return field;
}

}  // namespace

CsvRows::CsvRows(InputFile input) : _file(std::move(input)) {}

bool CsvRows::next()
{
  std::string_view line;
  while (_file.readLine(line))
  {
    if (!_split(line))
      throw BadLine({_file.path(), _file.lineNumber(), {}}, "a quote is out of place or not closed");
    if (!_fields.empty())
      return true;
  }
  return false;
}

bool CsvRows::_split(std::string_view line)
{
  _fields.clear();
  if (trimmed(line).empty())
    return true;
  if (line.find('"') != std::string_view::npos)
    return _splitQuoted(line);
  _splitUnquoted(line);
  return true;
}

// Most files have thousands of columns and no quotes: a search of the whole line spares one of every field.
void CsvRows::_splitUnquoted(std::string_view line)
{
  while (true)
  {
    const std::size_t end = line.find(',');
    _add(trimmed(line.substr(0, end)));
    if (end == std::string_view::npos)
      return;
    line.remove_prefix(end + 1);
  }
}

void CsvRows::_add(std::string_view field)
{
  if (_fields.size() == limits::mostFields)
    throw BadLine({_file.path(), _file.lineNumber(), {}},
                  "has more than " + std::to_string(limits::mostFields) + " fields: this is no row of a recording");
  _fields.push_back(field);
}

bool CsvRows::_splitQuoted(std::string_view line)
{
  _unquoted.clear();
  _unquoted.reserve(line.size());  // so that fields stay where they are
  while (true)
  {
    skipBlanks(line);
    if (!line.empty() && line.front() == '"')
    {
      if (!_addQuoted(line))
        return false;
    }
    else
    {
      const std::string_view field = line.substr(0, line.find(','));
      if (field.find('"') != std::string_view::npos)
        return false;
      _add(trimmed(field));
      line.remove_prefix(field.size());
    }
    if (line.empty())
      return true;
    line.remove_prefix(1);  // the comma
  }
}

bool CsvRows::_addQuoted(std::string_view& rest)
{
  const std::size_t begin = _unquoted.size();
  do
  {
    rest.remove_prefix(1);  // the first quote, or the second of a doubled one, which stands for one
    const std::size_t end = rest.find('"');
    if (end == std::string_view::npos)
      return false;
    _unquoted.append(rest, 0, end);
    rest.remove_prefix(end + 1);
    if (!rest.empty() && rest.front() == '"')
      _unquoted += '"';
  } while (!rest.empty() && rest.front() == '"');
  _add({_unquoted.data() + begin, _unquoted.size() - begin});
  skipBlanks(rest);
  return rest.empty() || rest.front() == ',';
}

}  // namespace KV::recordings
