#pragma once

#include "csvrows.hpp"
#include "frametimes.hpp"
#include "openfacecolumns.hpp"
#include "recording.hpp"

#include <skeigiot/personobservation.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tools
{

/// What one row of OpenFace tells of one face, in the units and signs of the library.
struct FaceReadings
{
  std::optional<KV::HeadPosture> headPosture;
  std::optional<KV::Gaze> gaze;
  std::optional<float> distance;
  std::optional<float> headHeight;
  std::optional<KV::Smile> smile;
  std::optional<KV::Expressions> expressions;
  std::optional<KV::FacialPoints> facialPoints;

  bool empty() const;

  /// Returns the observation of a detected face with these readings, all made at `time`.
  KV::PersonObservation observedAt(ko::SystemClock::time_point time) const;
};

/// One row of an OpenFace file.
struct OpenFaceRow
{
  std::size_t line = 0;
  Frame frame;            ///< number 0 if there is no such column
  bool tracked = false;   ///< the face was found, and so surely that its readings count
  std::int32_t face = 0;  ///< read only of a tracked face; 0 if there is no such column
  FaceReadings readings;  ///< empty unless tracked
};

/// Reads the row that `rows` stands on.
///
/// A field without a finite number leaves its reading out.
///
/// \throws BadLine if the number of fields is not that of the header, or a column that is read holds something else
///   than a number.
OpenFaceRow readOpenFaceRow(const CsvRows& rows, const OpenFaceColumns& columns, const ReadingOptions& options);

}  // namespace tools
