#pragma once

#include "face/scoretable.hpp"

#include <skeigiot/recordings/emotionscores.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns the names of the emotions for which analysers give scores.
const std::vector<std::string>& emotionNames();

/// Returns the score of the emotion with this name, one of emotionNames().
float EmotionScores::*emotionNamed(const std::string& name);

/// Returns the table that makes readings from emotions.
const ScoreTable& emotionTable();

}  // namespace KV::recordings
