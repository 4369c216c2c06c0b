#pragma once

#include "cli/exitstatus.hpp"

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <memory>

namespace KV::tools
{

/// Makes the command with its subcommands; the one that runs sets its exit status in `status`, which must outlive it.
std::unique_ptr<CLI::App> commandLine(ExitStatus& status);

}  // namespace KV::tools
