#pragma once

#include "mediapipe/facetransformation.hpp"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace KV::recordings
{

/// One face of a result of the MediaPipe FaceLandmarker.
struct FaceLandmarkerFace
{
  std::vector<float> scores;     ///< of the blendshapes that were asked for; NaN is unknown
  std::optional<FacePose> pose;  ///< if there is a matrix
};

/// What the MediaPipe FaceLandmarker found in one frame.
struct FaceLandmarkerResult
{
  std::optional<std::int64_t> frame;
  std::optional<double> timestamp;  ///< [s]
  std::vector<FaceLandmarkerFace> faces;
};

/// A result that cannot be used.
class FaceLandmarkerError : public std::runtime_error
{
public:
  /// `member` is the path of the member that the message is about; empty if the text is no JSON object at all.
  FaceLandmarkerError(const std::string& member, const std::string& message)
    : std::runtime_error(message), _member(member)
  {}

  const std::string& member() const { return _member; }

private:
  std::string _member;
};

/// Reads a result as the JavaScript or the Python API has it, dumped as a JSON object; `blendshapes` are the names of
/// the scores to read. Members that are not known are passed over.
///
/// \throws FaceLandmarkerError if the text is no such object.
FaceLandmarkerResult readFaceLandmarkerResult(const std::string& text, const std::vector<std::string>& blendshapes);

}  // namespace KV::recordings
