#pragma once

#include "csv/csvheader.hpp"
#include "face/landmarks.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The columns of an OpenFace file that are read; a group is there only if all of its columns are.
struct OpenFaceColumns
{
  std::optional<std::size_t> frame;
  std::optional<std::size_t> timestamp;
  std::optional<std::size_t> confidence;
  std::optional<std::size_t> success;

  ColumnGroup<3> position;                              ///< pose_Tx, pose_Ty, pose_Tz
  ColumnGroup<3> rotation;                              ///< pose_Rx, pose_Ry, pose_Rz
  ColumnGroup<2> gazeAngle;                             ///< gaze_angle_x, gaze_angle_y
  ColumnGroup<6> gazeVectors;                           ///< gaze_0_x, _y, _z and gaze_1_x, _y, _z
  std::vector<std::optional<std::size_t>> actionUnits;  ///< in the order of the units that are asked for
  LandmarkColumns landmarks;

  bool hasGaze() const { return gazeAngle || gazeVectors; }
  bool hasActionUnits() const;
};

/// Returns whether a file with these first bytes is a table of OpenFace, even one that cannot be read.
bool looksLikeOpenFace(const std::string& head);

/// Returns whether this is the name of a column of OpenFace that is read.
bool isOfOpenFace(const std::string& name);

/// Finds the columns in the header of a file; `actionUnits` are named AU01, AU02, and so on.
///
/// \throws Error if the file cannot be read as one of OpenFace 2: a necessary column is missing, or the file has the
/// layout of OpenFace 3.
OpenFaceColumns findOpenFaceColumns(const CsvHeader& header, const std::vector<std::string>& actionUnits);

}  // namespace KV::recordings
