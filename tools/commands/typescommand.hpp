#pragma once

#include "exitstatus.hpp"

#include <CLI/App.hpp>

namespace tools
{

/// Adds the subcommand "types"; when it is parsed it runs, and leaves its status.
void addTypesCommand(CLI::App& app, ExitStatus& status);

}  // namespace tools
