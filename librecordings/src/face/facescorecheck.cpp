#include "face/facescorecheck.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace KV::recordings
{
namespace
{
// Scores slightly above the scale are allowed, since front ends round so.
constexpr float leastPercent = 2.f;
constexpr float leastPercentOfIntensity = 10.f;  // of an intensity from 0 to 5

std::string textOf(float value)
{
  std::array<char, 32> number{};
  std::snprintf(number.data(), number.size(), "%g", static_cast<double>(value));
  return number.data();
}

Implausible percent(const std::string& member, float value)
{
  return {member,
          "expected a number from 0 to 1, found " + textOf(value) + "; it looks like percent: divide it by 100"};
}

// Unknown scores compare false.
template <typename Scores>
std::size_t firstAbove(const Scores& scores, std::size_t count, float limit)
{
  std::size_t i = 0;
  while (i < count && !(scores(i) > limit))
    ++i;
  return i;
}

}  // namespace

boost::optional<Implausible> FaceScoreCheck::look(const Face& face)
{
  if (face.confidence > leastPercent)
    return percent("confidence", face.confidence);
  if (face.emotions)
  {
    const EmotionScores& scores = *face.emotions;
    for (const auto& [name, score] : {std::make_pair("neutral", scores.neutral), std::make_pair("happy", scores.happy),
                                      std::make_pair("sad", scores.sad), std::make_pair("surprise", scores.surprise),
                                      std::make_pair("fear", scores.fear), std::make_pair("disgust", scores.disgust),
                                      std::make_pair("anger", scores.anger)})
      if (score > leastPercent)
        return percent(name, score);
  }
  if (_warned)
    return {};
  if (face.blendshapes)
  {
    const auto score = [&](std::size_t i) { return face.blendshapes->at(i); };
    const std::size_t i = firstAbove(score, Blendshapes::count, leastPercent);
    if (i < Blendshapes::count)
      _warnOnce(blendshapeNames()[i], score(i), "1");
  }
  if (face.actionUnits)
  {
    const bool isShare = face.frontEnd == FrontEnd::PyFeat;
    const auto score = [&](std::size_t i) { return face.actionUnits->intensity.at(i); };
    const std::size_t i = firstAbove(score, ActionUnits::count, isShare ? leastPercent : leastPercentOfIntensity);
    if (i < ActionUnits::count)
      _warnOnce((i < 10 ? "AU0" : "AU") + std::to_string(i), score(i), isShare ? "1" : "5");
  }
  return {};
}

std::vector<std::string> FaceScoreCheck::takeWarnings()
{
  return std::exchange(_warnings, {});
}

void FaceScoreCheck::_warnOnce(const std::string& name, float value, const char* scale)
{
  _warned = true;
  _warnings.push_back(name + " is " + textOf(value) + ", expected a number from 0 to " + scale +
                      "; it looks like percent and counts as full: divide such scores first");
}

}  // namespace KV::recordings
