#pragma once

#include "csv/csvheader.hpp"
#include "face/landmarks.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The landmarks, of the usual 68, whose heights show a nod: both ends of the jaw, at the ears, and the outer and inner
/// corners of both eyes.
constexpr std::array<int, 6> nodLandmarks = {0, 16, 36, 39, 42, 45};

/// The columns of a py-feat table that are read; a group is there only if all of its columns are.
struct PyFeatColumns
{
  std::optional<std::size_t> frame;
  std::optional<std::size_t> approximateTime;
  std::optional<std::size_t> identity;
  std::optional<std::size_t> faceScore;

  ColumnGroup<3> rotation;  ///< Pitch, Roll, Yaw
  ColumnGroup<2> gaze;      ///< gaze_pitch, gaze_yaw

  std::vector<std::optional<std::size_t>> actionUnits;  ///< in the order of the names that are asked for
  std::vector<std::optional<std::size_t>> emotions;     ///< by their new or old names; empty where missing
  LandmarkColumns landmarks;
  ColumnGroup<2 * nodLandmarks.size()> nod;  ///< x of all nodLandmarks, then y of all

  bool hasActionUnits() const;
  bool hasEmotions() const;
};

/// Returns whether a file with these first bytes is a table of py-feat, even one that cannot be read.
bool looksLikePyFeat(const std::string& head);

/// Returns whether this is the name of a column of py-feat that is read.
bool isOfPyFeat(const std::string& name);

/// Finds the columns in the header of a file.
///
/// \throws Error if the file has no column that is read.
PyFeatColumns findPyFeatColumns(const CsvHeader& header, const std::vector<std::string>& actionUnits,
                                const std::vector<std::string>& emotions);

}  // namespace KV::recordings
