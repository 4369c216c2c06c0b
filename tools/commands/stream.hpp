#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the subcommand "stream"; parsing it runs it, and sets its exit status.
void addStreamCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
