#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tools
{

/// Returns the parts with ", " between them.
std::string listed(const std::vector<std::string>& parts);

/// Returns the number without trailing zeros.
std::string shortNumber(float value);

/// Says which of these parts of a recording are not there.
std::string describeMissing(const std::vector<std::pair<bool, const char*>>& parts);

}  // namespace tools
