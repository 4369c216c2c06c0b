#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "watch"; when it is parsed it runs, and leaves its status.
void addWatchCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
