#pragma once

#include "csv/csvheader.hpp"
#include "csv/csvnumbers.hpp"

#include <skeigiot/facialpoints.hpp>
#include <skeigiot/recordings/facelandmarks.hpp>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace KV::recordings
{

/// The landmarks, of the usual 68 of a face, that are used as facial points, in the order of KV::PointDescription.
///
/// They lie on those parts of a face that move most or are hidden most often: a person's right and left eye (outer and
/// inner corner each), the middle of both brows, tip of the nose, both corners of the mouth, middle of the upper and of
/// the lower lip, chin.
constexpr std::array<int, 12> facialPointLandmarks = {36, 39, 42, 45, 19, 24, 30, 48, 54, 51, 57, 8};

/// Columns of the landmarks above: x of all points, then y of all points.
using LandmarkColumns = ColumnGroup<2 * facialPointLandmarks.size()>;

/// Finds the columns x_0 to y_67 of the facial points.
LandmarkColumns findLandmarks(const CsvHeader& header);

/// Reads the landmarks of the facial points; nothing if there are no such columns.
///
/// \throws BadLine if a field holds no number.
std::optional<FaceLandmarks> readLandmarks(const CsvNumbers& numbers, const LandmarkColumns& columns);

/// Returns the facial points, with this confidence each; an unknown point stays at (0, 0) with confidence 0. Returns
/// nothing if all points are unknown.
///
/// In a mirror image the points of the right and left half change places; their positions stay those of the image.
std::optional<KV::FacialPoints> facialPointsOf(const FaceLandmarks& landmarks, float confidence, bool mirrored);

}  // namespace KV::recordings
