#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the options of the command line that say how a recording is read and estimated, as one could type them:
/// "--fps 25". Those about outputs and display are left out.
///
/// To be called once the command line was parsed.
std::vector<std::string> givenReadingOptions(const CLI::App& command);

}  // namespace KV::tools
