#include "openfacerow.hpp"

#include "quote.hpp"
#include "viewingangles.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace tools
{
namespace
{
constexpr double degreesPerRadian = 57.295779513082320877;
constexpr double millimetresPerMetre = 1000.0;
constexpr double greatestFrame = 1e15;  // up to here a double holds every whole number

// Seconds that fit a clock in nanoseconds, whether they count from the start of the recording or since 1970.
constexpr double earliestTimestamp = -1.5e9;
constexpr double latestTimestamp = 9.2e9;

// Beyond it a number is none that was measured, and its square might not fit a float.
constexpr double greatestMeasurement = 1e15;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

bool isMissing(std::string_view field)
{
  return field.empty() || field == "NA" || field == "None" || field == "null";
}

bool isFinite(double a, double b)
{
  return std::isfinite(a) && std::isfinite(b);
}

bool isFinite(double a, double b, double c)
{
  return isFinite(a, b) && std::isfinite(c);
}

float degrees(double radians)
{
  return static_cast<float>(radians * degreesPerRadian);
}

// The numbers of one row.
class Numbers
{
public:
  Numbers(const CsvRows& rows, const OpenFaceColumns& columns) : _rows(rows), _columns(columns) {}

  [[noreturn]] void refuse(std::size_t column, const std::string& expected) const
  {
    throw BadLine({_rows.file().path(), _rows.file().lineNumber(), _columns.names[column]},
                  "expected " + expected + ", found " + quote(_rows.fields()[column]));
  }

  // NaN if there is none.
  double number(std::size_t column) const
  {
    std::string_view field = _rows.fields()[column];
    if (isMissing(field))
      return notANumber;
    if (field.front() == '+')
      field.remove_prefix(1);
    double value = notANumber;
    const char* const end = field.data() + field.size();
    const auto result = std::from_chars(field.data(), end, value);
    if (result.ptr != end || result.ec == std::errc::invalid_argument)
      refuse(column, "a number");
    return std::abs(value) <= greatestMeasurement ? value : notANumber;
  }

  std::int64_t wholeNumber(std::size_t column, double least, double greatest) const
  {
    const double value = number(column);
    if (!(value >= least && value <= greatest) || value != std::floor(value))
      refuse(column, "a whole number");
    return static_cast<std::int64_t>(value);
  }

private:
  const CsvRows& _rows;
  const OpenFaceColumns& _columns;
};

// Reads the face of one tracked row.
class Face
{
public:
  Face(const Numbers& numbers, const OpenFaceColumns& columns, const ReadingOptions& options, float confidence)
    : _numbers(numbers), _columns(columns), _options(options), _confidence(confidence)
  {}

  FaceReadings read() const
  {
    FaceReadings readings;
    const auto position = _position();
    if (position)
    {
      readings.distance = static_cast<float>(position->distance() / millimetresPerMetre);
      if (_options.cameraHeight)
        readings.headHeight = *_options.cameraHeight - static_cast<float>(position->down / millimetresPerMetre);
    }

    const auto bearing = position && _options.lineOfSight ? bearingOf(*position) : Bearing();
    readings.headPosture = _asSeenBy(bearing, _headPosture());
    readings.gaze = _asSeenBy(bearing, _gaze());

    const ActionUnits units = _actionUnits();
    readings.smile = smileOf(units, _confidence);
    readings.expressions = expressionsOf(units, _confidence);
    readings.facialPoints = _facialPoints();
    return readings;
  }

private:
  template <typename Angles>
  std::optional<Angles> _asSeenBy(const Bearing& bearing, const std::optional<Angles>& angles) const
  {
    if (!angles)
      return {};
    const Angles relative = relativeToLineOfSight(*angles, bearing);
    return _options.mirrored ? unmirrored(relative) : relative;
  }

  std::optional<FacePosition> _position() const
  {
    if (!_columns.position)
      return {};
    const auto& [x, y, z] = *_columns.position;
    const FacePosition position{_numbers.number(x), _numbers.number(y), _numbers.number(z)};
    const double distance = position.distance();
    if (!std::isfinite(distance) || distance <= 0.0)
      return {};
    return position;
  }

  // OpenFace: Rx > 0 is down, Ry > 0 to the person's own right, Rz > 0 tilted to the own left shoulder.
  std::optional<KV::HeadPosture> _headPosture() const
  {
    if (!_columns.rotation)
      return {};
    const auto& [x, y, z] = *_columns.rotation;
    const double pitch = _numbers.number(x);
    const double yaw = _numbers.number(y);
    const double roll = _numbers.number(z);
    if (!isFinite(pitch, yaw, roll))
      return {};
    return KV::HeadPosture(degrees(yaw), -degrees(pitch), -degrees(roll));
  }

  // OpenFace: x > 0 is to the person's own left, y > 0 down.
  std::optional<KV::Gaze> _gaze() const
  {
    const auto [x, y] = _columns.gazeAngle ? _gazeAngle() : _gazeAngleOfVectors();
    if (!isFinite(x, y))
      return {};
    return KV::Gaze(degrees(x), -degrees(y));
  }

  std::pair<double, double> _gazeAngle() const
  {
    const auto& [x, y] = *_columns.gazeAngle;
    return {_numbers.number(x), _numbers.number(y)};
  }

  // The angles of the mean of both eyes, as OpenFace forms them.
  std::pair<double, double> _gazeAngleOfVectors() const
  {
    if (!_columns.gazeVectors)
      return {notANumber, notANumber};
    const auto& [x0, y0, z0, x1, y1, z1] = *_columns.gazeVectors;
    const double x = _numbers.number(x0) + _numbers.number(x1);
    const double y = _numbers.number(y0) + _numbers.number(y1);
    const double z = _numbers.number(z0) + _numbers.number(z1);
    return {std::atan2(x, -z), std::atan2(y, -z)};
  }

  ActionUnits _actionUnits() const
  {
    ActionUnits units;
    for (std::size_t i = 0; i < usedActionUnits.size(); ++i)
    {
      const auto column = _columns.actionUnits.at(i);
      if (column)
        units.set(i, _numbers.number(*column), _options.actionUnitFullScale);
    }
    return units;
  }

  // A point that is unknown stays at (0, 0) with confidence 0.
  std::optional<KV::FacialPoints> _facialPoints() const
  {
    if (!_columns.landmarks)
      return {};
    constexpr std::size_t count = facialPointLandmarks.size();
    std::optional<KV::FacialPoints> points;
    for (std::size_t i = 0; i < count; ++i)
    {
      const double x = _numbers.number((*_columns.landmarks)[i]);
      const double y = _numbers.number((*_columns.landmarks)[count + i]);
      if (!isFinite(x, y))
        continue;
      if (!points)
        points.emplace();
      points->setFacialPoint(static_cast<KV::PointDescription>(_isNowAt(i)),
                             {{static_cast<float>(x), static_cast<float>(y)}, _confidence});
    }
    return points;
  }

  // In a mirror image OpenFace takes the left eye for the right one, and so on. The positions stay those of the image.
  std::size_t _isNowAt(std::size_t point) const
  {
    constexpr std::array<std::size_t, facialPointLandmarks.size()> opposite = {3, 2, 1, 0, 5, 4, 6, 8, 7, 9, 10, 11};
    return _options.mirrored ? opposite.at(point) : point;
  }

  const Numbers& _numbers;
  const OpenFaceColumns& _columns;
  const ReadingOptions& _options;
  float _confidence;
};

void refuseOtherFieldCounts(const CsvRows& rows, const OpenFaceColumns& columns)
{
  const std::size_t found = rows.fields().size();
  const std::size_t expected = columns.names.size();
  if (found == expected)
    return;
  std::string message = std::to_string(found) + " fields, expected " + std::to_string(expected) + " as in the header";
  if (found < expected && !rows.file().lineEnded())
    message += "; the last line is not complete: the file may be cut";
  throw BadLine({rows.file().path(), rows.file().lineNumber(), {}}, message);
}

std::optional<double> readTimestamp(const Numbers& numbers, std::size_t column)
{
  const double timestamp = numbers.number(column);
  if (!std::isfinite(timestamp))
    return {};
  if (timestamp < earliestTimestamp || timestamp > latestTimestamp)
    numbers.refuse(column, "seconds, from the start of the recording or since 1970");
  return timestamp;
}

}  // namespace

bool FaceReadings::empty() const
{
  return !headPosture && !gaze && !distance && !headHeight && !smile && !expressions && !facialPoints;
}

KV::PersonObservation FaceReadings::observedAt(ko::SystemClock::time_point time) const
{
  KV::PersonObservation observation;
  const auto put = [time](const auto& reading, auto& target) {
    if (reading)
      target.emplace(time, *reading);
  };
  observation.faceDetected.emplace(time, true);
  put(headPosture, observation.headPosture);
  put(gaze, observation.gaze);
  put(distance, observation.distance);
  put(headHeight, observation.headHeight);
  put(smile, observation.smile);
  put(expressions, observation.expressions);
  put(facialPoints, observation.facialPoints);
  return observation;
}

OpenFaceRow readOpenFaceRow(const CsvRows& rows, const OpenFaceColumns& columns, const ReadingOptions& options)
{
  refuseOtherFieldCounts(rows, columns);
  const Numbers numbers(rows, columns);

  OpenFaceRow row;
  row.line = rows.file().lineNumber();
  if (columns.frame)
    row.frame.number = numbers.wholeNumber(*columns.frame, -greatestFrame, greatestFrame);
  if (columns.timestamp)
    row.frame.timestamp = readTimestamp(numbers, *columns.timestamp);

  const double success = columns.success ? numbers.number(*columns.success) : 1.0;
  const double confidence = columns.confidence ? numbers.number(*columns.confidence) : 1.0;
  const bool wasFound = std::isfinite(success) && success != 0.0;
  row.tracked = wasFound && static_cast<float>(confidence) >= options.minimalConfidence;
  if (!row.tracked)
    return row;

  if (columns.faceId)
    row.face = static_cast<std::int32_t>(numbers.wholeNumber(*columns.faceId, std::numeric_limits<std::int32_t>::min(),
                                                             std::numeric_limits<std::int32_t>::max()));
  row.readings = Face(numbers, columns, options, std::min(static_cast<float>(confidence), 1.f)).read();
  // Where no column tells whether a face was found, the readings do.
  if (!columns.success && !columns.confidence)
    row.tracked = !row.readings.empty();
  return row;
}

}  // namespace tools
