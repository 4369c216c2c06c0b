#include "face/emotions.hpp"

#include <array>
#include <stdexcept>
#include <utility>

namespace KV::recordings
{

namespace
{
// The six basic emotions (Ekman: An argument for basic emotions, Cognition and Emotion 6, 1992) and the neutral face,
// by the names of today's py-feat.
constexpr std::array<std::pair<const char*, float EmotionScores::*>, 7> emotions = {
    {{"neutral", &EmotionScores::neutral},
     {"happy", &EmotionScores::happy},
     {"sad", &EmotionScores::sad},
     {"surprise", &EmotionScores::surprise},
     {"fear", &EmotionScores::fear},
     {"disgust", &EmotionScores::disgust},
     {"anger", &EmotionScores::anger}}};

}  // namespace

const std::vector<std::string>& emotionNames()
{
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    all.reserve(emotions.size());
    for (const auto& [name, score] : emotions)
      all.emplace_back(name);
    return all;
  }();
  return names;
}

float EmotionScores::*emotionNamed(const std::string& name)
{
  for (const auto& [known, score] : emotions)
    if (known == name)
      return score;
  throw std::invalid_argument("There is no emotion with this name.");
}

// Each has the expression of the same meaning. Fear and disgust have none; nor has a classifier of emotions anything to
// say of laughter and excitement. A smile is a movement, and told by action unit 12.
const ScoreTable& emotionTable()
{
  static const ScoreTable table = [] {
    ScoreTable shares;
    shares.joy = {{{1.f, {"happy"}}}, {}};
    shares.sorrow = {{{1.f, {"sad"}}}, {}};
    shares.surprise = {{{1.f, {"surprise"}}}, {}};
    shares.anger = {{{1.f, {"anger"}}}, {}};
    shares.calm = {{{1.f, {"neutral"}}}, {}};
    return shares;
  }();
  return table;
}

}  // namespace KV::recordings
