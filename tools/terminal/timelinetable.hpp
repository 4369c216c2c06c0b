#pragma once

#include "terminal/terminal.hpp"

#include <skeigiot/session/snapshot.hpp>
#include <skeigiot/session/timelinerow.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

constexpr int narrowestTable = 80;  ///< columns; in less, the bars would say nothing
constexpr int widestTable = 100;    ///< columns; in more, the bars would only be longer

/// Returns the rows of one person as a table with a header, at most `width` columns wide.
///
/// Below a row whose changes are known stand the sources that moved valence and attention most. Several rows that look
/// like the one before them become one line that says so.
///
/// \pre `width` is narrowestTable at least.
std::string timelineTable(const std::vector<session::TimelineRow>& rows, session::Duration step, int width,
                          const Style& style);

}  // namespace KV::tools
