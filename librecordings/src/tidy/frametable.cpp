#include "tidy/frametable.hpp"

#include <skeigiot/recordings/implausible.hpp>
#include <skeigiot/recordings/limits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace KV::recordings
{
namespace
{
using Column = TidyColumn;

std::string textOf(double number)
{
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr};
}

/// Returns the number, or NaN for any other text.
double numberIn(std::string_view text)
{
  if (text.front() == '+')
    text.remove_prefix(1);
  double value = 0.;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  return result.ec == std::errc() && result.ptr == end ? value : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

FrameTable::FrameTable(const Table& frame) : _frame(frame)
{
  const auto isTime = [](const TableColumn& column) { return column.name == nameOf(Column::Time); };
  if (!_frame.moments && std::none_of(_frame.columns.begin(), _frame.columns.end(), isTime))
    throw Error({_frame.name, 0, {}}, "there is no column time");
}

bool FrameTable::has(Column column) const
{
  if (column == Column::Time && _frame.moments)
    return true;
  const TableColumn* const source = field(column);
  return source && isFilled(*source);
}

std::string FrameTable::text(Column column) const
{
  const TableColumn& source = *field(column);
  return source.numbers ? textOf(source.numbers[_row]) : source.texts[_row];
}

double FrameTable::_anyNumber(Column column) const
{
  const TableColumn& source = *field(column);
  return source.numbers ? source.numbers[_row] : numberIn(source.texts[_row]);
}

double FrameTable::number(Column column) const
{
  const double value = _anyNumber(column);
  if (!(std::abs(value) <= greatestMeasurement))
    refuseValue(column, "a number");
  return value;
}

std::int64_t FrameTable::wholeNumber(Column column, double least, double greatest) const
{
  const double value = number(column);
  if (!(value >= least && value <= greatest) || value != std::floor(value))
    refuseValue(column, "a whole number");
  return static_cast<std::int64_t>(value);
}

double FrameTable::seconds(Column column) const
{
  const double value = _anyNumber(column);
  if (!(value >= earliestTimestamp && value <= latestTimestamp))
    refuse(column, "expected seconds, from the start of the recording or since 1970, found " + quote(text(column)) +
                       adviceOnSeconds(value));
  return value;
}

std::optional<ko::SystemClock::time_point> FrameTable::moment() const
{
  if (!_frame.moments)
    return {};
  return ko::SystemClock::time_point(ko::SystemClock::duration(_frame.moments[_row]));
}

Error::Place FrameTable::placeOf(Column column) const
{
  return {place().file, 0, nameOfField(column)};
}

Error::Place FrameTable::place() const
{
  return {_frame.name + ", row " + std::to_string(_row), 0, {}};
}

double FrameTable::progress() const
{
  return _frame.rows == 0 ? 1. : static_cast<double>(_row) / static_cast<double>(_frame.rows);
}

void FrameTable::note(const TableColumn& column, bool isRead)
{
  (isRead ? _columns.used : _columns.ignored).push_back(column.name);
}

bool FrameTable::isFilled(const TableColumn& column) const
{
  return column.numbers ? !std::isnan(column.numbers[_row]) : !isEmptyField(column.texts[_row]);
}

}  // namespace KV::recordings
