#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/spanexplanation.hpp>

#include <string>

namespace KV::session
{

/// Returns the update with each of its forces as JSON text; docs/explain.md lists the members.
///
/// Numbers of single precision are the shortest that read back as the same.
SKEIGIOT_API std::string explanationJson(const Explanation& explanation, const std::string& recording);

/// Returns the shares of all sources as JSON text; docs/explain.md lists the members.
SKEIGIOT_API std::string explanationJson(const SpanExplanation& explanation, const std::string& recording);

}  // namespace KV::session
