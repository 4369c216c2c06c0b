#pragma once

#include "terminal/terminal.hpp"

#include <skeigiot/session/summary.hpp>

#include <cstdint>
#include <string>

namespace KV::tools
{

/// Returns the summary of one person among all as lines for people to read, of at most that many columns if
/// possible.
std::string summaryText(const session::Summary& all, std::int32_t person, int width, const Style& style);

/// Returns the text on the ambiance of the room; nothing if it was not recorded.
std::string ambianceText(const session::Summary::Ambiance& ambiance, const Style& style);

}  // namespace KV::tools
