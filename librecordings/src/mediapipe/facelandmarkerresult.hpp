#pragma once

#include <skeigiot/recordings/mediapipeface.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// What the MediaPipe FaceLandmarker found in one frame.
struct FaceLandmarkerResult
{
  std::optional<std::int64_t> frame;
  std::optional<double> timestamp;  ///< [s]
  std::vector<MediaPipeFace> faces;
};

/// Reads a result as the JavaScript or the Python API has it, dumped as a JSON object. Members that are not known are
/// passed over.
///
/// \throws JsonError if the text is no such object; its path is empty if the text is no JSON object at all.
FaceLandmarkerResult readFaceLandmarkerResult(const std::string& text);

}  // namespace KV::recordings
