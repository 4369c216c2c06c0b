#pragma once

#include "face/scoretable.hpp"

#include <cstddef>
#include <map>
#include <string>

namespace KV::recordings
{

/// Returns the table that makes readings from action units; the scores are named AU01, AU02, and so on.
const ScoreTable& actionUnitTable();

/// The full scale that the rest of the table assumes.
constexpr float restingFullScale = 3.f;

/// Returns the scores of a face at rest for the action units of py-feat, whose full scale is 1.
const std::map<std::string, RestingScore>& pyFeatRest();

/// Returns whether this is the name of an action unit as the table writes it.
bool isActionUnitName(const std::string& name);

/// Returns the number in the name of an action unit: 12 of AU12.
std::size_t actionUnitNumber(const std::string& name);

/// Returns an intensity as part of the full scale, clamped to [0, 1]; NaN stays NaN.
float actionUnitScore(double intensity, float fullScale);

}  // namespace KV::recordings
