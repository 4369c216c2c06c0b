#include "openface/openfaceface.hpp"

#include "face/actionunits.hpp"

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace KV::recordings
{
namespace
{
constexpr double millimetresPerMetre = 1000.0;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// Reads the face of one tracked row.
class Face
{
public:
  Face(const CsvNumbers& numbers, const OpenFaceColumns& columns) : _numbers(numbers), _columns(columns) {}

  FacePose pose() const { return {_position(), millimetresPerMetre, _headPosture(), _gaze()}; }

  std::vector<float> actionUnits(float fullScale) const
  {
    std::vector<float> scores;
    scores.reserve(_columns.actionUnits.size());
    for (const auto& column : _columns.actionUnits)
      scores.push_back(actionUnitScore(column ? _numbers.number(*column) : notANumber, fullScale));
    return scores;
  }

private:
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
    if (!std::isfinite(pitch) || !std::isfinite(yaw) || !std::isfinite(roll))
      return {};
    return KV::HeadPosture(degrees(yaw), -degrees(pitch), -degrees(roll));
  }

  // OpenFace: x > 0 is to the person's own left, y > 0 down.
  std::optional<KV::Gaze> _gaze() const
  {
    const auto [x, y] = _columns.gazeAngle ? _gazeAngle() : _gazeAngleOfVectors();
    if (!std::isfinite(x) || !std::isfinite(y))
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

  const CsvNumbers& _numbers;
  const OpenFaceColumns& _columns;
};

}  // namespace

FaceReadings readOpenFaceFace(const CsvNumbers& numbers, const OpenFaceColumns& columns, const ScoreReadings& units,
                              const ReadingOptions& options, float confidence)
{
  const Face face(numbers, columns);
  FaceReadings readings;
  setPose(readings, face.pose(), options);
  const auto scores = face.actionUnits(options.actionUnitFullScale);
  readings.smile = units.smile(scores, confidence);
  readings.expressions = units.expressions(scores, confidence);
  readings.facialPoints = readFacialPoints(numbers, columns.landmarks, confidence, options.mirrored);
  return readings;
}

}  // namespace KV::recordings
