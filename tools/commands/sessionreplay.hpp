#pragma once

#include "display.hpp"
#include "exitstatus.hpp"
#include "exportwriters.hpp"
#include "messages.hpp"
#include "progressline.hpp"
#include "replay.hpp"

#include <functional>

namespace tools
{

/// Where the replay of one session writes to.
struct SessionOutlets
{
  Display& display;
  Messages& messages;
  ExportWriters& exports;
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
SessionOutcome replaySession(const SessionInputs& session, const ReplayOptions& options,
                             const ReplaySurroundings& surroundings, const SessionOutlets& outlets);

}  // namespace tools
