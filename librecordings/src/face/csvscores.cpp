#include "face/csvscores.hpp"

#include "face/faceadapterprivate.hpp"

namespace KV::recordings
{
namespace
{
// Passes the score in each column, and the index of its name among the requested names, to `put`.
template <typename Put>
void forEachScore(const CsvNumbers& numbers, const ScoreColumns& columns, const Put& put)
{
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i])
      put(i, static_cast<float>(numbers.number(*columns[i])));
}

}  // namespace

ActionUnits readActionUnits(const CsvNumbers& numbers, const ScoreColumns& columns, const FaceAdapter& adapter)
{
  ActionUnits units;
  forEachScore(numbers, columns,
               [&](std::size_t i, float score) { units.intensity.at(adapter._p->actionUnitNumbers.at(i)) = score; });
  return units;
}

Blendshapes readBlendshapes(const CsvNumbers& numbers, const ScoreColumns& columns, const FaceAdapter& adapter)
{
  Blendshapes blendshapes;
  forEachScore(numbers, columns,
               [&](std::size_t i, float score) { blendshapes.set(adapter._p->blendshapeIndices.at(i), score); });
  return blendshapes;
}

EmotionScores readEmotions(const CsvNumbers& numbers, const ScoreColumns& columns, const FaceAdapter& adapter)
{
  EmotionScores emotions;
  forEachScore(numbers, columns,
               [&](std::size_t i, float score) { emotions.*adapter._p->emotionScores.at(i) = score; });
  return emotions;
}

}  // namespace KV::recordings
