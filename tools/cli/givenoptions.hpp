#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the options of the command line on how a recording is read and estimated, as a user could type them: "--fps
/// 25". Options about outputs and display are left out.
///
/// To be called after the command line was parsed.
std::vector<std::string> givenReadingOptions(const CLI::App& command);

}  // namespace KV::tools
