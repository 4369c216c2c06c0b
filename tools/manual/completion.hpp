#pragma once

// CLI11 counts on all of its headers being included in order.
#include <CLI/CLI.hpp>

#include <string>

namespace tools
{

/// Makes a script by which bash completes subcommands, options, their words, and names of files.
std::string bashCompletion(CLI::App& app);

}  // namespace tools
