#pragma once

#include "cli/exitstatus.hpp"

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds "skeigiot serve", which shows a live session on a page in the browser.
void addServeCommand(CLI::App& app, ExitStatus& status);

}  // namespace KV::tools
