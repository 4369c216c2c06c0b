#pragma once

#include "cli/exitstatus.hpp"
#include "cli/messages.hpp"
#include "commands/replay.hpp"
#include "terminal/display.hpp"
#include "terminal/progressline.hpp"

#include <skeigiot/session/exportwriters.hpp>

#include <functional>

namespace KV::tools
{

/// Where the replay of one session writes to.
struct SessionOutlets
{
  Display& display;
  Messages& messages;
  session::ExportWriters& exports;
  ProgressLine& progress;
  std::function<void()> checkInterruption;  ///< called for each step; ends the replay by throwing
};

/// What became of the replay of one session.
struct SessionOutcome
{
  ExitStatus status = Success;
  bool opened = false;  ///< there was a recording to read
};

/// Replays one session, the clock of this thread being set to its time, and shows what the library thought.
SessionOutcome replaySession(const session::SessionInputs& session, const ReplayOptions& options,
                             const ReplaySurroundings& surroundings, const SessionOutlets& outlets);

}  // namespace KV::tools
