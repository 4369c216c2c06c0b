#pragma once

#include "explanation.hpp"
#include "spanexplanation.hpp"

#include <nlohmann/json.hpp>

#include <string>

namespace tools
{

/// Returns the update with each of its forces; docs/explain.md lists the members.
///
/// Numbers of single precision are the shortest that read back as the same.
nlohmann::ordered_json explanationJson(const Explanation& explanation, const std::string& recording);

/// Returns the shares of all sources; likewise.
nlohmann::ordered_json explanationJson(const SpanExplanation& explanation, const std::string& recording);

}  // namespace tools
