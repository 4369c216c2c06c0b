#pragma once

#include "terminal/terminal.hpp"

#include <skeigiot/session/snapshot.hpp>
#include <skeigiot/session/timelinerow.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

constexpr int narrowestTable = 80;  ///< columns; in fewer, the bars would show nothing
constexpr int widestTable = 100;    ///< columns; in more, the bars would only be longer

/// Returns the rows of one person as a table with a header, at most `width` columns wide.
///
/// The sources that moved valence and attention most are below each row whose changes are known. Several rows that look
/// like the one before them become one line.
///
/// \pre `width` is at least narrowestTable.
std::string timelineTable(const std::vector<session::TimelineRow>& rows, session::Duration step, int width,
                          const Style& style);

}  // namespace KV::tools
