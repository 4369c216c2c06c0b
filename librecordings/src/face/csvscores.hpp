#pragma once

#include "csv/csvnumbers.hpp"

#include <skeigiot/recordings/faceadapter.hpp>

#include <cstddef>
#include <optional>
#include <vector>

namespace KV::recordings
{

/// The columns of the scores that an adapter reads, in the order of their names.
using ScoreColumns = std::vector<std::optional<std::size_t>>;

/// Read the scores of a row from `columns`, in the adapter's order of names. A score without a column is unknown.
///
/// \throws BadLine if a field holds no number.
/// @{
ActionUnits readActionUnits(const CsvNumbers& numbers, const ScoreColumns& columns, const FaceAdapter& adapter);
Blendshapes readBlendshapes(const CsvNumbers& numbers, const ScoreColumns& columns, const FaceAdapter& adapter);
EmotionScores readEmotions(const CsvNumbers& numbers, const ScoreColumns& columns, const FaceAdapter& adapter);
/// @}

}  // namespace KV::recordings
