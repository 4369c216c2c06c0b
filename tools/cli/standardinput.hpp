#pragma once

#include <skeigiot/session/sessionplan.hpp>

#include <istream>
#include <string>

namespace KV::tools
{

/// Tells whether the path is "-", which stands for standard input.
bool isStandardInput(const std::string& path);

/// Returns the path, or for "-" what messages call it.
std::string nameOf(const std::string& path);

/// Returns the session with standard input by what messages call it; for its names, not to open its inputs.
session::SessionInputs named(session::SessionInputs session);

/// Returns the bytes of standard input. Reading waits for them, and throws Interrupted if a signal ends the program.
///
/// What was read is gone: one recording for each run of the program.
std::istream& standardInput();

}  // namespace KV::tools
