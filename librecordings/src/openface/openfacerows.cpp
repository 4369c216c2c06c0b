#include "openface/openfacerows.hpp"

#include "face/pose.hpp"
#include "openface/openfaceface.hpp"

#include <skeigiot/recordings/description.hpp>

#include <cmath>
#include <utility>

namespace KV::recordings
{

OpenFaceRows::OpenFaceRows(InputFile input, const ReadingOptions& options)
  : CsvFaceRows(std::move(input), isOfOpenFace),
    _options(options),
    _adapter(options),
    _columns(findOpenFaceColumns(file().header(), _adapter.actionUnitNames())),
    _persons(file().header(), options.personColumn, "face_id")
{}

std::optional<FaceRow> OpenFaceRows::next()
{
  if (!file().next())
    return {};
  return _readRow();
}

FaceRow OpenFaceRows::_readRow()
{
  const CsvNumbers numbers = file().numbers();
  numbers.refuseOtherFieldCounts();

  FaceRow row;
  row.line = file().lineNumber();
  if (_columns.frame)
    row.frame.number = numbers.frameNumber(*_columns.frame);
  if (_columns.timestamp)
    row.frame.timestamp = numbers.timestamp(*_columns.timestamp);

  const double success = _columns.success ? numbers.number(*_columns.success) : 1.0;
  const double confidence = _columns.confidence ? numbers.number(*_columns.confidence) : 1.0;
  const bool wasFound = std::isfinite(success) && success != 0.0;
  row.tracked = wasFound && _adapter.isTracked(static_cast<float>(confidence));
  if (row.tracked)
  {
    row.face = _persons.personOf(numbers, file().place());
    OpenFaceFace face = readOpenFaceFace(numbers, _columns, _adapter);
    face.confidence = static_cast<float>(confidence);
    row.detected = faceOf(face);
    // Without a column for found faces, the readings decide whether a face was found.
    if (!_columns.success && !_columns.confidence)
      row.tracked = !_adapter.read(row.detected).empty();
  }
  if (!_columns.frame)
    _frames.count(row.frame, _persons.haveColumn());
  return row;
}

FaceRows::Fields OpenFaceRows::fields() const
{
  return {_columns.frame ? "frame" : "", _columns.timestamp ? "timestamp" : "", _persons.column()};
}

std::string OpenFaceRows::describeReadings() const
{
  std::vector<std::string> parts;
  if (_columns.rotation || _columns.hasGaze())
  {
    parts.emplace_back("angles in radians");
    parts.push_back(describeOrigin(_options, FrontEnd::OpenFace, _columns.position.has_value()));
  }
  if (_columns.rotation)
    parts.emplace_back("pose_Rx down, pose_Ry to the own right, pose_Rz to the own left shoulder");
  if (_columns.hasGaze())
    parts.emplace_back(std::string(_columns.gazeAngle ? "gaze_angle_x" : "gaze vectors x") +
                       " to the own left, y down");
  if (_columns.position)
    parts.emplace_back("pose_T in mm");
  if (_columns.hasActionUnits())
    parts.emplace_back("action units of " + shortNumber(_options.actionUnitFullScale));
  parts.emplace_back(_options.mirrored ? "mirrored" : "not mirrored");
  return "OpenFace: " + listed(parts);
}

std::string OpenFaceRows::describePersons() const
{
  const std::string confidence = _columns.confidence
                                     ? "not tracked below confidence " + shortNumber(_options.minimalConfidence)
                                     : "confidence 1, since there is no such column";
  return _persons.description() + ", " + confidence + "; " +
         describeMissing({{_columns.rotation.has_value(), "head pose"},
                          {_columns.hasGaze(), "gaze"},
                          {_columns.position.has_value(), "distance"},
                          {_columns.hasActionUnits(), "action units"},
                          {_columns.landmarks.has_value(), "landmarks"}});
}

}  // namespace KV::recordings
