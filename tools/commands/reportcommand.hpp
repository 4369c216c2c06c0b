#pragma once

#include "cli/exitstatus.hpp"
#include "commands/replaycommand.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "report"; when it is parsed it runs, and leaves its status.
void addReportCommand(CLI::App& app, ExitStatus& status);

/// Returns what writes the page for other commands, empty if this one was built without the page.
ReportWriter reportWriter();

}  // namespace KV::tools
