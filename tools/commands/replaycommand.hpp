#pragma once

#include "cli/exitstatus.hpp"
#include "commands/replay.hpp"

#include <CLI/App.hpp>

#include <functional>
#include <string>

namespace KV::tools
{

/// Replays the one session of the options, and writes a page of it into a file.
using ReportWriter = std::function<ExitStatus(const ReplayOptions& options, const ReplaySurroundings& surroundings,
                                              const std::string& file)>;

/// Adds the subcommand "replay"; when it is parsed it runs, and leaves its status.
///
/// Without a writer, the option --report is refused.
void addReplayCommand(CLI::App& app, ExitStatus& status, const ReportWriter& writeReport);

}  // namespace KV::tools
