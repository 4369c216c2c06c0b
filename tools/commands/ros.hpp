#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds "skeigiot ros", which shows a live session on a page in the browser.
void addRosCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
