#pragma once

#include "terminal/terminal.hpp"

#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/spanexplanation.hpp>

#include <string>

namespace KV::tools
{

/// The form in which an explanation is shown to people.
struct ExplanationLayout
{
  int width = 80;  ///< columns, for sentences
  Style style{false};
  std::string remark;      ///< on the update, for the heading
  bool showsEach = false;  ///< every force in a row of its own, and every quantity
};

/// Returns the forces of one update in their order, and sentences on their effect.
std::string explanationText(const session::Explanation& explanation, const ExplanationLayout& layout);

/// Returns the share of each source in the change of each quantity, and sentences on the whole.
std::string explanationText(const session::SpanExplanation& explanation, const ExplanationLayout& layout);

}  // namespace KV::tools
