#include "tidy/tidyreadings.hpp"

#include "recording/scalecheck.hpp"

#include <skeigiot/readings.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <ko/utf8.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <string_view>
#include <type_traits>
#include <utility>

namespace KV::recordings
{
namespace
{
using Column = TidyColumn;

/// The fields of the table's present row, in the types of readings.
class Fields
{
public:
  explicit Fields(const TidyTable& table) : _table(table) {}

  /// Also refuses numbers that are far from their scales.
  Fields(const TidyTable& table, const std::string& reading, const std::map<Column, KV::Scale>& scales)
    : _table(table), _reading(reading), _scales(&scales)
  {}

  bool has(Column column) const { return _table.has(column); }

  std::string text(Column column) const
  {
    _refuseMissing(column);
    return _table.text(column);
  }

  /// Texts must be UTF-8 to be exported as JSON.
  std::string utf8Text(Column column) const
  {
    std::string word = text(column);
    if (!ko::isUtf8(word))
      _table.refuseValue(column, "text in UTF-8");
    return word;
  }

  float number(Column column) const
  {
    _refuseMissing(column);
    const auto value = static_cast<float>(_table.number(column));
    if (!std::isfinite(value))
      _table.refuseValue(column, "a number");
    _refuseImplausible(column, static_cast<double>(value));
    return value;
  }

  double seconds(Column column) const
  {
    _refuseMissing(column);
    return _table.seconds(column);
  }

  template <typename Integer>
  Integer whole(Column column, Integer least = std::numeric_limits<Integer>::min()) const
  {
    _refuseMissing(column);
    return static_cast<Integer>(_table.wholeNumber(column, least, std::numeric_limits<Integer>::max()));
  }

  bool truth(Column column) const
  {
    const std::string word = text(column);
    for (const char* const yes : {"true", "True", "TRUE", "1", "1.0"})
      if (word == yes)
        return true;
    for (const char* const no : {"false", "False", "FALSE", "0", "0.0"})
      if (word == no)
        return false;
    _table.refuseValue(column, "true or false");
  }

  /// A reading without a confidence has confidence 1.
  float confidence() const { return has(Column::Confidence) ? number(Column::Confidence) : 1.f; }

private:
  void _refuseMissing(Column column) const
  {
    if (!has(column))
      _table.refuse(column, "is missing");
  }

  void _refuseImplausible(Column column, double value) const
  {
    if (_scales == nullptr)
      return;
    const auto scale = _scales->find(column);
    if (scale != _scales->end() && isFarFrom(value, scale->second))
      _table.refuse(column, _subject(column) + farFromText(value, scale->second));
  }

  /// Names the reading, unless the column does.
  std::string _subject(Column column) const
  {
    const bool isNamed = _table.placeOf(column).field.compare(0, _reading.size(), _reading) == 0;
    return isNamed ? "" : _reading + " of ";
  }

  const TidyTable& _table;
  std::string _reading;
  const std::map<Column, KV::Scale>* _scales = nullptr;
};

/// Reads one number or truth value.
template <typename T>
T read(const Fields& fields, Column column)
{
  if constexpr (std::is_same_v<T, bool>)
    return fields.truth(column);
  else if constexpr (std::is_floating_point_v<T>)
    return fields.number(column);
  else
    return fields.whole<T>(column);
}

/// Returns the columns of the parts of a value, in their order: each has the name of its part.
template <typename Value>
const std::vector<Column>& columnsOfParts()
{
  static const std::vector<Column> all = [] {
    std::vector<Column> columns;
    forEachPart<Value>([&columns](const auto& part) { columns.push_back(tidyColumnNamed(part.name).value()); });
    return columns;
  }();
  return all;
}

template <typename Value>
std::vector<Column> columnsNeededBy()
{
  std::vector<Column> columns = columnsOfParts<Value>();
  columns.erase(std::remove(columns.begin(), columns.end(), Column::Confidence), columns.end());
  return columns;
}

/// Reads a value from the columns of its parts. Without a confidence, its confidence is 1.
template <typename Value>
Value readAll(const Fields& fields)
{
  auto value = blankReading<Value>();
  auto next = columnsOfParts<Value>().begin();
  forEachPart<Value>([&](const auto& part) {
    const Column column = *next++;
    if (column == Column::Confidence && !fields.has(column))
      part.put(1.f, value);
    else
      part.put(read<std::decay_t<decltype(part.in(value))>>(fields, column), value);
  });
  return value;
}

/// A point has two coordinates; other parts have one value.
template <>
KV::FacialPoints::Point readAll(const Fields& fields)
{
  const float x = fields.number(Column::X);
  const float y = fields.number(Column::Y);
  return {{x, y}, fields.confidence()};
}

template <>
std::vector<Column> columnsNeededBy<KV::FacialPoints::Point>()
{
  return {Column::X, Column::Y};
}

void addSeen(const Fields& fields, Step& step)
{
  step.seen = fields.truth(Column::Value);
}

void addActivity(const Fields& fields, Step& step)
{
  step.ambianceActivity = fields.number(Column::Value);
}

void addMovements(const Fields& fields, Step& step)
{
  step.movements = fields.whole<int>(Column::Value, 0);
}

void addStart(const Fields& fields, Step& step)
{
  ScopeStart start{fields.utf8Text(Column::Value)};
  if (fields.has(Column::Samples))
    start.samples = fields.whole<std::int32_t>(Column::Samples);
  step.scopeStarts.push_back(start);
}

void addStop(const Fields& fields, Step& step)
{
  step.scopeStops.push_back(fields.utf8Text(Column::Value));
}

/// The fields that one reading needs from a row.
struct Reading
{
  std::vector<Column> needed;
  std::function<void(const Fields& fields, Step& step)> add;
  bool ofPerson = true;
  std::vector<Column> optional = {};
  std::map<Column, KV::Scale> scales = {};
};

using Readings = std::map<std::string, Reading>;

/// Returns the scale of each column of a value of this kind; parts may have a scale of their own.
template <typename Value>
std::map<Column, KV::Scale> scalesOf(const std::vector<Column>& needed, const KV::Scale& scale)
{
  std::map<Column, KV::Scale> scales = {{Column::Confidence, KV::scale::share}};
  for (const Column column : needed)
    scales.emplace(column, scale);
  forEachPart<Value>([&scales](const auto& part) {
    const auto column = tidyColumnNamed(part.name);
    if (column && part.scale)
      scales.insert_or_assign(*column, *part.scale);
  });
  return scales;
}

/// A reading of several scores or points has a row for each; they are added to those of the step.
template <typename Known>
void addRowForEachPart(Readings& all, const Known& known)
{
  using Value = typename Known::Value;
  forEachPart<Value>([&all, known](const auto& part) {
    using Part = std::decay_t<decltype(part.in(std::declval<const Value&>()))>;
    Reading& row = all[known.name + std::string(".") + part.name];
    row.needed = columnsNeededBy<Part>();
    row.add = [known, part](const Fields& fields, Step& step) {
      const Part read = readAll<Part>(fields);
      auto& reading = known.in(step.observation);
      if (!reading)
        reading.emplace(step.time, Value());
      part.put(read, reading->value);
    };
    row.scales = scalesOf<Part>(row.needed, part.scale.value_or(known.scale));
  });
}

template <typename Known>
void addReading(Readings& all, const Known& known)
{
  using Value = typename Known::Value;
  if constexpr (std::is_base_of_v<KV::Expressions, Value> || std::is_same_v<KV::FacialPoints, Value>)
    addRowForEachPart(all, known);
  else
  {
    Reading& row = all[known.name];
    row.needed = columnsNeededBy<Value>();
    row.add = [known](const Fields& fields, Step& step) {
      known.in(step.observation).emplace(step.time, readAll<Value>(fields));
    };
    row.scales = scalesOf<Value>(row.needed, known.scale);
  }
}

Readings makeReadings()
{
  const std::vector<Column> value = {Column::Value};
  Readings all = {
      {"seen", {value, addSeen}},
      {"ambiance.activity", {value, addActivity, false}},
      {"ambiance.movements", {value, addMovements, false}},
      {"start", {value, addStart, false, {Column::Samples}}},
      {"stop", {value, addStop, false}},
  };
  forEachReading([&all](const auto& known) { addReading(all, known); });
  return all;
}

const Readings& readings()
{
  static const Readings all = makeReadings();
  return all;
}

bool contains(const std::vector<Column>& columns, Column column)
{
  return std::find(columns.begin(), columns.end(), column) != columns.end();
}

// Every reading may have a confidence: a table of several readings has it in every row.
void refuseWhatTheReadingHasNot(const TidyTable& table, const Reading& reading, const std::string& name)
{
  for (const Column column : {Column::Value, Column::Yaw, Column::Pitch, Column::Roll, Column::Valence,
                              Column::Lifetime, Column::X, Column::Y, Column::Samples})
    if (table.has(column) && !contains(reading.needed, column) && !contains(reading.optional, column))
      table.refuse(column, "does not belong to the reading " + name);
}

bool isNumber(std::string_view text)
{
  text.remove_prefix(!text.empty() && text.front() == '+' ? 1 : 0);
  double number = 0.;
  const char* const end = text.data() + text.size();
  return std::from_chars(text.data(), end, number).ptr == end;
}

/// Returns the number or the name of the person: a number has to be a whole one.
std::optional<std::string> personOf(const TidyTable& table, bool ofPerson)
{
  if (ofPerson && !table.hasColumn(Column::Person))
    return "0";
  if (ofPerson)
  {
    const Fields fields(table);
    std::string person = fields.text(Column::Person);
    return isNumber(person) ? std::to_string(fields.whole<std::int32_t>(Column::Person)) : std::move(person);
  }
  if (table.has(Column::Person))
    table.refuse(Column::Person, "expected no person, since the row is about the room or a scope");
  return {};
}

}  // namespace

std::optional<TidyReading> tidyReadingNamed(const std::string& name)
{
  const auto found = readings().find(name);
  if (found == readings().end())
    return {};
  return TidyReading{found->second.needed, found->second.optional, found->second.ofPerson};
}

std::vector<std::string> tidyReadingNames()
{
  std::vector<std::string> names;
  for (const auto& [name, reading] : readings())
    names.push_back(name);
  return names;
}

namespace
{
// Whether the reading is of a person, and not of the room or a scope.
bool isOfPerson(const TidyTable& table, const std::string& reading)
{
  bool result = false;
  const auto found = readings().find(reading);
  if (found != readings().end())
    result = found->second.ofPerson;
  else
    table.refuse(Column::Reading, "there is no reading " + quote(reading));
  return result;
}

}  // namespace

TidyRow readTidyRow(const TidyTable& table)
{
  const Fields fields(table);
  TidyRow row;
  row.moment = table.moment();
  if (!row.moment)
    row.seconds = fields.seconds(Column::Time);
  row.reading = fields.text(Column::Reading);
  row.person = personOf(table, isOfPerson(table, row.reading));
  return row;
}

bool addTidyReading(const TidyTable& table, const std::string& name, Step& step)
{
  const Reading& reading = readings().at(name);
  refuseWhatTheReadingHasNot(table, reading, name);
  const auto isFilled = [&table](Column column) { return table.has(column); };
  const bool canBeEmpty = reading.ofPerson;
  if (canBeEmpty && std::none_of(reading.needed.begin(), reading.needed.end(), isFilled))
    return false;
  reading.add(Fields(table, name, reading.scales), step);
  return true;
}

}  // namespace KV::recordings
