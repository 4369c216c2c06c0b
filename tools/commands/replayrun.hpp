#pragma once

#include "cli/exitstatus.hpp"
#include "terminal/terminal.hpp"
#include "terminal/timelinetable.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/reportadditions.hpp>
#include <skeigiot/session/scopespan.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace KV::tools
{

/// What to replay, and how to show it.
struct ReplayOptions
{
  std::vector<session::SessionInputs> sessions;
  std::size_t jobs = 1;                    ///< how many sessions are replayed at a time
  bool skipBad = false;                    ///< go on behind a line that cannot be used
  session::Cycle cycle;                    ///< how often persons are updated
  std::vector<session::ScopeSpan> scopes;  ///< besides the whole recording
  boost::optional<session::Duration> step;
  bool explain = false;                        ///< show below each row what moved it
  bool shown = true;                           ///< false: nothing is shown on the output
  bool quiet = false;                          ///< nothing is written but errors
  std::map<std::string, std::string> exports;  ///< files by the name of the format; "-" is standard output
  boost::optional<std::string> report;         ///< file of the report of the one session
  std::string format;                          ///< that all inputs are read as; empty: found out
  std::vector<std::string> givenOptions;       ///< how the user wanted it read, for the report: "--fps 25"
  boost::optional<std::string> reportFolder;   ///< folder of the reports of all sessions
  std::vector<std::string> otherInputs;        ///< files besides the recordings that no output may overwrite
  bool force = false;                          ///< existing files are replaced, whatever they are
  session::ReportAdditions reportAdditions;    ///< what the report shows beside the session
};

/// Where a replay reads from and writes to.
struct ReplaySurroundings
{
  std::function<std::unique_ptr<recordings::Reader>(const std::string& path)>
      open;  ///< from several threads, if jobs > 1
  std::ostream& output;
  int outputWidth = widestTable;
  Style style = Style(false);
  std::ostream& errors;
  bool showProgress = false;
};

/// Replays the sessions, each with persons and scopes of its own, and shows what the library thought.
///
/// Bad input is reported and ends its session, not the others; what came before it is shown and exported. What is
/// written, and in which order, does not depend on the number of jobs: sessions that are done before their turn wait,
/// their exports in temporary files. Each recording is read once, whatever is shown, exported and reported of it.
///
/// \throws OutputRefused for an output that would overwrite an input, another output, or a file of somebody else.
/// \throws WriteError if the output, an export or the report cannot be written; exports and report are then dropped.
ExitStatus replay(const ReplayOptions& options, const ReplaySurroundings& surroundings);

}  // namespace KV::tools
