#include "pyfeat/pyfeatrows.hpp"

#include "face/csvscores.hpp"
#include "face/faceadapterprivate.hpp"
#include "face/pose.hpp"
#include "face/settingname.hpp"
#include "pyfeat/approximaterate.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <set>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// "MM:SS" or "HH:MM:SS"; nothing for any other text.
std::optional<std::int64_t> readSeconds(std::string_view text)
{
  std::int64_t seconds = 0;
  std::size_t parts = 0;
  while (parts < 3)
  {
    const std::size_t end = std::min(text.find(':'), text.size());
    std::int32_t part = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + end, part);
    if (error != std::errc() || rest != text.data() + end || part < 0)
      return {};
    seconds = 60 * seconds + part;
    ++parts;
    if (end == text.size())
      return parts > 1 ? std::make_optional(seconds) : std::nullopt;
    text.remove_prefix(end + 1);
  }
  return {};
}

template <std::size_t Count>
std::array<double, Count> unknownAngles()
{
  std::array<double, Count> angles{};
  angles.fill(notANumber);
  return angles;
}

// The height of the first two nodLandmarks, at the ears, below that of the others, at the eyes: y is positive down.
double nodOf(const CsvNumbers& numbers, const PyFeatColumns& columns)
{
  if (!columns.nod)
    return notANumber;
  constexpr std::size_t count = nodLandmarks.size();
  const auto x = [&](std::size_t i) { return numbers.number((*columns.nod)[i]); };
  const auto y = [&](std::size_t i) { return numbers.number((*columns.nod)[count + i]); };
  const double ears = (y(0) + y(1)) / 2.0;
  const double eyes = (y(2) + y(3) + y(4) + y(5)) / 4.0;
  const double width = std::hypot(x(5) - x(2), y(5) - y(2));
  return width > 0.0 ? (ears - eyes) / width : notANumber;
}

}  // namespace

PyFeatRows::PyFeatRows(InputFile input, const ReadingOptions& options)
  : CsvFaceRows(std::move(input), isOfPyFeat),
    _options(options),
    _adapter(options),
    _columns(findPyFeatColumns(file().header(), _adapter.actionUnitNames(), _adapter.emotionNames())),
    _chosenPersons(file().header(), options.personColumn, "Identity"),
    _convention(_adapter._p->mapping.pyFeat),
    _ahead([this] { return _readRaw(); })
{
  _learnFromFirstRows();
}

std::optional<FaceRow> PyFeatRows::next()
{
  auto raw = _ahead.next();
  if (!raw)
    return {};
  FaceRow& row = raw->row;
  if (_frame != row.frame.number)
    _facesInFrame = 0;
  _frame = row.frame.number;
  if (!row.tracked)
    return row;

  if (_convention.isContradictedBy(raw->angles))
    throw BadLine(_placeOf(*raw, "Pitch, Roll, Yaw"),
                  "an angle is beyond 3.2, and so in degrees, while the first rows were taken for radians; give the "
                  "unit by pyFeat.angles in a mapping" +
                      settingName(_options.mappingName));
  row.face = _personOf(*raw);
  raw->face.units = _convention.units();
  row.detected = faceOf(raw->face);
  // Without a column for found faces, the readings decide whether a face was found.
  if (!_columns.faceScore)
    row.tracked = !_adapter.read(row.detected).empty();
  return row;
}

std::optional<PyFeatRows::Raw> PyFeatRows::_readRaw()
{
  if (!file().next())
    return {};
  const CsvNumbers numbers = file().numbers();
  numbers.refuseOtherFieldCounts();

  Raw raw;
  raw.row.line = file().lineNumber();
  if (_columns.frame)
    raw.row.frame.number = numbers.frameNumber(*_columns.frame);
  else
    _frames.count(raw.row.frame, false);
  if (_columns.approximateTime)
    raw.second = readSeconds(numbers.text(*_columns.approximateTime));

  const double score = _columns.faceScore ? numbers.number(*_columns.faceScore) : 1.0;
  raw.face.confidence = static_cast<float>(score);
  raw.row.tracked = _adapter.isTracked(raw.face.confidence);
  if (raw.row.tracked)
    _readFace(numbers, raw);
  return raw;
}

void PyFeatRows::_readFace(const CsvNumbers& numbers, Raw& raw)
{
  PyFeatFace& face = raw.face;
  face.actionUnits = readActionUnits(numbers, _columns.actionUnits, _adapter);
  if (_columns.hasEmotions())
    face.emotions = readEmotions(numbers, _columns.emotions, _adapter);
  face.landmarks = readLandmarks(numbers, _columns.landmarks);
  face.rotation = numbers.all(_columns.rotation);
  face.gaze = numbers.all(_columns.gaze);
  raw.angles = {face.rotation.value_or(unknownAngles<3>()), face.gaze.value_or(unknownAngles<2>()),
                nodOf(numbers, _columns)};
  if (!_options.personColumn.empty())
    raw.row.face = _chosenPersons.personOf(numbers, file().place());
  else if (_columns.identity)
    raw.identity = numbers.text(*_columns.identity);
}

void PyFeatRows::_learnFromFirstRows()
{
  fetchFrames(_ahead, [](const Raw& raw) { return raw.row.frame.number; });
  std::set<std::int64_t> seconds;
  _ahead.forEach([&seconds](const Raw& raw) {
    if (raw.second)
      seconds.insert(*raw.second);
  });
  if (seconds.size() == 1 && _ahead.size() >= rowsAhead)
    _ahead.fetch(mostRowsAhead);  // one second does not show the rate
  ApproximateRate rate;
  _ahead.forEach([&](const Raw& raw) {
    if (raw.second)
      rate.add(raw.row.frame.number, *raw.second);
    if (!raw.row.tracked)
      return;
    _areIdentified = _areIdentified || !raw.identity.empty();
    _convention.learn(raw.identity, raw.angles);
  });
  _convention.decide();
  if (std::string warning = _convention.warning(_options.mappingName); !warning.empty())
    _warnings.push_back(std::move(warning));
  _assumedRate = rate.rate().value_or(AssumedRate());
}

// Without identities, the faces of a frame are numbered.
std::int32_t PyFeatRows::_personOf(const Raw& raw)
{
  if (!_options.personColumn.empty())
    return raw.row.face;
  if (_areIdentified)
    return _identities.numberOf(raw.identity, _placeOf(raw, "Identity"));
  if (_facesInFrame > 0 && !std::exchange(_warnedOfSeveral, true))
    _warnings.emplace_back(
        "there are several faces in a frame and no Identity: they are counted in the order of their rows, which does "
        "not stay with one person");
  return _facesInFrame++;
}

Error::Place PyFeatRows::_placeOf(const Raw& raw, const std::string& field) const
{
  return {path(), raw.row.line, field};
}

FaceRows::Fields PyFeatRows::fields() const
{
  return {_columns.frame ? "frame" : "", "", _areIdentified ? "Identity" : _options.personColumn};
}

std::string PyFeatRows::describeReadings() const
{
  std::vector<std::string> parts;
  if (_columns.rotation)
    parts.push_back(_convention.describeRotation());
  if (_columns.gaze)
    parts.push_back(_convention.describeGaze());
  parts.push_back(describeOrigin(_options, FrontEnd::PyFeat, false));
  if (_columns.hasEmotions())
    parts.emplace_back("expressions by emotions");
  else if (_columns.hasActionUnits())
    parts.emplace_back("expressions by action units");
  parts.emplace_back(_options.mirrored ? "mirrored" : "not mirrored");
  return "py-feat: " + listed(parts);
}

std::string PyFeatRows::describePersons() const
{
  const std::string persons = !_options.personColumn.empty() ? _chosenPersons.description()
                              : _areIdentified               ? "persons by Identity"
                                                             : "persons in the order of their rows, without Identity";
  const std::string confidence = _columns.faceScore
                                     ? "not tracked below FaceScore " + shortNumber(_options.minimalConfidence)
                                     : "confidence 1, since there is no FaceScore";
  return persons + ", " + confidence + "; " +
         describeMissing({{_columns.rotation.has_value(), "head pose"},
                          {_columns.gaze.has_value(), "gaze"},
                          {false, "distance"},
                          {_columns.hasActionUnits(), "action units"},
                          {_columns.hasEmotions(), "emotions"},
                          {_columns.landmarks.has_value(), "landmarks"}});
}

std::string PyFeatRows::nameOf(std::int32_t person) const
{
  return _options.personColumn.empty() ? _identities.nameOf(person) : _chosenPersons.nameOf(person);
}

std::vector<std::string> PyFeatRows::takeWarnings()
{
  return std::exchange(_warnings, {});
}

}  // namespace KV::recordings
