#pragma once

#include <skeigiot/session/livesession.hpp>

#include <CLI/App.hpp>

namespace KV::tools
{

/// Adds the option --times, which fills in `times`.
CLI::Option* addTimesOption(CLI::App& command, session::StreamTimes& times);

/// Returns the time of the machine, for any clock of the thread.
session::TimePoint wallClock();

}  // namespace KV::tools
