#pragma once

#include "scopespan.hpp"
#include "sessionplan.hpp"
#include "snapshot.hpp"

#include <CLI/App.hpp>

#include <map>
#include <string>
#include <vector>

namespace tools
{

/// Adds "--offset", which moves inputs of a session; the target, by path, must outlive the command.
CLI::Option* addOffsetOption(CLI::App& command, std::map<std::string, Duration>& offsets);

/// Adds "--scope", which judges spans besides the whole recording; the target must outlive the command.
CLI::Option* addScopeOption(CLI::App& command, std::vector<ScopeSpan>& scopes);

/// Plans the sessions that the command line names.
///
/// \throws RecordingError as planSessions() does.
/// \throws CLI::ValidationError for arguments that do not go together.
SessionPlan planNamedSessions(const SessionArguments& arguments);

/// Adds an option for each boundary of the library.
void addBoundaryOptions(CLI::App& command);

}  // namespace tools
