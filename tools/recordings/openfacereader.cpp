#include "openfacereader.hpp"

#include <boost/chrono/duration.hpp>

#include <utility>

namespace tools
{
namespace
{
std::optional<double> asStandard(const boost::optional<double>& value)
{
  return value ? std::make_optional(*value) : std::nullopt;
}

std::string listed(const std::vector<std::string>& parts)
{
  std::string text;
  for (const std::string& part : parts)
    text += (text.empty() ? "" : ", ") + part;
  return text;
}

std::string shortNumber(float value)
{
  std::string text = std::to_string(value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.')
    text.pop_back();
  return text;
}

RecordingEntry entryOf(ko::SystemClock::time_point time, std::int32_t person, bool seen)
{
  RecordingEntry entry;
  entry.time = time;
  entry.person = person;
  entry.seen = seen;
  return entry;
}

}  // namespace

OpenFaceReader::OpenFaceReader(const std::string& path, const ReadingOptions& options)
  : _options(options), _file(path, options), _times(asStandard(options.framesPerSecond), _file.firstFrames())
{
  if (!_times.warning().empty())
    _warnings.push_back(_times.warning());
}

boost::optional<RecordingEntry> OpenFaceReader::next()
{
  while (!_finished)
  {
    if (!_missingPersons.empty())
      return _tellMissingPerson();

    if (_missingFramesTold < _missingFrames)
      _tellMissingFrame();
    else if (const bool hasRow = _row || _fetchRow(); _cycleIsOpen && (!hasRow || _opensCycle(*_row)))
      _endCycle();
    else if (!hasRow)
      _finish();
    else if (auto entry = _tellRow())
      return entry;
  }
  return {};
}

std::vector<std::string> OpenFaceReader::describe() const
{
  return {_describeReadings(), _describeTimesAndPersons()};
}

std::vector<std::string> OpenFaceReader::takeWarnings()
{
  return std::exchange(_warnings, {});
}

// Reads the next row, and refuses it if it cannot follow the last cycle; false at the end.
bool OpenFaceReader::_fetchRow()
{
  auto row = _file.next();
  if (!row)
    return false;
  _rowTime = _timeOf(*row);
  if (_frame && _rowTime < _frameTime)
    _refuse(*row, _file.columns().timestamp ? "timestamp" : "frame",
            "time runs backwards, expected the rows in the order of their frames");
  _row = std::move(row);
  return true;
}

ko::SystemClock::time_point OpenFaceReader::_timeOf(const OpenFaceRow& row) const
{
  if (const auto time = _times.timeOf(row.frame))
    return *time;
  if (_file.columns().timestamp && !row.frame.timestamp)
    _refuse(row, "timestamp", "expected seconds, found no number");
  _refuse(row, _file.columns().frame ? "frame" : "timestamp", "is too far from the first one");
}

bool OpenFaceReader::_opensCycle(const OpenFaceRow& row) const
{
  return !_frame || row.frame != *_frame;
}

// Everyone missed in this cycle is to be told; and so are the frames missing up to the next row.
void OpenFaceReader::_endCycle()
{
  const auto missing = _persons.endCycle();
  _missingPersons.assign(missing.begin(), missing.end());
  _missingTime = _frameTime;
  _cycleIsOpen = false;

  _missingFrames = _row ? _times.missingBetween(*_frame, _row->frame) : 0;
  _missingFramesTold = 0;
}

void OpenFaceReader::_tellMissingFrame()
{
  const auto missing = _persons.endCycle();
  _missingPersons.assign(missing.begin(), missing.end());
  ++_missingFramesTold;
  _missingTime = _frameTime + (_rowTime - _frameTime) / (_missingFrames + 1) * _missingFramesTold;
  if (_persons.empty())
    _missingFramesTold = _missingFrames;
}

RecordingEntry OpenFaceReader::_tellMissingPerson()
{
  const std::int32_t person = _missingPersons.front();
  _missingPersons.pop_front();
  return entryOf(_missingTime, person, false);
}

// Takes the row into its cycle; there is nothing to tell of a face that is not tracked.
boost::optional<RecordingEntry> OpenFaceReader::_tellRow()
{
  const OpenFaceRow row = *std::exchange(_row, std::nullopt);
  _frame = row.frame;
  _frameTime = _rowTime;
  _cycleIsOpen = true;
  if (!row.tracked)
    return {};

  if (!_persons.see(row.face))
    _refuse(row, _file.columns().faceId ? "face_id" : "frame",
            "face " + std::to_string(row.face) + " is there twice in frame " + std::to_string(row.frame.number));
  _anyTracked = true;
  RecordingEntry entry = entryOf(_frameTime, row.face, true);
  entry.observation = row.readings.observedAt(_frameTime);
  return entry;
}

void OpenFaceReader::_finish()
{
  _finished = true;
  if (!_anyTracked)
    _warnings.emplace_back("no face was tracked in the whole file");
}

void OpenFaceReader::_refuse(const OpenFaceRow& row, const std::string& column, const std::string& message) const
{
  throw BadLine({_file.path(), row.line, column}, message);
}

std::string OpenFaceReader::_describeReadings() const
{
  const OpenFaceColumns& columns = _file.columns();
  std::vector<std::string> parts;
  if (columns.rotation || columns.hasGaze())
  {
    parts.emplace_back("angles in radians");
    parts.emplace_back(columns.position && _options.lineOfSight ? "counted from the line of sight to the camera"
                                                                : "counted from the optical axis of the camera");
  }
  if (columns.rotation)
    parts.emplace_back("pose_Rx down, pose_Ry to the own right, pose_Rz to the own left shoulder");
  if (columns.hasGaze())
    parts.emplace_back(std::string(columns.gazeAngle ? "gaze_angle_x" : "gaze vectors x") + " to the own left, y down");
  if (columns.position)
    parts.emplace_back("pose_T in mm");
  if (columns.hasActionUnits())
    parts.emplace_back("action units of " + shortNumber(_options.actionUnitFullScale));
  parts.emplace_back(_options.mirrored ? "mirrored" : "not mirrored");
  return "OpenFace: " + listed(parts);
}

std::string OpenFaceReader::_describeTimesAndPersons() const
{
  const OpenFaceColumns& columns = _file.columns();
  std::vector<std::string> parts = {_times.description()};
  parts.emplace_back(columns.faceId ? "persons by face_id" : "all rows are person 0, since there is no face_id");
  parts.emplace_back(columns.confidence ? "not tracked below confidence " + shortNumber(_options.minimalConfidence)
                                        : "confidence 1, since there is no such column");

  const std::pair<bool, const char*> groups[] = {{columns.rotation.has_value(), "head pose"},
                                                 {columns.hasGaze(), "gaze"},
                                                 {columns.position.has_value(), "distance"},
                                                 {columns.hasActionUnits(), "action units"},
                                                 {columns.landmarks.has_value(), "landmarks"}};
  std::vector<std::string> missing;
  for (const auto& [isThere, name] : groups)
    if (!isThere)
      missing.emplace_back(name);
  return listed(parts) + "; " + (missing.empty() ? "nothing is missing" : "missing: " + listed(missing));
}

}  // namespace tools
