#include "labels/labelrows.hpp"

#include "labels/labeltext.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <algorithm>

namespace KV::recordings
{
namespace
{

/// Takes rows from the front of a text.
class RowSplitter
{
public:
  RowSplitter(std::string_view text, const std::string& path, char delimiter)
    : _rest(text), _path(path), _delimiter(delimiter)
  {}

  bool atEnd() const { return _rest.empty(); }

  LabelRow take()
  {
    LabelRow row;
    row.line = _line;
    bool more = true;
    while (more)
    {
      if (++_fields > limits::mostFieldsOfLabels)
        throw Error({_path, _line, {}}, "has more than " + std::to_string(limits::mostFieldsOfLabels) +
                                            " fields: this is not a file of labels");
      row.fields.push_back(_takeField());
      more = !_rest.empty() && _rest.front() == _delimiter;
      if (!_rest.empty())
        _take(1);  // the delimiter, or the line break
    }
    return row;
  }

private:
  std::string _takeField()
  {
    while (!_rest.empty() && (_rest.front() == ' ' || (_rest.front() == '\t' && _delimiter != '\t')))
      _rest.remove_prefix(1);
    std::string field;
    if (!_rest.empty() && _rest.front() == '"')
      _takeQuoted(field);
    const char ends[] = {_delimiter, '\n'};
    const std::string_view plain = _rest.substr(0, _rest.find_first_of(std::string_view(ends, 2)));
    field += plain;
    _rest.remove_prefix(plain.size());
    return std::string(trimmedLabel(field));
  }

  void _takeQuoted(std::string& field)
  {
    const std::size_t begin = _line;
    bool isDoubled = false;
    do
    {
      _take(1);  // the first quote, or the second of a doubled one
      const std::size_t end = _rest.find('"');
      if (end == std::string_view::npos)
        throw Error({_path, begin, {}}, "a quote is not closed");
      if (isDoubled)
        field += '"';
      field += _rest.substr(0, end);
      _take(end + 1);
      isDoubled = true;
    } while (!_rest.empty() && _rest.front() == '"');
  }

  void _take(std::size_t count)
  {
    const std::string_view taken = _rest.substr(0, count);
    _line += static_cast<std::size_t>(std::count(taken.begin(), taken.end(), '\n'));
    _rest.remove_prefix(taken.size());
  }

  std::string_view _rest;
  const std::string& _path;
  char _delimiter;
  std::size_t _line = 1;
  std::size_t _fields = 0;  // of all rows so far
};

bool hasText(const LabelRow& row)
{
  return std::any_of(row.fields.begin(), row.fields.end(), [](const std::string& field) { return !field.empty(); });
}

}  // namespace

std::vector<LabelRow> labelRows(std::string_view text, const std::string& path, char delimiter, std::size_t most)
{
  std::vector<LabelRow> rows;
  for (RowSplitter splitter(text, path, delimiter); !splitter.atEnd() && rows.size() < most;)
  {
    LabelRow row = splitter.take();
    if (hasText(row))
      rows.push_back(std::move(row));
  }
  return rows;
}

LabelColumns::LabelColumns(const std::vector<std::string>& names)
{
  for (std::size_t i = 0; i < names.size(); ++i)
    _indices.emplace(smallLetters(names[i]), i);
}

std::optional<std::size_t> LabelColumns::find(const std::string& name) const
{
  const auto found = _indices.find(name);
  if (found == _indices.end())
    return {};
  return found->second;
}

std::string smallLetters(std::string_view text)
{
  std::string small(text);
  for (char& letter : small)
    if (letter >= 'A' && letter <= 'Z')
      letter = static_cast<char>(letter - 'A' + 'a');
  return small;
}

}  // namespace KV::recordings
