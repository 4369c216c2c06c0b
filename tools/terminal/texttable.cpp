#include "terminal/texttable.hpp"

#include "terminal/shown.hpp"
#include "terminal/text.hpp"

#include <algorithm>
#include <utility>

namespace KV::tools
{

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

std::string TextTable::text(const Style& style) const
{
  Cells headers;
  for (const Column& column : _columns)
    headers.push_back(column.header);
  const std::vector<std::size_t> widths = _widths();
  std::string text = style.bold(_line(headers, widths)) + "\n";
  for (const Cells& row : _rows)
    text += _line(row, widths) + "\n";
  return text;
}

std::vector<std::size_t> TextTable::_widths() const
{
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < _columns.size(); ++i)
  {
    std::size_t width = displayWidth(_columns[i].header);
    for (const Cells& row : _rows)
      width = std::max(width, displayWidth(row.at(i)));
    widths.push_back(width);
  }
  return widths;
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
