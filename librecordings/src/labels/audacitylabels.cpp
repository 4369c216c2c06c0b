#include "labels/audacitylabels.hpp"

#include "labels/labelrows.hpp"
#include "labels/labeltext.hpp"

#include <skeigiot/recordings/error.hpp>

#include <algorithm>
#include <cstddef>

namespace KV::recordings
{
namespace
{
constexpr const char* expected = "expected start, end and label between tabs";

bool isFrequencyRange(const LabelRow& row)
{
  return row.fields.front().front() == '\\';
}

/// Returns the line's fields: a tab alone separates them, quotes are part of a label.
LabelRow fieldsOf(std::string_view line, std::size_t number)
{
  LabelRow row;
  row.line = number;
  const std::size_t first = line.find('\t');
  const std::size_t second = first == std::string_view::npos ? first : line.find('\t', first + 1);
  row.fields.emplace_back(trimmedLabel(line.substr(0, first)));
  if (first != std::string_view::npos)
    row.fields.emplace_back(trimmedLabel(line.substr(first + 1, second - first - 1)));
  if (second != std::string_view::npos)
    row.fields.emplace_back(trimmedLabel(line.substr(second + 1)));
  return row;
}

LabelSpan spanOf(const LabelRow& row, const std::string& path)
{
  if (row.fields.size() < 2)
    throw Error({path, row.line, {}}, expected);
  LabelSpan span;
  span.from = labelTime(row.fields[0], {path, row.line, "start"});
  span.to = labelTime(row.fields[1], {path, row.line, "end"});
  if (span.to < span.from)
    throw Error({path, row.line, "end"}, "the label ends before it begins");
  span.label = row.field(2);
  return span;
}

}  // namespace

bool isAudacityLabels(std::string_view text)
{
  const std::string_view begin = text.substr(std::min(text.find_first_not_of("\r\n"), text.size()));
  try
  {
    spanOf(fieldsOf(begin.substr(0, begin.find('\n')), 1), {});
    return true;
  }
  catch (const Error&)
  {
    return false;
  }
}

Labels readAudacityLabels(const std::string& path, const std::string& text)
{
  Labels labels;
  std::string_view rest = text;
  for (std::size_t line = 1; !rest.empty(); ++line)
  {
    const std::size_t end = rest.find('\n');
    const std::string_view taken = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (trimmedLabel(taken).empty())
      continue;
    const LabelRow row = fieldsOf(taken, line);
    if (row.fields.front().empty() || !isFrequencyRange(row))
      labels.spans.push_back(spanOf(row, path));
  }
  return labels;
}

}  // namespace KV::recordings
