#pragma once

#include <skeigiot/expressions.hpp>
#include <skeigiot/smile.hpp>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace tools
{

/// The action units of the Facial Action Coding System that the readings below are made of.
constexpr std::array<int, 11> usedActionUnits = {1, 2, 4, 5, 6, 7, 12, 15, 23, 25, 26};

/// Intensities of the used action units of one face, each in [0, 1] or unknown.
class ActionUnits
{
public:
  ActionUnits();

  /// Sets the intensity of the action unit usedActionUnits[index]: `intensity` of `fullScale`, no more than 1 and no
  /// less than 0; NaN is unknown.
  void set(std::size_t index, double intensity, float fullScale);

  /// Returns the mean intensity of these action units; NaN if one of them is unknown.
  float mean(const std::vector<int>& units) const;

private:
  std::array<float, usedActionUnits.size()> _intensities{};  // NaN is unknown
};

/// Returns the smile (action unit 12) with this confidence, or nothing if it is unknown.
std::optional<KV::Smile> smileOf(const ActionUnits& units, float confidence);

/// Returns the expressions with this confidence each, and confidence 0 where an action unit is unknown; nothing if all
/// are unknown.
std::optional<KV::Expressions> expressionsOf(const ActionUnits& units, float confidence);

}  // namespace tools
