#pragma once

#include "mediapipe/facetransformation.hpp"

#include <cstdint>
#include <optional>
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

/// Reads a result as the JavaScript or the Python API has it, dumped as a JSON object; `blendshapes` are the names of
/// the scores to read. Members that are not known are passed over.
///
/// \throws JsonError if the text is no such object; its path is empty if the text is no JSON object at all.
FaceLandmarkerResult readFaceLandmarkerResult(const std::string& text, const std::vector<std::string>& blendshapes);

}  // namespace KV::recordings
