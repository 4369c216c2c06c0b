#pragma once

#include <cstddef>
#include <string_view>

namespace fuzz
{

struct Target;

/// Runs the target with a budget: memory, bytes written and time of the processor in proportion to the size of the
/// input, and a constant. Exceeding it is a finding.
void runWithinBudget(const Target& target, std::string_view input);

}  // namespace fuzz
