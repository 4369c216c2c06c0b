#pragma once

#include "face/scoretable.hpp"

#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns the names of the emotions that analysers give scores for.
const std::vector<std::string>& emotionNames();

/// Returns which emotions make which readings.
const ScoreTable& emotionTable();

}  // namespace KV::recordings
