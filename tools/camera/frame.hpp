#pragma once

#include <skeigiot/recordings/emotionscores.hpp>
#include <skeigiot/recordings/face.hpp>
#include <skeigiot/valueconfidence.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::tools
{

/// A face that the page found in a picture of the camera.
struct FoundFace
{
  std::int32_t track = 0;                             ///< the number that the page gives the face
  recordings::Face face;                              ///< pose, landmarks, blendshapes
  std::optional<KV::ValueConfidence<float>> smile;    ///< from the geometry of the mouth
  std::optional<recordings::EmotionScores> emotions;  ///< from a classifier
  float emotionConfidence = 0.f;                      ///< that the classifier can see the face, in [0, 1]
  float blendshapeConfidence = 1.f;                   ///< that the face of the blendshapes can be seen, in [0, 1]
};

/// The numbers that the page sends of one picture. No picture is among them.
struct Frame
{
  std::string page;                ///< a random name of the page, so that only one page sends at a time
  double age = 0.;                 ///< [s] since the picture was taken; of a camera
  std::optional<double> time;      ///< [s] since the start of the video; of a video
  std::vector<FoundFace> faces;    ///< in the picture
  std::vector<std::int32_t> lost;  ///< tracks that are not in the picture, and may come back
  std::vector<std::int32_t> left;  ///< tracks that are over
  bool ended = false;              ///< the video is over
};

constexpr std::size_t mostFaces = 16;  ///< in a frame

/// Reads a frame, as the page in web/camera/ writes it.
///
/// \throws recordings::MemberError if the text is no JSON object, or a member is unknown, has a wrong type or a number
///   out of range, or is missing.
Frame readFrame(const std::string& text);

}  // namespace KV::tools
