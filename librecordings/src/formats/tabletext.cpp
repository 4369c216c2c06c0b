#include "formats/tabletext.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace KV::recordings
{
namespace
{
constexpr std::int64_t nanosecondsPerSecond = 1000000000;

void addNumber(double number, std::string& line)
{
  if (std::isnan(number))
    return;
  std::array<char, 32> digits{};
  line.append(digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr);
}

// Seconds since 1970.
void addMoment(std::int64_t moment, std::string& line)
{
  const std::int64_t size = std::abs(moment);
  const std::string decimals = std::to_string(size % nanosecondsPerSecond);
  line += moment < 0 ? "-" : "";
  line += std::to_string(size / nanosecondsPerSecond) + "." + std::string(9 - decimals.size(), '0') + decimals;
}

// A line of a file is a row, so line ends become blanks.
void addText(std::string_view text, std::string& line)
{
  if (text.find_first_of(",\"\r\n\t ") == std::string_view::npos)
  {
    line += text;
    return;
  }
  line += '"';
  for (const char letter : text)
  {
    if (letter == '"')
      line += '"';
    line += letter == '\r' || letter == '\n' ? ' ' : letter;
  }
  line += '"';
}

void addField(const TableColumn& column, std::size_t row, std::string& line)
{
  if (column.numbers)
    addNumber(column.numbers[row], line);
  else
    addText(column.texts[row], line);
}

}  // namespace

TableText::TableText(const Table& table) : _table(table), _line(header(table))
{
  setg(_line.data(), _line.data(), _line.data() + _line.size());
}

std::string TableText::header(const Table& table)
{
  std::string line = table.moments ? "time" : "";
  for (const TableColumn& column : table.columns)
  {
    if (!line.empty())
      line += ',';
    addText(column.name, line);
  }
  return line + '\n';
}

TableText::int_type TableText::underflow()
{
  if (_row == _table.rows)
    return traits_type::eof();
  _line.clear();
  if (_table.moments)
    addMoment(_table.moments[_row], _line);
  const char* separator = _table.moments ? "," : "";
  for (const TableColumn& column : _table.columns)
  {
    _line += separator;
    addField(column, _row, _line);
    separator = ",";
  }
  _line += '\n';
  ++_row;
  setg(_line.data(), _line.data(), _line.data() + _line.size());
  return traits_type::to_int_type(_line.front());
}

}  // namespace KV::recordings
