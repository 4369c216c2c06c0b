#pragma once

#include "cli/exitstatus.hpp"
#include "cli/messages.hpp"
#include "commands/replayrun.hpp"
#include "terminal/display.hpp"
#include "terminal/foldertable.hpp"
#include "terminal/progressline.hpp"

#include <skeigiot/session/reportoverview.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <functional>
#include <string>
#include <vector>

namespace KV::tools
{

/// The outputs of the replay of one session.
struct SessionOutlets
{
  Display& display;
  Messages& messages;
  std::vector<session::SessionObserver*> observers;  ///< further observers of the session
  ProgressLine& progress;
  std::function<void()> checkInterruption;  ///< called for each step; ends the replay by throwing
};

/// The result of the replay of one session.
struct SessionOutcome
{
  ExitStatus status = Success;
  bool opened = false;                    ///< there was a recording to read
  std::vector<std::string> problems;      ///< its warnings and errors
  std::string error = {};                 ///< why it ended early or could not begin; empty if it ran to the end
  FileOverview overview = {};             ///< the session's line in the table of all recordings
  session::ReportOverview report = {};    ///< the session's entry in the index of all reports
  std::vector<std::string> learned = {};  ///< the learned faces at rest
};

/// Replays one session, with the clock of this thread set to its time, and shows the library's estimates.
SessionOutcome replaySession(const session::SessionInputs& session, const ReplayOptions& options,
                             const ReplaySurroundings& surroundings, const SessionOutlets& outlets);

}  // namespace KV::tools
