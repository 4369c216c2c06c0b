#pragma once

#include "csv/csvnumbers.hpp"
#include "face/facereadings.hpp"
#include "face/scoretable.hpp"
#include "openface/openfacecolumns.hpp"

namespace KV::recordings
{

/// Reads the face of a row of OpenFace, tracked with this confidence; `units` are those whose columns were looked for.
///
/// A field without a finite number leaves its reading out.
///
/// \throws BadLine if a column that is read holds something else than a number.
FaceReadings readOpenFaceFace(const CsvNumbers& numbers, const OpenFaceColumns& columns, const ScoreReadings& units,
                              const ReadingOptions& options, float confidence);

}  // namespace KV::recordings
