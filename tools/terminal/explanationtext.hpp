#pragma once

#include "explanation.hpp"
#include "spanexplanation.hpp"
#include "terminal.hpp"

#include <string>
#include <vector>

namespace tools
{

/// How an explanation is shown to people.
struct ExplanationLayout
{
  int width = 80;  ///< columns, for sentences
  Style style{false};
  bool showsEach = false;  ///< every force in a row of its own, and every quantity
};

/// Returns the forces of one update in their order, and sentences on what they did.
std::string explanationText(const Explanation& explanation, const ExplanationLayout& layout);

/// Returns the share of each source in the movement of each quantity, and sentences on the whole.
std::string explanationText(const SpanExplanation& explanation, const ExplanationLayout& layout);

/// Returns the sentences on valence, attention, and the zone if it changed.
std::vector<std::string> sentencesOn(const Explanation& explanation);

/// Returns the sentences on valence and attention.
std::vector<std::string> sentencesOn(const SpanExplanation& explanation);

/// Returns the shares of the distances in their sum, in tenths of a percent that add up to 1000, or all 0 if nothing
/// moved.
std::vector<int> sharesInTenthsOfPercent(const std::vector<SourceMovement>& movements);

}  // namespace tools
