#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "report"; parsing it runs it, and sets its exit status.
void addReportCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
