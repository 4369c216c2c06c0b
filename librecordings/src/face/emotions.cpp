#include "face/emotions.hpp"

namespace KV::recordings
{

// The six basic emotions (Ekman: An argument for basic emotions, Cognition and Emotion 6, 1992) and the neutral face,
// by the names of today's py-feat.
const std::vector<std::string>& emotionNames()
{
  static const std::vector<std::string> names = {"neutral", "happy", "sad", "surprise", "fear", "disgust", "anger"};
  return names;
}

// Each has the expression of the same meaning. Fear and disgust have none; nor has a classifier of emotions anything to
// say of laughter and excitement. A smile is a movement, and told by action unit 12.
const ScoreTable& emotionTable()
{
  static const ScoreTable table = [] {
    ScoreTable emotions;
    emotions.joy = {{{1.f, {"happy"}}}, {}};
    emotions.sorrow = {{{1.f, {"sad"}}}, {}};
    emotions.surprise = {{{1.f, {"surprise"}}}, {}};
    emotions.anger = {{{1.f, {"anger"}}}, {}};
    emotions.calm = {{{1.f, {"neutral"}}}, {}};
    return emotions;
  }();
  return table;
}

}  // namespace KV::recordings
