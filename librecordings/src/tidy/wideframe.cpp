#include "tidy/wideframe.hpp"

#include "tidy/tidyreadings.hpp"

#include <algorithm>
#include <utility>

namespace KV::recordings
{
namespace
{
using Column = TidyColumn;

const char* const seen = "seen";  // the reading of a row without readings

}  // namespace

WideFrame::WideFrame(const Table& frame) : FrameTable(frame)
{
  for (const TableColumn& column : frameColumns())
    note(column, _take(column));
  if (_readings.empty())
    throw Error({frame.name, 0, {}},
                "no column is a reading, such as 'smile', 'gaze.yaw' and 'gaze.pitch', 'expressions.joy'");
}

bool WideFrame::next()
{
  _at += _begun ? 1 : 0;
  _begun = true;
  for (; !isAtEnd(); nextRow())
  {
    while (_at < _readings.size() && !_isThere(_readings[_at]))
      ++_at;
    const bool isReading = _at < _readings.size();
    if (isReading || (_saysOnlySeen() && _hasSilentPerson()))
    {
      _anyReading = true;
      _anyReadingOfPerson = _anyReadingOfPerson || !isReading || _readings[_at].ofPerson;
      return true;
    }
    _at = 0;
    _anyReading = _anyReadingOfPerson = false;
  }
  return false;
}

bool WideFrame::hasColumn(Column column) const
{
  return column == Column::Person && _person;
}

bool WideFrame::has(Column column) const
{
  return column == Column::Reading || (column == Column::Value && _saysOnlySeen()) || FrameTable::has(column);
}

std::string WideFrame::text(Column column) const
{
  if (column == Column::Reading)
    return _saysOnlySeen() ? seen : _readings[_at].name;
  return column == Column::Value && _saysOnlySeen() ? "true" : FrameTable::text(column);
}

const TableColumn* WideFrame::field(Column column) const
{
  if (column == Column::Time)
    return _time;
  if (column == Column::Person)
    return _saysOnlySeen() || _readings[_at].ofPerson ? _person : nullptr;
  return _saysOnlySeen() ? nullptr : _readings[_at].fields.at(static_cast<std::size_t>(column));
}

std::string WideFrame::nameOfField(Column column) const
{
  const TableColumn* const source = field(column);
  if (source)
    return source->name;
  if (column == Column::Reading)
    return text(column);
  const bool isOfRow = column == Column::Time || column == Column::Person;
  return isOfRow ? nameOf(column) : text(Column::Reading) + "." + nameOf(column);
}

bool WideFrame::_take(const TableColumn& column)
{
  for (const auto& [name, target] : {std::make_pair(Column::Time, &_time), std::make_pair(Column::Person, &_person)})
    if (column.name == nameOf(name))
    {
      *target = &column;
      return true;
    }
  if (_takeAs(column.name, Column::Value, column))
    return true;
  const std::size_t dot = column.name.rfind('.');
  const auto field = dot == std::string::npos ? std::nullopt : tidyColumnNamed(column.name.substr(dot + 1));
  return field && *field != Column::Value && _takeAs(column.name.substr(0, dot), *field, column);
}

/// Returns whether there is such a reading, and it has the field.
bool WideFrame::_takeAs(const std::string& reading, Column field, const TableColumn& column)
{
  const auto known = tidyReadingNamed(reading);
  if (!known)
    return false;
  const auto contains = [field](const std::vector<Column>& fields) {
    return std::find(fields.begin(), fields.end(), field) != fields.end();
  };
  if (field != Column::Confidence && !contains(known->needed) && !contains(known->optional))
    return false;
  auto found =
      std::find_if(_readings.begin(), _readings.end(), [&](const Reading& one) { return one.name == reading; });
  if (found == _readings.end())
    found = _readings.insert(found, {reading, known->ofPerson, known->needed, {}});
  found->fields.at(static_cast<std::size_t>(field)) = &column;
  return true;
}

/// A confidence alone is no reading; and a reading is unknown if the column of a necessary part is empty.
bool WideFrame::_isThere(const Reading& reading) const
{
  for (const Column needed : reading.needed)
    if (const TableColumn* const column = reading.fields.at(static_cast<std::size_t>(needed)))
      if (!isFilled(*column))
        return false;
  for (std::size_t i = 0; i < reading.fields.size(); ++i)
    if (reading.fields.at(i) && static_cast<Column>(i) != Column::Confidence && isFilled(*reading.fields.at(i)))
      return true;
  return false;
}

}  // namespace KV::recordings
