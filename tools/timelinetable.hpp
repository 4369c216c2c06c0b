#pragma once

#include "snapshot.hpp"
#include "terminal.hpp"
#include "timelinerow.hpp"

#include <string>
#include <vector>

namespace tools
{

/// Returns the rows of one person as a table with a header, at most `width` columns wide but never under 80.
///
/// Wider than 100 columns it does not become either: the bars would only grow longer.
std::string timelineTable(const std::vector<TimelineRow>& rows, Duration step, int width, const Style& style);

}  // namespace tools
