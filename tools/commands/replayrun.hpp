#pragma once

#include "cli/exitstatus.hpp"
#include "terminal/terminal.hpp"
#include "terminal/timelinetable.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/exportformat.hpp>
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

/// The recordings to replay, and the form of the output.
struct ReplayOptions
{
  std::vector<session::SessionInputs> sessions;
  std::size_t jobs = 1;                    ///< how many sessions are replayed at a time
  bool skipBad = false;                    ///< skip lines that cannot be used
  session::Cycle cycle;                    ///< how often persons are updated
  std::vector<session::ScopeSpan> scopes;  ///< time spans besides the whole recording
  boost::optional<session::Duration> step;
  bool explain = false;                        ///< show the causes of each row below it
  bool shown = true;                           ///< false: nothing is shown on the output
  bool quiet = false;                          ///< only errors are written
  std::map<std::string, std::string> exports;  ///< files by the name of the format; "-" is standard output
  std::map<std::string, session::ExportFormat> changedFormats;  ///< used instead of the format of that name
  boost::optional<std::string> report;                          ///< file of the report of the one session
  std::string format;                                           ///< of all inputs; empty: detected
  std::vector<std::string> givenOptions;      ///< the user's options on reading, for the report: "--fps 25"
  boost::optional<std::string> reportFolder;  ///< folder of the reports of all sessions
  std::vector<std::string> otherInputs;       ///< files besides the recordings that no output may overwrite
  bool force = false;                         ///< existing files are replaced, of any kind
  session::ReportAdditions reportAdditions;   ///< parts of the report besides the session
};

/// The inputs and outputs of a replay.
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

/// Replays the sessions, each with persons and scopes of its own, and shows the library's estimates.
///
/// Bad input is reported and ends its session, not the others; the part before it is shown and exported. The output and
/// its order do not depend on the number of jobs: sessions that end before their turn wait, their exports in temporary
/// files. Each recording is read once for all outputs, exports and reports.
///
/// \throws OutputRefused for an output that would overwrite an input, another output, or a file of another program.
/// \throws WriteError if the output, an export or the report cannot be written; exports and report are then dropped.
ExitStatus replay(const ReplayOptions& options, const ReplaySurroundings& surroundings);

}  // namespace KV::tools
