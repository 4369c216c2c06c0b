#pragma once

#include "livesession.hpp"

#include <CLI/App.hpp>

namespace tools
{

/// Adds the option --times, which fills in `times`.
void addTimesOption(CLI::App& command, StreamTimes& times);

/// Returns the time of the machine, whatever clock the thread has.
TimePoint wallClock();

}  // namespace tools
