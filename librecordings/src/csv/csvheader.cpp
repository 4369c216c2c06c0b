#include "csv/csvheader.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <algorithm>

namespace KV::recordings
{
namespace
{
// With this many known column names, the delimiter is right.
constexpr std::ptrdiff_t enoughNames = 2;

std::string_view trimmed(std::string_view text)
{
  constexpr std::string_view around = " \t\r\"";
  const std::size_t begin = text.find_first_not_of(around);
  if (begin == std::string_view::npos)
    return {};
  return text.substr(begin, text.find_last_not_of(around) + 1 - begin);
}

}  // namespace

CsvHeader::CsvHeader(const std::vector<std::string_view>& fields, const Error::Place& place,
                     bool (*isRead)(const std::string& name))
  : _place(place)
{
  for (const std::string_view field : fields)
  {
    const std::string name(trimmed(field));
    if (!_indices.emplace(name, _names.size()).second && isRead(name))
      throw Error({place.file, place.line, name}, "this column is there twice");
    _names.push_back(name);
  }
}

std::optional<std::size_t> CsvHeader::find(const std::string& name) const
{
  const auto found = _indices.find(name);
  if (found == _indices.end())
    return {};
  _found.insert(found->second);
  return found->second;
}

Columns CsvHeader::columns() const
{
  Columns columns;
  for (std::size_t i = 0; i < _names.size(); ++i)
    if (!_names[i].empty())
      (_found.count(i) > 0 ? columns.used : columns.ignored).push_back(_names[i]);
  return columns;
}

std::vector<std::optional<std::size_t>> CsvHeader::find(const std::vector<std::string>& names) const
{
  std::vector<std::optional<std::size_t>> columns;
  columns.reserve(names.size());
  for (const std::string& name : names)
    columns.push_back(find(name));
  return columns;
}

std::string_view headerLineOf(const std::string& head)
{
  const std::size_t begin = std::min(head.find_first_not_of("\r\n"), head.size());
  return std::string_view(head).substr(begin, head.find('\n', begin) - begin);
}

std::vector<std::string> namesIn(std::string_view line, std::string_view delimiters)
{
  std::vector<std::string> names;
  while (true)
  {
    const std::size_t end = line.find_first_of(delimiters);
    names.emplace_back(trimmed(line.substr(0, end)));
    if (end == std::string_view::npos || names.size() == limits::mostFields)
      return names;
    line.remove_prefix(end + 1);
  }
}

void refuseOtherDelimiters(const std::vector<std::string_view>& header, const Error::Place& place,
                           bool (*isRead)(const std::string& name))
{
  if (header.size() != 1)
    return;
  const struct
  {
    const char* delimiter;
    const char* name;
  } others[] = {{";", "semicolons"}, {"\t", "tabs"}, {"|", "bars"}};
  for (const auto& other : others)
  {
    const auto names = namesIn(header.front(), other.delimiter);
    if (std::count_if(names.begin(), names.end(), isRead) >= enoughNames)
      throw Error(place, std::string("the columns are separated by ") + other.name +
                             "; expected commas, and numbers with a decimal point");
  }
}

}  // namespace KV::recordings
