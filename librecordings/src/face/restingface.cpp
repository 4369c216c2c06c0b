#include <skeigiot/recordings/restingface.hpp>

#include "face/scoretable.hpp"

#include <algorithm>
#include <cmath>

namespace KV::recordings
{
namespace
{
// Of the full scale, per second: a score is below its rest for a seventh of the time.
constexpr float rise = 0.002f;
constexpr float fall = 0.012f;

float approached(float rest, float score, float seconds, float most)
{
  if (score > rest)
    return std::max(rest, std::min({rest + rise * seconds, score, most}));
  if (score < rest)
    return std::max(rest - fall * seconds, score);
  return rest;  // NaN as well
}

}  // namespace

std::vector<LearnedScore> RestingFace::learned() const
{
  std::vector<LearnedScore> result;
  for (const auto* const scores : {&_actionUnits, &_blendshapes})
  {
    if (!*scores)
      continue;
    for (std::size_t i = 0; i < (*scores)->names.size(); ++i)
      if ((*scores)->rest[i] != (*scores)->limits[i].typical)
        result.push_back({(*scores)->names[i], (*scores)->limits[i].typical, (*scores)->rest[i]});
  }
  std::stable_sort(result.begin(), result.end(), [](const LearnedScore& left, const LearnedScore& right) {
    return std::abs(left.rest - left.typical) > std::abs(right.rest - right.typical);
  });
  return result;
}

float RestingFace::Clock::advance(TimePoint now)
{
  constexpr float longestStep = 0.5f;  // [s]
  const TimePoint before = last.value_or(now);
  last = std::max(before, now);
  return std::clamp(static_cast<float>(static_cast<double>((now - before).count()) * 1e-9), 0.f, longestStep);
}

void RestingFace::Scores::takeOff(std::vector<float>& scores, TimePoint now, const Rest& options,
                                  boost::optional<TimePoint> start)
{
  first = first.value_or(start.value_or(now));
  const float seconds = clock.advance(now);
  if (options.kind == Rest::Kind::Span)
  {
    if (now - *first >= options.to)
      endSpan();
    else if (now - *first >= options.from)
      learnSpan(scores);
  }
  for (std::size_t i = 0; i < scores.size(); ++i)
  {
    if (!given)
      rest[i] = approached(rest[i], scores[i], seconds, limits[i].most);
    scores[i] = aboveRest(scores[i], rest[i]);
  }
}

void RestingFace::Scores::learnSpan(const std::vector<float>& scores)
{
  span.resize(scores.size());
  for (std::size_t i = 0; i < scores.size(); ++i)
  {
    if (std::isnan(scores[i]))
      continue;
    Histogram& histogram = span[i];
    const auto bin = static_cast<std::size_t>(std::lround(scores[i] * static_cast<float>(histogram.counts.size() - 1)));
    ++histogram.counts.at(std::min(bin, histogram.counts.size() - 1));
    ++histogram.total;
  }
}

// Without a face in the time span, the learned rest stays.
void RestingFace::Scores::endSpan()
{
  for (std::size_t i = 0; i < span.size(); ++i)
  {
    const Histogram& histogram = span[i];
    if (histogram.total == 0)
      continue;
    std::uint32_t below = 0;
    std::size_t bin = 0;
    while (2 * (below + histogram.counts.at(bin)) < histogram.total)
      below += histogram.counts.at(bin++);
    rest[i] = static_cast<float>(bin) / static_cast<float>(histogram.counts.size() - 1);
    given = true;
  }
  span.clear();
}

}  // namespace KV::recordings
