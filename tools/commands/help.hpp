#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the command "help", which shows the help of the other commands.
void addHelpCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
