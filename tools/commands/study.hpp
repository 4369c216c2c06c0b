#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "study"; when it is parsed it runs, and leaves its status.
void addStudyCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
