#pragma once

#include <skeigiot/session/sessionplan.hpp>

#include <istream>
#include <string>

namespace KV::tools
{

/// Returns whether the path is "-": then standard input is read.
bool isStandardInput(const std::string& path);

/// Returns the path, or for "-" its name in messages.
std::string nameOf(const std::string& path);

/// Returns the session with the name of standard input in messages; for its names, not to open its inputs.
session::SessionInputs named(session::SessionInputs session);

/// Returns the bytes of standard input. Reading waits for them, and throws Interrupted if a signal ends the program.
///
/// Bytes can be read only once, so a run of the program can read one recording from it.
std::istream& standardInput();

}  // namespace KV::tools
