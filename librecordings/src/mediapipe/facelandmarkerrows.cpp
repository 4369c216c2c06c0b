#include "mediapipe/facelandmarkerrows.hpp"

#include "face/pose.hpp"
#include "input/jsonvalue.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace KV::recordings
{

bool looksLikeFaceLandmarker(const std::string& head)
{
  const std::size_t begin = head.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos || (head[begin] != '{' && head[begin] != '['))
    return false;
  constexpr std::array<const char*, 6> names = {
      "\"faceBlendshapes\"",  "\"facialTransformationMatrixes\"",   "\"faceLandmarks\"",
      "\"face_blendshapes\"", "\"facial_transformation_matrixes\"", "\"face_landmarks\""};
  return std::any_of(names.begin(), names.end(),
                     [&head](const char* name) { return head.find(name) != std::string::npos; });
}

FaceLandmarkerRows::FaceLandmarkerRows(InputFile input, const ReadingOptions& options)
  : _options(options), _adapter(options), _pieces(std::move(input))
{}

std::optional<FaceRow> FaceLandmarkerRows::next()
{
  if (_rows.empty() && !_readResult())
    return {};
  const FaceRow row = _rows.front();
  _rows.pop_front();
  return row;
}

// Fills the rows; false at the end.
bool FaceLandmarkerRows::_readResult()
{
  const std::int64_t index = _results++;
  if (!_pieces.next(_piece))
    return false;
  try
  {
    const auto result = readFaceLandmarkerResult(_piece);
    FaceRow row;
    row.line = _pieces.lineNumber();
    row.frame = {result.frame.value_or(index), result.timestamp};
    _haveFrames = _haveFrames || result.frame;
    _haveTimes = _haveTimes || result.timestamp;
    if (result.faces.empty())
      _rows.push_back(row);
    if (result.faces.size() > 1 && !std::exchange(_warnedOfSeveral, true))
      _warnings.emplace_back(
          "there are several faces in a result: they are counted in its order, which does not stay with one person");
    for (const MediaPipeFace& face : result.faces)
    {
      row.tracked = true;
      row.detected = faceOf(face);
      _haveScores = _haveScores || (face.blendshapes && !face.blendshapes->areUnknown());
      _haveMatrices = _haveMatrices || face.matrix;
      _rows.push_back(row);
      ++row.face;
    }
  }
  catch (const JsonError& error)
  {
    throw BadLine({path(), _pieces.lineNumber(), error.path()}, error.what());
  }
  return true;
}

FaceRows::Fields FaceLandmarkerRows::fields() const
{
  return {_haveFrames ? "frame" : "", _haveTimes ? "timestamp" : "", ""};
}

std::string FaceLandmarkerRows::describeReadings() const
{
  std::vector<std::string> parts;
  if (_haveMatrices)
  {
    parts.emplace_back("head pose from the matrices, in cm");
    parts.push_back(describeOrigin(_options, FrontEnd::MediaPipe, true));
  }
  if (_haveScores)
  {
    parts.emplace_back(std::string("gaze roughly from eyeLook scores") +
                       (_haveMatrices ? " and the head" : ", relative to the head"));
    parts.emplace_back("expressions by blendshapes");
  }
  parts.emplace_back(_options.mirrored ? "mirrored" : "not mirrored");
  return "MediaPipe FaceLandmarker: " + listed(parts);
}

std::string FaceLandmarkerRows::describePersons() const
{
  return "persons in the order of the result, confidence 1, since the file has none; " +
         describeMissing({{_haveMatrices, "head pose and distance"}, {_haveScores, "blendshapes"}});
}

std::vector<std::string> FaceLandmarkerRows::takeWarnings()
{
  return std::exchange(_warnings, {});
}

}  // namespace KV::recordings
