#include "terminal/texttable.hpp"

#include "terminal/text.hpp"

#include <algorithm>

namespace KV::tools
{

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
