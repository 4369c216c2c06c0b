#pragma once

#include <skeigiot/recordings/mediapipeface.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The result of the MediaPipe FaceLandmarker for one frame.
struct FaceLandmarkerResult
{
  std::optional<std::int64_t> frame;
  std::optional<double> timestamp;  ///< [s]
  std::vector<MediaPipeFace> faces;
};

/// Reads a result in the form of the JavaScript or the Python API, dumped as a JSON object. Unknown members are
/// skipped.
///
/// \throws JsonError if the text is no such object; its path is empty if the text is no JSON object at all.
FaceLandmarkerResult readFaceLandmarkerResult(const std::string& text);

}  // namespace KV::recordings
