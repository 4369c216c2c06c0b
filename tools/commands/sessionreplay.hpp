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

/// Where the replay of one session writes to.
struct SessionOutlets
{
  Display& display;
  Messages& messages;
  std::vector<session::SessionObserver*> observers;  ///< further observers of the session
  ProgressLine& progress;
  std::function<void()> checkInterruption;  ///< called for each step; ends the replay by throwing
};

/// What became of the replay of one session.
struct SessionOutcome
{
  ExitStatus status = Success;
  bool opened = false;                    ///< there was a recording to read
  std::vector<std::string> said;          ///< its warnings and errors
  std::string error = {};                 ///< what ended it early, or kept it from beginning; empty if nothing did
  FileOverview overview = {};             ///< what the table of all recordings has of it
  session::ReportOverview report = {};    ///< what the index of all reports has of it
  std::vector<std::string> learned = {};  ///< what was learned of the faces at rest
};

/// Replays one session, the clock of this thread being set to its time, and shows what the library thought.
SessionOutcome replaySession(const session::SessionInputs& session, const ReplayOptions& options,
                             const ReplaySurroundings& surroundings, const SessionOutlets& outlets);

}  // namespace KV::tools
