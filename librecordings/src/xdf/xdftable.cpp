#include "xdf/xdftable.hpp"

#include "tidy/tidyreadings.hpp"

#include <skeigiot/recordings/limits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace KV::recordings
{
namespace
{
using Column = TidyColumn;

constexpr double beforeNext = 1e-6;  // [s] a scope of a marker ends so long before that of the next begins

std::string textOf(double number)
{
  std::array<char, 32> digits{};
  return {digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr};
}

std::string channelText(const XdfChannel& channel)
{
  return channel.index ? std::to_string(*channel.index) : channel.label;
}

}  // namespace

XdfTable::XdfTable(const XdfFile& file) : _file(file)
{
  for (std::size_t i = 0; i < file.streams().size(); ++i)
  {
    const XdfStream& stream = file.streams()[i];
    _readings.push_back(_readingsOf(stream));
    if (stream.mapping != nullptr)
      for (const XdfChannel& channel : stream.mapping->channels)
        _columns.used.push_back(stream.name + "/" + channelText(channel));
    _addRows(i);
  }
  std::stable_sort(_rows.begin(), _rows.end(), [](const Row& one, const Row& other) { return one.time < other.time; });
}

std::vector<XdfTable::Reading> XdfTable::_readingsOf(const XdfStream& stream)
{
  std::vector<Reading> readings;
  if (stream.mapping == nullptr)
    return readings;
  for (const XdfChannel& channel : stream.mapping->channels)
  {
    std::string name = channel.reading;
    Column column = Column::Value;
    if (!tidyReadingNamed(name))
    {
      const std::size_t dot = name.rfind('.');
      column = *tidyColumnNamed(name.substr(dot + 1));
      name.resize(dot);
    }
    auto found =
        std::find_if(readings.begin(), readings.end(), [&name](const Reading& one) { return one.name == name; });
    if (found == readings.end())
    {
      const TidyReading known = *tidyReadingNamed(name);
      found = readings.insert(found, {name, known.ofPerson, known.needed, {}});
    }
    const auto kept = std::find(stream.kept.begin(), stream.kept.end(), *channelIn(stream, channel));
    found->fields.at(static_cast<std::size_t>(column)) =
        Field{static_cast<std::size_t>(kept - stream.kept.begin()), channel.factor, channel.offset};
  }
  return readings;
}

void XdfTable::_addRows(std::size_t index)
{
  const XdfStream& stream = _file.streams()[index];
  if (!stream.areScopes && _readings[index].empty())
    return;
  double latest = -std::numeric_limits<double>::infinity();
  std::optional<std::uint32_t> open;
  for (std::size_t i = 0; i < stream.times.size(); ++i)
  {
    const double time = stream.times[i];
    if (!(time > latest + 2. * beforeNext))
    {
      ++_repeated;
      continue;
    }
    latest = time;
    const auto sample = static_cast<std::uint32_t>(i);
    if (!stream.areScopes)
      _rows.push_back({time, static_cast<std::uint32_t>(index), sample, Kind::Sample});
    else if (!stream.texts[i * stream.kept.size()].empty())
    {
      if (open)
        _rows.push_back({time - beforeNext, static_cast<std::uint32_t>(index), *open, Kind::Stop});
      _rows.push_back({time, static_cast<std::uint32_t>(index), sample, Kind::Start});
      open = sample;
    }
  }
}

bool XdfTable::isEmpty()
{
  const bool isFilled = _findRow();
  _at = 0;
  _readingAt = 0;
  return !isFilled;
}

bool XdfTable::next()
{
  if (_begun && _at < _rows.size())
    ++_readingAt;
  _begun = true;
  if (_findRow())
    return true;
  if (!_file.damage().empty() && !std::exchange(_saidDamage, true))
    throw BadLine({_file.path(), 0, {}}, _file.damage());
  return false;
}

/// Goes on to the next reading that is there, from the present one on, and returns whether there is one.
bool XdfTable::_findRow()
{
  for (; _at < _rows.size(); ++_at, _readingAt = 0)
  {
    if (_rows[_at].kind != Kind::Sample && _readingAt == 0)
      return true;
    if (_rows[_at].kind != Kind::Sample)
      continue;
    const std::vector<Reading>& readings = _readings[_rows[_at].stream];
    while (_readingAt < readings.size() && !_isThere(readings[_readingAt]))
      ++_readingAt;
    if (_readingAt < readings.size())
      return true;
  }
  return false;
}

/// A reading is unknown where a channel has no number for a part that it needs.
bool XdfTable::_isThere(const Reading& reading) const
{
  bool isAny = false;
  for (std::size_t i = 0; i < reading.fields.size(); ++i)
  {
    const std::optional<Field>& field = reading.fields.at(i);
    const bool isFilled = field && !std::isnan(_valueOf(*field));
    const bool isNeeded =
        std::find(reading.needed.begin(), reading.needed.end(), static_cast<Column>(i)) != reading.needed.end();
    if (field && isNeeded && !isFilled)
      return false;
    isAny = isAny || (isFilled && static_cast<Column>(i) != Column::Confidence);
  }
  return isAny;
}

double XdfTable::_valueOf(const Field& field) const
{
  const XdfStream& stream = _stream();
  return stream.numbers[_rows[_at].sample * stream.kept.size() + field.position] * field.factor + field.offset;
}

const std::optional<XdfTable::Field>& XdfTable::_field(Column column) const
{
  static const std::optional<Field> none;
  return _rows[_at].kind == Kind::Sample ? _reading().fields.at(static_cast<std::size_t>(column)) : none;
}

bool XdfTable::has(Column column) const
{
  const bool isSample = _rows[_at].kind == Kind::Sample;
  if (column == Column::Time || column == Column::Reading)
    return true;
  if (column == Column::Person)
    return isSample && _reading().ofPerson;
  if (!isSample)
    return column == Column::Value;
  const std::optional<Field>& field = _field(column);
  return field && !std::isnan(_valueOf(*field));
}

std::string XdfTable::text(Column column) const
{
  const Row& row = _rows[_at];
  const XdfStream& stream = _stream();
  if (column == Column::Reading)
    return row.kind == Kind::Sample ? _reading().name : row.kind == Kind::Start ? "start" : "stop";
  if (column == Column::Person)
    return stream.mapping == nullptr || stream.mapping->person.empty() ? "0" : stream.mapping->person;
  if (column == Column::Time)
    return textOf(seconds(column));
  if (row.kind != Kind::Sample)
    return stream.texts[row.sample * stream.kept.size()];
  return textOf(_valueOf(*_field(column)));
}

double XdfTable::number(Column column) const
{
  const double value = _valueOf(*_field(column));
  if (!(std::abs(value) <= greatestMeasurement))
    refuseValue(column, "a number");
  return value;
}

std::int64_t XdfTable::wholeNumber(Column column, double least, double greatest) const
{
  const double value = column == Column::Person ? std::stod(text(column)) : number(column);
  if (!(value >= least && value <= greatest) || value != std::floor(value))
    refuseValue(column, "a whole number");
  return static_cast<std::int64_t>(value);
}

double XdfTable::seconds(Column /*column*/) const
{
  return _rows[_at].time - _rows.front().time;
}

Error::Place XdfTable::placeOf(Column column) const
{
  std::string field = nameOf(column);
  if (_rows[_at].kind == Kind::Sample && _field(column))
    field = _reading().name + (column == Column::Value ? "" : "." + field);
  return {place().file, 0, field};
}

Error::Place XdfTable::place() const
{
  if (_at >= _rows.size())
    return {_file.path(), 0, {}};
  return {_file.path() + ", stream " + quote(_stream().name) + ", sample " + std::to_string(_rows[_at].sample), 0, {}};
}

double XdfTable::progress() const
{
  return _rows.empty() ? 1. : static_cast<double>(_at) / static_cast<double>(_rows.size());
}

}  // namespace KV::recordings
