#include "livelink/livelinkrows.hpp"

#include "face/csvscores.hpp"
#include "face/pose.hpp"
#include "livelink/timecode.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr double secondsPerDay = 86400.0;
const std::vector<std::string> headNames = {"HeadYaw", "HeadPitch", "HeadRoll"};
const std::vector<std::string> eyeNames = {"LeftEyeYaw", "RightEyeYaw", "LeftEyePitch", "RightEyePitch"};

// JawOpen is the jawOpen of other programs.
std::string columnOf(std::string blendshape)
{
  blendshape.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(blendshape.front())));
  return blendshape;
}

std::vector<std::optional<std::size_t>> findScores(const CsvHeader& header, const std::vector<std::string>& names)
{
  std::vector<std::optional<std::size_t>> columns;
  columns.reserve(names.size());
  for (const std::string& name : names)
    columns.push_back(header.find(columnOf(name)));
  return columns;
}

std::size_t findNeeded(const CsvHeader& header, const std::string& name)
{
  const auto column = header.find(name);
  if (!column)
    throw Error(header.place(), "there is no column " + name);
  return *column;
}

bool isRead(const std::string& name)
{
  const auto isOneOf = [&name](const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  return isOneOf({"Timecode", "BlendShapeCount"}) || isOneOf(headNames) || isOneOf(eyeNames);
}

}  // namespace

bool looksLikeLiveLink(const std::string& head)
{
  const auto names = namesIn(headerLineOf(head), ",;\t|");
  return names.size() > 1 && names[0] == "Timecode" && names[1] == "BlendShapeCount";
}

LiveLinkRows::LiveLinkRows(InputFile input, const ReadingOptions& options)
  : CsvFaceRows(std::move(input), isRead),
    _options(options),
    _adapter(options),
    _timecode(findNeeded(file().header(), "Timecode")),
    _count(findNeeded(file().header(), "BlendShapeCount")),
    _scores(findScores(file().header(), _adapter.blendshapeNames())),
    _head(file().header().findAll<3>(headNames)),
    _eyes(file().header().findAll<4>(eyeNames)),
    _persons(file().header(), options.personColumn, "")
{}

std::optional<FaceRow> LiveLinkRows::next()
{
  if (!file().next())
    return {};
  return _readRow();
}

// A lost face is a row of a time code and 0 blendshapes.
FaceRow LiveLinkRows::_readRow()
{
  ++_row;
  const CsvNumbers numbers = file().numbers();
  const bool isLost = file().fieldCount() == 2 && _timecode == 0 && _count == 1 && numbers.number(_count) == 0.0;
  if (!isLost)
    numbers.refuseOtherFieldCounts();

  FaceRow row;
  row.line = file().lineNumber();
  row.frame = _readFrame(numbers);
  row.tracked = !isLost && numbers.number(_count) > 0.0;
  if (row.tracked)
  {
    row.face = _persons.personOf(numbers, file().place());
    row.detected = faceOf(_readFace(numbers));
  }
  return row;
}

// A time code has no day, so the recording begins at 0. A rate that the user gives counts rows; the time code counts
// sixtieths of a second, and a row may last several.
Frame LiveLinkRows::_readFrame(const CsvNumbers& numbers)
{
  const auto timeOfDay = secondsOfTimecode(numbers.text(_timecode));
  if (!timeOfDay)
    numbers.refuse(_timecode, "a time HH:MM:SS:FF.frac, in frames of a sixtieth of a second");
  if (_timeOfDay && *timeOfDay < *_timeOfDay - secondsPerDay / 2.0)
    _midnights += secondsPerDay;
  _timeOfDay = timeOfDay;
  _begin = _begin.value_or(*timeOfDay);
  const double seconds = _midnights + *timeOfDay - *_begin;
  return {_options.framesPerSecond ? _row : std::llround(seconds * timecodeRate), seconds};
}

LiveLinkFace LiveLinkRows::_readFace(const CsvNumbers& numbers) const
{
  LiveLinkFace face;
  face.blendshapes = readBlendshapes(numbers, _scores, _adapter);
  if (_head)
  {
    const auto& [yaw, pitch, roll] = *_head;
    face.headYaw = numbers.number(yaw);
    face.headPitch = numbers.number(pitch);
    face.headRoll = numbers.number(roll);
  }
  if (_eyes)
  {
    const auto& [leftYaw, rightYaw, leftPitch, rightPitch] = *_eyes;
    face.leftEyeYaw = numbers.number(leftYaw);
    face.rightEyeYaw = numbers.number(rightYaw);
    face.leftEyePitch = numbers.number(leftPitch);
    face.rightEyePitch = numbers.number(rightPitch);
  }
  return face;
}

FaceRows::Fields LiveLinkRows::fields() const
{
  return {"", "Timecode", _persons.column()};
}

std::string LiveLinkRows::describeReadings() const
{
  std::vector<std::string> parts = {"angles in radians"};
  if (_head)
    parts.emplace_back(
        "HeadYaw to the own right, HeadPitch down, HeadRoll to the own right shoulder (not certain; "
        "left out where all are 0)");
  parts.emplace_back(std::string(_eyes ? "eye yaw to the own right, eye pitch down" : "gaze roughly from EyeLook") +
                     ", added to the head");
  if (_head)
    parts.push_back(describeOrigin(_options, FrontEnd::LiveLink, false));
  parts.emplace_back("expressions by blendshapes");
  parts.emplace_back(_options.mirrored ? "mirrored" : "not mirrored");
  return "Live Link Face: " + listed(parts);
}

std::string LiveLinkRows::describePersons() const
{
  return _persons.description() + ", confidence 1, since the file has none; " +
         describeMissing({{_head.has_value(), "head pose"}, {false, "distance"}});
}

}  // namespace KV::recordings
