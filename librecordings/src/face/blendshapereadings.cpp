#include "face/blendshapereadings.hpp"

#include "face/blendshapes.hpp"

#include <algorithm>
#include <cmath>

namespace KV::recordings
{

BlendshapeReadings::BlendshapeReadings(const Mapping& mapping)
  : _table(mapping.blendshapes), _eyes(mapping.eyes), _names(_table.names())
{
  _names.insert(_names.end(), eyeScoreNames().begin(), eyeScoreNames().end());
}

void BlendshapeReadings::setExpressions(FaceReadings& readings, const std::vector<float>& scores,
                                        float confidence) const
{
  readings.smile = _table.smile(scores, confidence);
  readings.expressions = _table.expressions(scores, confidence);
}

std::optional<KV::Gaze> BlendshapeReadings::eyes(const std::vector<float>& scores) const
{
  const auto first = scores.end() - static_cast<std::ptrdiff_t>(eyeScoreNames().size());
  return eyeGaze({first, scores.end()}, _eyes);
}

bool areUnknown(const std::vector<float>& scores)
{
  return std::all_of(scores.begin(), scores.end(), [](float score) { return std::isnan(score); });
}

}  // namespace KV::recordings
