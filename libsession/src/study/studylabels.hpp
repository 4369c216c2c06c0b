#pragma once

#include "study/database.hpp"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// Returns how often each verdict was given on each of these scopes, in complete sessions, and the agreement of scopes
/// that are named after a verdict with their verdicts.
///
/// A scope is named after a verdict if its name is "positive", "neutral" or "negative" in any case; a name such as
/// "mood: positive" begins with the tier. Only verdicts that are known are compared. Each person, scope and session
/// counts once.
///
/// \return the members "verdicts", a list, and "agreement": null if no scope is named after a verdict
nlohmann::ordered_json studyLabels(Database& database, const std::vector<std::string>& scopes);

}  // namespace KV::session
