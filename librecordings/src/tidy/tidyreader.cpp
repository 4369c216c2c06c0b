#include "tidy/tidyreader.hpp"

#include "recording/recordingclock.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/implausible.hpp>

#include <utility>

namespace KV::recordings
{
namespace
{
// Several scopes may be open at one time, of all other things one.
std::string keyOf(const std::string& reading, const Step& entry)
{
  if (reading == "start")
    return "start " + entry.scopeStarts.back().name;
  if (reading == "stop")
    return "stop " + entry.scopeStops.back();
  return reading;
}

}  // namespace

TidyReader::TidyReader(std::unique_ptr<TidyTable> table) : _table(std::move(table))
{
  const Columns& columns = _table->columns();
  if (!columns.ignored.empty())
    _warnings.push_back("columns that are not read: " + listed(columns.ignored));
  try
  {
    _fetchRow();  // shows from where the times count
  }
  catch (const BadLine&)
  {
    _firstError = std::current_exception();
  }
  if (_ended)
    throw Error(_table->place(), "there is no row below the header");
}

boost::optional<Step> TidyReader::next()
{
  if (const auto error = std::exchange(_firstError, nullptr))
    std::rethrow_exception(error);
  while (_ready.empty())
  {
    if (!_row && !_ended)
      _fetchRow();
    if (_row && (!_anyTime || _rowTime == _time))
      _takeRow();
    else if (_anyTime)
      _endTime();
    else
      return {};
  }
  Step entry = std::move(_ready.front());
  _ready.pop_front();
  return entry;
}

std::vector<std::string> TidyReader::describe() const
{
  const std::string persons = _table->hasColumn(TidyColumn::Person)
                                  ? "persons by the column person"
                                  : "all rows are person 0, since there is no column person";
  return {std::string(_table->kind()) +
              ": angles in degrees; head yaw to the own right, gaze yaw to the own left, pitch up",
          _describeTimes() + "; " + persons + "; confidence 1 where none is given"};
}

std::string TidyReader::_describeTimes() const
{
  if (_hasMoments)
    return "times in UTC";
  return _origin.value_or(recordingEpoch) > 0. ? "times in seconds from the start" : "times in seconds since 1970";
}

std::vector<std::string> TidyReader::takeWarnings()
{
  return std::exchange(_warnings, {});
}

// Afterwards, the next row or the end is the present one.
void TidyReader::_fetchRow()
{
  if (!_table->next())
  {
    _ended = true;
    return;
  }
  TidyRow row = readTidyRow(*_table);
  const auto time = _timeOf(row);
  _anyRow = true;
  if (time < _time)
    _table->refuse(TidyColumn::Time, "time runs backwards, expected the rows in the order of their times");
  _row = std::move(row);
  _rowTime = time;
}

ko::SystemClock::time_point TidyReader::_timeOf(const TidyRow& row)
{
  _hasMoments = row.moment.has_value();
  if (row.moment)
  {
    const auto found = _anyRow ? boost::none : implausibleTime(*row.moment);
    if (found)
      _table->refuse(TidyColumn::Time, found->message);
    return *row.moment;
  }
  const double seconds = row.seconds;
  const double origin = seconds > earliestEpochTimestamp ? 0. : recordingEpoch;
  if (_origin && origin != *_origin)
    _table->refuse(TidyColumn::Time, "some rows count from the start of the recording, others since 1970");
  if (origin + seconds > greatestSecond || origin + seconds < 0.)
    _table->refuse(TidyColumn::Time, "is too far from the start of the recording");
  if (_anyRow && origin > 0. && origin + seconds > secondsOf(_time) + longestPause)
    _table->refuse(TidyColumn::Time, tooLate(origin + seconds - secondsOf(_time)));
  _origin = origin;
  return timeAfter(origin, seconds);
}

// Adds the row to its step; the step is unchanged if the row is bad or empty.
void TidyReader::_takeRow()
{
  const TidyRow row = *std::exchange(_row, std::nullopt);
  _time = _rowTime;
  _anyTime = true;

  const std::optional<std::int32_t> person = _personOf(row);
  StepInMaking step = _stepOf(person);
  if (!addTidyReading(*_table, row.reading, step.entry))
    return;
  if (!step.readings.insert(keyOf(row.reading, step.entry)).second)
    _table->refuse(TidyColumn::Reading, row.reading + " is there twice at this time");
  if (!step.entry.seen && step.readings.size() > 1)
    _table->refuse(TidyColumn::Reading, "person " + *row.person + " is not seen at this time, and yet observed");
  (person ? _steps[*person] : _room) = std::move(step);
}

std::optional<std::int32_t> TidyReader::_personOf(const TidyRow& row)
{
  if (!row.person)
    return {};
  return _persons.numberOf(*row.person, _table->placeOf(TidyColumn::Person));
}

TidyReader::StepInMaking TidyReader::_stepOf(const std::optional<std::int32_t>& person) const
{
  if (!person)
    return _room;
  const auto found = _steps.find(*person);
  if (found != _steps.end())
    return found->second;
  StepInMaking step;
  step.entry.time = _time;
  step.entry.person = *person;
  step.entry.personName = _persons.nameOf(*person);
  return step;
}

// Returns all steps of one time, the scopes and the room with the first and the last of them.
void TidyReader::_endTime()
{
  for (auto& [person, step] : _steps)
    _ready.push_back(std::move(step.entry));
  Step& room = _room.entry;
  if (_ready.empty() && !_room.readings.empty())
    _ready.emplace_back().time = _time;
  if (!_ready.empty())
  {
    _ready.front().scopeStarts = std::move(room.scopeStarts);
    _ready.front().ambianceActivity = room.ambianceActivity;
    _ready.front().movements = room.movements;
    _ready.back().scopeStops = std::move(room.scopeStops);
  }
  _steps.clear();
  _room = StepInMaking();
  _anyTime = false;
}

}  // namespace KV::recordings
