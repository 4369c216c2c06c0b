#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "inspect"; when it is parsed it runs, and leaves its status.
void addInspectCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
