#pragma once

// CLI11 counts on all of its headers being included in order.
#include <CLI/CLI.hpp>

#include <string>

namespace KV::tools
{

/// Makes a script by which bash completes subcommands, options, their words, and names of files.
std::string bashCompletion(CLI::App& app);

/// The same for fish, with what each of them is for.
std::string fishCompletion(CLI::App& app);

}  // namespace KV::tools
