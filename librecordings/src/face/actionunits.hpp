#pragma once

#include "face/scoretable.hpp"

#include <cstddef>
#include <map>
#include <string>

namespace KV::recordings
{

/// Returns which action units make which readings; the scores are named AU01, AU02, and so on.
const ScoreTable& actionUnitTable();

/// The full scale that the rest of the table is told for.
constexpr float restingFullScale = 3.f;

/// Returns how the action units of py-feat rest, whose full scale is 1.
const std::map<std::string, RestingScore>& pyFeatRest();

/// Tells whether this is the name of an action unit as the table has it.
bool isActionUnitName(const std::string& name);

/// Returns the number in the name of an action unit: 12 of AU12.
std::size_t actionUnitNumber(const std::string& name);

/// Returns an intensity as part of the full scale, no more than 1 and no less than 0; NaN stays NaN.
float actionUnitScore(double intensity, float fullScale);

}  // namespace KV::recordings
