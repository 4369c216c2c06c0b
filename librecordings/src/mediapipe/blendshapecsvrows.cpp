#include "mediapipe/blendshapecsvrows.hpp"

#include "face/blendshapes.hpp"
#include "face/csvscores.hpp"
#include "face/pose.hpp"
#include "mediapipe/facetransformation.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::size_t matrixSize = 16;

// With this many blendshapes, the file is a table of blendshapes.
constexpr std::ptrdiff_t enoughNames = 4;

// Usual names for the 16 numbers, which have no names in the API: number 0 to 15.
const std::array<const char*, 4> matrixPrefixes = {"matrix_", "facialTransformationMatrix_",
                                                   "facial_transformation_matrix_", "transformation_"};

// Programs that number the faces of a frame use this name.
std::string faceColumnOf(const CsvHeader& header)
{
  for (const char* const name : {"face_id", "face_index", "faceIndex", "face"})
    if (header.has(name))
      return name;
  return "face_id";
}

}  // namespace

bool looksLikeBlendshapeCsv(const std::string& head)
{
  const auto names = namesIn(headerLineOf(head), ",;\t|");
  return std::count_if(names.begin(), names.end(), isBlendshape) >= enoughNames;
}

BlendshapeCsvRows::BlendshapeCsvRows(InputFile input, const ReadingOptions& options)
  : CsvFaceRows(std::move(input), isBlendshape),
    _options(options),
    _adapter(options),
    _frame(file().header().find("frame")),
    _time(_findTime(file().header())),
    _confidence(file().header().find("confidence")),
    _scores(file().header().find(_adapter.blendshapeNames())),
    _matrix(_findMatrix(file().header())),
    _persons(file().header(), options.personColumn, faceColumnOf(file().header()))
{}

std::optional<BlendshapeCsvRows::TimeColumn> BlendshapeCsvRows::_findTime(const CsvHeader& header)
{
  for (const char* const name : {"timestamp_ms", "timestampMs"})
    if (const auto column = header.find(name))
      return TimeColumn{name, *column, true};
  for (const char* const name : {"timestamp", "time"})
    if (const auto column = header.find(name))
      return TimeColumn{name, *column, false};
  return {};
}

ColumnGroup<matrixSize> BlendshapeCsvRows::_findMatrix(const CsvHeader& header)
{
  for (const char* const prefix : matrixPrefixes)
  {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < matrixSize; ++i)
      names.push_back(prefix + std::to_string(i));
    if (const auto columns = header.findAll<matrixSize>(names))
      return columns;
  }
  return {};
}

std::optional<FaceRow> BlendshapeCsvRows::next()
{
  if (!file().next())
    return {};
  return _readRow();
}

// A row of a frame without a face has empty fields in all columns that are read.
FaceRow BlendshapeCsvRows::_readRow()
{
  const CsvNumbers numbers = file().numbers();
  numbers.refuseOtherFieldCounts();

  FaceRow row;
  row.line = file().lineNumber();
  row.frame = _readFrame(numbers);
  const double confidence = _confidence ? numbers.number(*_confidence) : 1.0;
  MediaPipeFace face;
  face.confidence = static_cast<float>(confidence);
  row.tracked = _adapter.isTracked(face.confidence);
  if (!row.tracked)
    return row;

  face.blendshapes = readBlendshapes(numbers, _scores, _adapter);
  face.matrix = _readMatrix(numbers);
  row.tracked = face.matrix || !face.blendshapes->areUnknown();
  if (!row.tracked)
    return row;

  row.face = _persons.personOf(numbers, file().place());
  row.detected = faceOf(face);
  return row;
}

Frame BlendshapeCsvRows::_readFrame(const CsvNumbers& numbers)
{
  Frame frame;
  if (_time)
    frame.timestamp =
        _time->isMilliseconds ? numbers.timestampInMilliseconds(_time->column) : numbers.timestamp(_time->column);
  if (_frame)
    frame.number = numbers.frameNumber(*_frame);
  else
    _frames.count(frame, _persons.haveColumn());
  return frame;
}

// Nothing if one of its numbers is unknown.
std::optional<FaceMatrix> BlendshapeCsvRows::_readMatrix(const CsvNumbers& numbers) const
{
  if (!_matrix)
    return {};
  FaceMatrix matrix{};
  for (std::size_t i = 0; i < matrix.size(); ++i)
    matrix.at(i) = numbers.number((*_matrix)[i]);
  if (!std::all_of(matrix.begin(), matrix.end(), [](double number) { return std::isfinite(number); }))
    return {};
  if (!poseOf(matrix))
    numbers.refuse(_matrix->back(), "a transformation, of which the last row is 0, 0, 0, 1");
  return matrix;
}

FaceRows::Fields BlendshapeCsvRows::fields() const
{
  return {_frame ? "frame" : "", _time ? _time->name : "", _persons.column()};
}

std::string BlendshapeCsvRows::describeReadings() const
{
  std::vector<std::string> parts;
  if (_matrix)
  {
    parts.emplace_back("head pose from the matrices, in cm");
    parts.push_back(describeOrigin(_options, FrontEnd::MediaPipe, true));
  }
  parts.emplace_back(std::string("gaze roughly from eyeLook scores") +
                     (_matrix ? " and the head" : ", relative to the head"));
  parts.emplace_back("expressions by blendshapes");
  parts.emplace_back(_options.mirrored ? "mirrored" : "not mirrored");
  return "Blendshapes: " + listed(parts);
}

std::string BlendshapeCsvRows::describePersons() const
{
  const std::string confidence = _confidence ? "not tracked below confidence " + shortNumber(_options.minimalConfidence)
                                             : "confidence 1, since there is no such column";
  return _persons.description() + ", " + confidence + "; " +
         describeMissing({{_matrix.has_value(), "head pose and distance"}});
}

}  // namespace KV::recordings
