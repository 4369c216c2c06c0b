#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the words of the command line with the command "replay" in front if they begin with a recording.
///
/// \throws CLI::ValidationError if the first word is neither a command nor a recording, or if there is no word. The
/// message names the nearest command.
std::vector<std::string> withCommand(std::vector<std::string> words, const CLI::App& app);

/// Returns the names of all commands, in the order in which they were added.
std::vector<std::string> commandNames(const CLI::App& app);

/// Returns the command with this name.
///
/// \throws CLI::ValidationError if there is no such command; the message names the nearest.
const CLI::App& commandNamed(const std::string& name, const CLI::App& app);

/// Lists the unexpected words of the parsed command line, and the option that is nearest to the first.
///
/// \pre there are such words.
std::string describeUnexpected(const CLI::App& app);

}  // namespace KV::tools
