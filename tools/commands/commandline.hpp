#pragma once

#include "exitstatus.hpp"

// CLI11 counts on all of its headers being included in order.
#include <CLI/CLI.hpp>

#include <memory>

namespace tools
{

/// Makes the command with all of its subcommands; the one that runs leaves its end in `status`, which must outlive it.
std::unique_ptr<CLI::App> commandLine(ExitStatus& status);

}  // namespace tools
