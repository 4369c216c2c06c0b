#pragma once

#include "actionunits.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools
{

/// The landmarks, of the 68 of OpenFace, that are the facial points, in the order of KV::PointDescription.
///
/// They lie on the parts of a face that move or are hidden most: a person's right and left eye (outer and inner corner
/// each), the middle of both brows, tip of the nose, both corners of the mouth, middle of the upper and of the lower
/// lip, chin.
constexpr std::array<int, 12> facialPointLandmarks = {36, 39, 42, 45, 19, 24, 30, 48, 54, 51, 57, 8};

/// Where an OpenFace file has the columns that are read; a group is there only if all of its columns are.
struct OpenFaceColumns
{
  template <std::size_t Count>
  using Group = std::optional<std::array<std::size_t, Count>>;

  std::vector<std::string> names;  ///< of all columns

  std::optional<std::size_t> frame;
  std::optional<std::size_t> timestamp;
  std::optional<std::size_t> faceId;
  std::optional<std::size_t> confidence;
  std::optional<std::size_t> success;

  Group<3> position;     ///< pose_Tx, pose_Ty, pose_Tz
  Group<3> rotation;     ///< pose_Rx, pose_Ry, pose_Rz
  Group<2> gazeAngle;    ///< gaze_angle_x, gaze_angle_y
  Group<6> gazeVectors;  ///< gaze_0_x, _y, _z and gaze_1_x, _y, _z
  std::array<std::optional<std::size_t>, usedActionUnits.size()> actionUnits;
  Group<2 * facialPointLandmarks.size()> landmarks;  ///< x of all points, then y of all points

  bool hasGaze() const { return gazeAngle || gazeVectors; }
  bool hasActionUnits() const;
};

/// Tells from the first bytes of a file whether it is a table of OpenFace, even if it is one that cannot be read.
bool looksLikeOpenFace(const std::string& head);

/// Finds the columns in the header of a file.
///
/// \throws RecordingError if the file cannot be read as one of OpenFace 2: wrong delimiter, a column twice, a column
///   missing without which nothing can be told, or the layout of OpenFace 3.
OpenFaceColumns findOpenFaceColumns(const std::vector<std::string_view>& header, const std::string& file,
                                    std::size_t line);

}  // namespace tools
