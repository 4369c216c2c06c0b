#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/changes.hpp>
#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/spanexplanation.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// Returns in one sentence how a quantity changed, and which sources pulled at it: "valence fell from 0.41 to 0.12:
/// facial expressions (negative) pulled 65 %, touch (positive) pulled 30 % the other way, others pulled 5 %".
///
/// Percentages are shares of the total change, whichever way it went; `changes` are of that quantity alone, the
/// greatest first.
SKEIGIOT_API std::string describeChange(KV::Quantity quantity, float before, float after,
                                        const std::vector<SourceChange>& changes);

/// Returns the sentences on valence, attention, and the zone if it changed; what is unknown is said to be so.
SKEIGIOT_API std::vector<std::string> sentencesOn(const Explanation& explanation);

/// Returns the sentences on valence and attention.
SKEIGIOT_API std::vector<std::string> sentencesOn(const SpanExplanation& explanation);

}  // namespace KV::session
