#pragma once

#include "cli/exitstatus.hpp"

// CLI11 counts on all of its headers being included in order.
#include <CLI/CLI.hpp>

#include <memory>

namespace KV::tools
{

/// Makes the command with all of its subcommands; the one that runs leaves its end in `status`, which must outlive it.
std::unique_ptr<CLI::App> commandLine(ExitStatus& status);

}  // namespace KV::tools
