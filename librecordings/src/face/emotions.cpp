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

// Analysers confuse the four negative emotions with sadness, so they are added up; 1.4 lets half of a face be enough,
// since the mood classes need 0.7. A smile that is mixed with surprise or worse is no joy. Fear and disgust have no
// expression of their own, and go with the nearest; a classifier of emotions has no score of laughter or excitement.
// The scores are shares already, and each face rests at neutral.
const ScoreTable& emotionTable()
{
  static const ScoreTable table = [] {
    const std::vector<ScoreTerm> gladness = {{1.f, {"happy"}}, {-1.f, {"surprise"}}, {-1.f, {"sad"}},
                                             {-1.f, {"fear"}}, {-1.f, {"disgust"}},  {-1.f, {"anger"}}};
    ScoreTable shares;
    shares.smile = {gladness, {}};
    shares.joy = {gladness, {}};
    shares.sorrow = {{{1.4f, {"sad"}}, {1.4f, {"fear"}}}, {}};
    shares.surprise = {{{1.f, {"surprise"}}}, {}};
    shares.anger = {{{1.4f, {"anger"}}, {1.4f, {"disgust"}}}, {}};
    return shares;
  }();
  return table;
}

}  // namespace KV::recordings
