#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "why"; parsing it runs it, and sets its exit status.
void addWhyCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
