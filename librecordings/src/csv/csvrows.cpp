#include "csv/csvrows.hpp"

#include "csv/csvfields.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <utility>

namespace KV::recordings
{
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
  const LineScan scan = scanLine(line);
  if (scan.hasQuote)
    return _splitQuoted(line);
  if (scan.commas >= limits::mostFields)
    _refuseSoManyFields();
  _fields.resize(scan.commas + 1);  // mostly, the row before had as many
  splitAtCommas(line, _fields.data());
  if (_fields.size() == 1 && _fields.front().empty())
    _fields.clear();  // an empty line has no fields
  return true;
}

void CsvRows::_add(std::string_view field)
{
  if (_fields.size() == limits::mostFields)
    _refuseSoManyFields();
  _fields.push_back(field);
}

void CsvRows::_refuseSoManyFields() const
{
  throw BadLine({_file.path(), _file.lineNumber(), {}},
                "has more than " + std::to_string(limits::mostFields) + " fields: this is no row of a recording");
}

bool CsvRows::_splitQuoted(std::string_view line)
{
  _fields.clear();
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
      _add(withoutBlanks(field));
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
    rest.remove_prefix(1);  // the first quote, or the second of a doubled one, which means one quote
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
