#pragma once

// CLI11 counts on all of its headers being included in order.
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

/// Makes the pages of the command and of each of its subcommands from what their help says.
std::vector<ManualPage> manualPages(CLI::App& app);

}  // namespace KV::tools
