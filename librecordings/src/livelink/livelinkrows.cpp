#include "livelink/livelinkrows.hpp"

#include "face/blendshapes.hpp"
#include "face/mapping.hpp"
#include "livelink/timecode.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <limits>

namespace KV::recordings
{
namespace
{
constexpr float confidence = 1.f;  // the rows have none
constexpr double secondsPerDay = 86400.0;
const std::vector<std::string> headNames = {"HeadYaw", "HeadPitch", "HeadRoll"};
const std::vector<std::string> eyeNames = {"LeftEyeYaw", "RightEyeYaw", "LeftEyePitch", "RightEyePitch"};

// JawOpen is what others call jawOpen.
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

template <std::size_t Count>
std::optional<std::array<double, Count>> readAll(const CsvNumbers& numbers, const ColumnGroup<Count>& columns)
{
  if (!columns)
    return {};
  std::array<double, Count> values{};
  for (std::size_t i = 0; i < Count; ++i)
    values.at(i) = numbers.number((*columns)[i]);
  if (!std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); }))
    return {};
  return values;
}

}  // namespace

bool looksLikeLiveLink(const std::string& head)
{
  const auto names = namesIn(headerLineOf(head), ",;\t|");
  return names.size() > 1 && names[0] == "Timecode" && names[1] == "BlendShapeCount";
}

LiveLinkRows::LiveLinkRows(const std::string& path, const ReadingOptions& options)
  : CsvFaceRows(path, isRead),
    _options(options),
    _blendshapes(readMapping(options.mapping)),
    _timecode(findNeeded(file().header(), "Timecode")),
    _count(findNeeded(file().header(), "BlendShapeCount")),
    _scores(findScores(file().header(), _blendshapes.names())),
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
    row.readings = _readReadings(numbers);
  }
  return row;
}

// A time code says no day, so the recording begins at 0. A rate that the user gives counts rows; the time code counts
// sixtieths of a second, of which a row may be several.
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

FaceReadings LiveLinkRows::_readReadings(const CsvNumbers& numbers) const
{
  std::vector<float> scores;
  scores.reserve(_scores.size());
  for (const auto& column : _scores)
    scores.push_back(column ? blendshapeScore(numbers.number(*column)) : std::numeric_limits<float>::quiet_NaN());

  FaceReadings readings;
  _blendshapes.setExpressions(readings, scores, confidence);
  FacePose pose;
  pose.headPosture = _readHead(numbers);
  const auto measured = _readEyes(numbers);
  if (const auto eyes = measured ? measured : _blendshapes.eyes(scores))
    pose.gaze = gazeOf(*eyes, pose.headPosture);
  setPose(readings, pose, _options);
  return readings;
}

// Taken for the signs of the eyes. If rotation was not streamed, all three are 0.
std::optional<KV::HeadPosture> LiveLinkRows::_readHead(const CsvNumbers& numbers) const
{
  const auto angles = readAll(numbers, _head);
  if (!angles)
    return {};
  const auto [yaw, pitch, roll] = *angles;
  if (yaw == 0.0 && pitch == 0.0 && roll == 0.0)
    return {};
  return KV::HeadPosture(degrees(yaw), -degrees(pitch), degrees(roll));
}

// An eye's yaw > 0 is to the own right, its pitch > 0 down.
std::optional<KV::Gaze> LiveLinkRows::_readEyes(const CsvNumbers& numbers) const
{
  const auto angles = readAll(numbers, _eyes);
  if (!angles)
    return {};
  const auto [leftYaw, rightYaw, leftPitch, rightPitch] = *angles;
  return KV::Gaze(-degrees((leftYaw + rightYaw) / 2.0), -degrees((leftPitch + rightPitch) / 2.0));
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
  parts.emplace_back("expressions by blendshapes");
  parts.emplace_back(_options.mirrored ? "mirrored" : "not mirrored");
  return "Live Link Face: " + listed(parts);
}

std::string LiveLinkRows::describePersons() const
{
  return _persons.description() + ", confidence 1, since there is none; " +
         describeMissing({{_head.has_value(), "head pose"}, {false, "distance"}});
}

}  // namespace KV::recordings
