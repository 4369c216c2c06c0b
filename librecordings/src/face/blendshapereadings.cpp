#include "face/blendshapereadings.hpp"

#include "face/blendshapes.hpp"

#include <cstddef>

namespace KV::recordings
{

BlendshapeReadings::BlendshapeReadings(const ScoreTable& table, const EyeScale& eyes)
  : _table(table), _eyes(eyes), _names(_table.names())
{
  _names.insert(_names.end(), eyeScoreNames().begin(), eyeScoreNames().end());
}

std::optional<KV::Gaze> BlendshapeReadings::eyes(const std::vector<float>& scores) const
{
  const auto first = scores.end() - static_cast<std::ptrdiff_t>(eyeScoreNames().size());
  return eyeGaze({first, scores.end()}, _eyes);
}

}  // namespace KV::recordings
