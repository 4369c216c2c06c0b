#pragma once

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// One page of the manual.
struct ManualPage
{
  std::string file;  ///< such as "skeigiot-replay.1"
  std::string text;  ///< in the roff of man(7)
};

/// Makes the pages of the command and of each of its subcommands from their help.
std::vector<ManualPage> manualPages(CLI::App& app);

}  // namespace KV::tools
