#pragma once

#include "cli/exitstatus.hpp"
#include "commands/replay.hpp"

#include <string>
#include <string_view>

namespace KV::tools
{

/// Replays the one session of the options, and writes what the library thought, and why, as a page.
///
/// Bad input is reported as by replay(); what came before it is in the page, which says so.
///
/// \throws WriteError if the page cannot be written; the target is as it was then.
ExitStatus writeReport(const ReplayOptions& options, const ReplaySurroundings& surroundings, std::string_view page,
                       const std::string& target);

}  // namespace KV::tools
