#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "report"; when it is parsed it runs, and leaves its status.
void addReportCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
