#pragma once

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/outputcheck.hpp>
#include <skeigiot/session/scopespan.hpp>
#include <skeigiot/session/sessionplan.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <CLI/App.hpp>

#include <map>
#include <string>
#include <vector>

namespace KV::tools
{

/// Adds "--offset", which moves inputs of a session; the target, by path, must outlive the command.
CLI::Option* addOffsetOption(CLI::App& command, std::map<std::string, session::Duration>& offsets);

/// Adds "--scope", which judges time spans besides the whole recording; the target must outlive the command.
CLI::Option* addScopeOption(CLI::App& command, std::vector<session::ScopeSpan>& scopes);

/// Adds "--cycle", the rate at which persons are updated; the target must outlive the command.
CLI::Option* addCycleOption(CLI::App& command, session::Cycle& cycle);

/// Adds "--force", with which outputs replace any file except an input; the target must outlive the command.
CLI::Option* addForceOption(CLI::App& command, bool& force);

/// Returns the message of the error, with the option that helps.
std::string messageOf(const session::OutputRefused& refused);

/// Refuses text on standard output if that is one of the inputs, as in "skeigiot inspect face.csv >> face.csv".
///
/// \throws OutputRefused if it is.
void checkStandardOutput(const session::SessionInputs& inputs);

/// Plans the sessions that the command line names.
///
/// \throws Error as planSessions() does.
/// \throws CLI::ValidationError for arguments that contradict each other.
session::SessionPlan planNamedSessions(const session::SessionArguments& arguments);

/// Returns the message of the error, with the options that help.
std::string messageOf(const recordings::Error& error);

/// Adds an option for each boundary of the library.
void addBoundaryOptions(CLI::App& command);

}  // namespace KV::tools
