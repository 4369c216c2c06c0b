#pragma once

#include "csvnumbers.hpp"
#include "facereadings.hpp"
#include "openfacecolumns.hpp"
#include "scoretable.hpp"

namespace tools
{

/// Reads the face of a row of OpenFace, tracked with this confidence; `units` are those whose columns were looked for.
///
/// A field without a finite number leaves its reading out.
///
/// \throws BadLine if a column that is read holds something else than a number.
FaceReadings readOpenFaceFace(const CsvNumbers& numbers, const OpenFaceColumns& columns, const ScoreReadings& units,
                              const ReadingOptions& options, float confidence);

}  // namespace tools
