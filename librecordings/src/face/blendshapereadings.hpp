#pragma once

#include "face/mapping.hpp"
#include "face/scoretable.hpp"

#include <skeigiot/recordings/facereadings.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Forms the readings of a face from its blendshapes.
class BlendshapeReadings
{
public:
  explicit BlendshapeReadings(const Mapping& mapping);

  /// Returns the names of the blendshapes that are needed.
  const std::vector<std::string>& names() const { return _names; }

  /// Sets smile and expressions, with this confidence; `scores` are in the order of names(), NaN is unknown.
  void setExpressions(FaceReadings& readings, const std::vector<float>& scores, float confidence) const;

  /// Returns where the eyes look, relative to the head; nothing if that is unknown.
  std::optional<KV::Gaze> eyes(const std::vector<float>& scores) const;

private:
  ScoreReadings _table;
  EyeScale _eyes;
  std::vector<std::string> _names;  // of the table, then of the eyes
};

}  // namespace KV::recordings
