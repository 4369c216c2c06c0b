#pragma once

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <string>

namespace KV::tools
{

/// Makes a script with which bash completes subcommands, options, their words, and names of files.
std::string bashCompletion(CLI::App& app);

/// The same for fish, with a description of each.
std::string fishCompletion(CLI::App& app);

}  // namespace KV::tools
