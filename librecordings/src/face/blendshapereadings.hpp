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

/// Computes the readings of a face from its blendshapes.
class BlendshapeReadings
{
public:
  BlendshapeReadings(const ScoreTable& table, const EyeScale& eyes);

  /// Returns the names of the blendshapes that are needed.
  const std::vector<std::string>& names() const { return _names; }

  /// Returns the table, whose names come first in names().
  const ScoreReadings& table() const { return _table; }

  /// Returns the direction of the eyes, relative to the head; nothing if it is unknown.
  std::optional<KV::Gaze> eyes(const std::vector<float>& scores) const;

private:
  ScoreReadings _table;
  EyeScale _eyes;
  std::vector<std::string> _names;  // of the table, then of the eyes
};

}  // namespace KV::recordings
