#pragma once

#include "movements.hpp"

#include <string>
#include <vector>

namespace tools
{

/// Returns in one sentence how a quantity changed, and which sources pulled at it: "valence fell from 0.41 to 0.12:
/// face characteristics (negative) pulled 65 %, touch (positive) pulled 30 % the other way, others pulled 5 %".
///
/// Percentages are shares of the total movement, whichever way it went; `movements` are of that quantity alone, the
/// greatest first.
std::string describeChange(KV::Quantity quantity, float before, float after,
                           const std::vector<SourceMovement>& movements);

}  // namespace tools
