#pragma once

#include <cstddef>
#include <string_view>

namespace fuzz
{

struct Target;

/// Runs the target, and holds it to a budget: memory, bytes written and time of the processor in proportion to the size
/// of the input, and a constant. What is beyond is a finding.
void runWithinBudget(const Target& target, std::string_view input);

}  // namespace fuzz
