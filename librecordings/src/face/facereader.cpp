#include "face/facereader.hpp"

#include "face/settingname.hpp"
#include "recording/recordingclock.hpp"

#include <boost/chrono/duration.hpp>

#include <utility>

namespace KV::recordings
{
namespace
{
std::optional<double> asStandard(const boost::optional<double>& value)
{
  return value ? std::make_optional(*value) : std::nullopt;
}

// The first of two names that exists.
std::string nameOf(const std::string& first, const std::string& second)
{
  return first.empty() ? second : first;
}

Step entryOf(ko::SystemClock::time_point time, std::int32_t person, const FaceRows& rows, bool seen)
{
  Step entry;
  entry.time = time;
  entry.person = person;
  entry.personName = rows.nameOf(person);
  entry.seen = seen;
  return entry;
}

}  // namespace

FaceReader::FaceReader(std::unique_ptr<FaceRows> rows, const ReadingOptions& options)
  : _rows(std::move(rows)),
    _ahead([this] { return _rows->next(); }),
    _times(asStandard(options.framesPerSecond), _lookAhead(), _rows->assumedRate(), options.rateName),
    _rateName(options.rateName)
{
  if (!_times.warning().empty())
    _warnings.push_back(_times.warning());
}

boost::optional<Step> FaceReader::next()
{
  while (!_finished)
  {
    if (!_missingPersons.empty())
      return _stepOfMissingPerson();

    if (_missingFramesReported < _missingFrames)
      _beginMissingFrame();
    else if (const bool hasRow = _row || _fetchRow(); _cycleIsOpen && (!hasRow || _opensCycle(*_row)))
      _endCycle();
    else if (!hasRow)
      _finish();
    else if (auto entry = _stepOfRow())
      return entry;
  }
  return {};
}

std::vector<std::string> FaceReader::describe() const
{
  return {_rows->describeReadings(), _times.description() + ", " + _rows->describePersons()};
}

std::vector<std::string> FaceReader::takeWarnings()
{
  auto warnings = std::exchange(_warnings, {});
  for (std::vector<std::string> others : {_rows->takeWarnings(), _scores.takeWarnings()})
    warnings.insert(warnings.end(), others.begin(), others.end());
  return warnings;
}

// Returns the frames of the first rows; at least one.
std::vector<Frame> FaceReader::_lookAhead()
{
  fetchFrames(_ahead, [](const FaceRow& row) { return row.frame; });
  if (_ahead.empty())
    throw Error({_rows->path(), _rows->lineNumber(), {}}, _rows->nothingToRead());
  std::vector<Frame> frames;
  _ahead.forEach([&frames](const FaceRow& row) { frames.push_back(row.frame); });
  if (frames.empty())
    frames.emplace_back();
  return frames;
}

// Reads the next row, and refuses it if it is too early to follow the last cycle; false at the end.
bool FaceReader::_fetchRow()
{
  auto row = _ahead.next();
  if (!row)
    return false;
  _rowTime = _timeOf(*row);
  if (_frame && _rowTime < _frameTime)
    _refuse(*row, nameOf(_rows->fields().timestamp, _rows->fields().frame),
            "time runs backwards, expected the rows in the order of their frames");
  if (_frame && _times.countFromStart() && secondsOf(_rowTime) > secondsOf(_frameTime) + longestPause)
    _refuse(*row, _rows->fields().timestamp, tooLate(secondsOf(_rowTime) - secondsOf(_frameTime)));
  _warnOfLateTimestamps(*row);
  _row = row;
  return true;
}

ko::SystemClock::time_point FaceReader::_timeOf(const FaceRow& row) const
{
  if (const auto time = _times.timeOf(row.frame))
    return *time;
  const FaceRows::Fields fields = _rows->fields();
  if (!fields.timestamp.empty() && !row.frame.timestamp)
    _refuse(row, fields.timestamp, "expected seconds, found no number");
  _refuse(row, nameOf(fields.frame, fields.timestamp), "is too far from the first one");
}

// The rate was guessed from the first rows.
void FaceReader::_warnOfLateTimestamps(const FaceRow& row)
{
  if (!_times.areAssumed() || !row.frame.timestamp || *row.frame.timestamp == 0.0 || _warnedOfTimestamps)
    return;
  _warnedOfTimestamps = true;
  _warnings.push_back("line " + std::to_string(row.line) +
                      " has a time stamp, but the first rows have no time stamps: it is ignored, with all later ones; "
                      "give the rate of the video" +
                      settingName(_rateName));
}

bool FaceReader::_opensCycle(const FaceRow& row) const
{
  return !_frame || row.frame != *_frame;
}

// All persons missed in this cycle are reported; and so are the frames missing up to the next row.
void FaceReader::_endCycle()
{
  const auto missing = _persons.endCycle();
  _missingPersons.assign(missing.begin(), missing.end());
  _missingTime = _frameTime;
  _cycleIsOpen = false;

  _missingFrames = _row ? _times.missingBetween(*_frame, _row->frame) : 0;
  _missingFramesReported = 0;
}

void FaceReader::_beginMissingFrame()
{
  const auto missing = _persons.endCycle();
  _missingPersons.assign(missing.begin(), missing.end());
  ++_missingFramesReported;
  _missingTime = _frameTime + (_rowTime - _frameTime) / (_missingFrames + 1) * _missingFramesReported;
  if (_persons.empty())
    _missingFramesReported = _missingFrames;
}

Step FaceReader::_stepOfMissingPerson()
{
  const std::int32_t person = _missingPersons.front();
  _missingPersons.pop_front();
  return entryOf(_missingTime, person, *_rows, false);
}

// Takes the row into its cycle; a face that is not tracked has no readings.
boost::optional<Step> FaceReader::_stepOfRow()
{
  const FaceRow row = *std::exchange(_row, std::nullopt);
  _frame = row.frame;
  _frameTime = _rowTime;
  _cycleIsOpen = true;
  if (!row.tracked)
    return {};

  if (!_persons.see(row.face))
    _refuse(row, nameOf(_rows->fields().face, _rows->fields().frame),
            "face " + std::to_string(row.face) + " is there twice in frame " + std::to_string(row.frame.number));
  _anyTracked = true;
  if (const auto found = _scores.look(row.detected))
    _refuse(row, found->member, found->message);
  Step entry = entryOf(_frameTime, row.face, *_rows, true);
  // Learned in the order of returned faces, not when rows are read ahead: a live program has no future, either.
  RestingFace& rest = _resting.of(row.face, _frameTime);
  entry.observation = _rows->adapter().read(row.detected, _frameTime, rest).observedAt(_frameTime);
  return entry;
}

void FaceReader::_finish()
{
  _finished = true;
  if (!_anyTracked)
    _warnings.emplace_back("no face was tracked in the whole file");
}

void FaceReader::_refuse(const FaceRow& row, const std::string& column, const std::string& message) const
{
  throw BadLine({_rows->path(), row.line, column}, message);
}

}  // namespace KV::recordings
