#include "face/blendshapereadings.hpp"

#include "face/blendshapes.hpp"

#include <cstddef>

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

}  // namespace KV::recordings
