#include "terminal/texttable.hpp"

#include "terminal/shown.hpp"
#include "terminal/text.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t gap = 2;

std::vector<std::string> linesOf(const std::string& text)
{
  std::vector<std::string> lines;
  std::istringstream stream(text);
  stream.exceptions(std::ios::badbit);  // else a lack of memory would cut the text
  for (std::string line; std::getline(stream, line);)
    lines.push_back(line);
  return lines;
}

}  // namespace

TextTable::TextTable(std::vector<Column> columns) : _columns(std::move(columns))
{
  for (Column& column : _columns)
    column.header = shown(column.header);
}

void TextTable::add(Cells cells)
{
  for (std::string& cell : cells)
    cell = shown(cell);
  _rows.push_back(std::move(cells));
}

std::string TextTable::text(const Style& style, std::size_t width) const
{
  Cells headers;
  for (const Column& column : _columns)
    headers.push_back(column.header);
  const std::vector<std::size_t> widths = _widths(width);
  std::string text = style.bold(_line(headers, widths)) + "\n";
  for (const Cells& row : _rows)
    text += _lines(row, widths);
  return text;
}

std::vector<std::size_t> TextTable::_widths(std::size_t width) const
{
  std::vector<std::size_t> widths;
  std::size_t all = 0;
  for (std::size_t i = 0; i < _columns.size(); ++i)
  {
    std::size_t widest = displayWidth(_columns[i].header);
    for (const Cells& row : _rows)
      widest = std::max(widest, displayWidth(row.at(i)));
    widths.push_back(widest);
    all += widest + (i > 0 ? gap : 0);
  }
  for (std::size_t i = 0; i < _columns.size(); ++i)
  {
    if (_columns[i].wraps && all > width)
      widths[i] = std::max(displayWidth(_columns[i].header), widths[i] - std::min(widths[i], all - width));
  }
  return widths;
}

/// The row, with as many lines as the cell that wraps needs.
std::string TextTable::_lines(const Cells& cells, const std::vector<std::size_t>& widths) const
{
  const auto wrapping =
      std::find_if(_columns.begin(), _columns.end(), [](const Column& column) { return column.wraps; });
  if (wrapping == _columns.end())
    return _line(cells, widths) + "\n";
  const auto column = static_cast<std::size_t>(wrapping - _columns.begin());
  std::string text;
  Cells rest = cells;
  for (const std::string& line : linesOf(wrapped(cells.at(column), widths[column], gap) + "\n"))
  {
    rest[column] = line;
    text += _line(rest, widths) + "\n";
    rest.assign(cells.size(), "");
  }
  return text;
}

std::string TextTable::_line(const Cells& cells, const std::vector<std::size_t>& widths) const
{
  std::string line;
  for (std::size_t i = 0; i < _columns.size(); ++i)
    line += (i > 0 ? "  " : "") +
            (_columns[i].isNumber ? padLeft(cells.at(i), widths[i]) : padRight(cells.at(i), widths[i]));
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

}  // namespace KV::tools
