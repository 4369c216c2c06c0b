#include "commands/replayrun.hpp"

#include "cli/interruption.hpp"
#include "cli/standardinput.hpp"
#include "commands/reportfile.hpp"
#include "commands/reportfolder.hpp"
#include "commands/sessionreplay.hpp"
#include "terminal/foldertable.hpp"

#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/session/exports.hpp>
#include <skeigiot/session/orderedjobs.hpp>
#include <skeigiot/session/outputcheck.hpp>
#include <skeigiot/session/possiblejobs.hpp>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <utility>

namespace KV::tools
{

namespace
{

bool usesStandardOutput(const std::map<std::string, std::string>& exports)
{
  return std::any_of(exports.begin(), exports.end(), [](const auto& one) { return one.second == "-"; });
}

const char* const interruptedText = "interrupted";

/// Stops the replay of a session whose result is not needed any more.
struct Cancelled
{};

/// A session that was replayed before those in front of it were shown.
struct Buffered
{
  SessionOutcome outcome;
  std::string output;
  std::string errors;
  std::unique_ptr<session::Exports::Spilled> exports;
  boost::optional<Interrupted> interrupted;  ///< why it ended early; its earlier results are there
};

class Replay
{
public:
  Replay(const ReplayOptions& options, const ReplaySurroundings& surroundings)
    : _options(options),
      _surroundings(surroundings),
      _display(surroundings.output, options.shown && !options.quiet && !usesStandardOutput(options.exports)),
      _messages(surroundings.errors, options.quiet),
      _progress(surroundings.errors, surroundings.showProgress && !options.quiet)
  {
    session::OutputCheck check(options.force);
    for (const session::SessionInputs& session : options.sessions)
      check.protect(session);
    for (const std::string& path : options.otherInputs)
      check.protect(path);
    for (const auto& [format, target] : options.exports)
    {
      const auto changed = options.changedFormats.find(format);
      _exports.add(changed == options.changedFormats.end() ? session::exportFormat(format) : changed->second, target,
                   check);
    }
    if (options.report)
      _report.emplace(*options.report, check);
    if (options.reportFolder)
      _reports.emplace(*options.reportFolder, options.sessions, check);
    if (_display.shows())
      check.admit("-");
  }

  ExitStatus all()
  {
    try
    {
      if (_options.jobs > 1 && _options.sessions.size() > 1)
        _inParallel();
      else
        _oneByOne();
    }
    catch (const Interrupted&)
    {
      _progress.erase();
      _exports.commit();  // the part before the fault is good
      throw;
    }
    if (_options.sessions.size() > 1)
      _display.show("\n" + folderTable(_overviews, _surroundings.style));
    if (_anyOpened)
      _commit();
    return _display.closed() ? Failure : _status;
  }

private:
  void _oneByOne()
  {
    for (std::size_t i = 0; i < _options.sessions.size() && !_isInVain(); ++i)
    {
      _separate(i);
      _exports.beginSession(_nameOf(i));
      try
      {
        SessionOutcome outcome = _replayed(i, {_display, _messages, _observers(), _progress, Interruption::check});
        _exports.endSession(outcome.error);
        _add(std::move(outcome));
      }
      catch (const Interrupted&)
      {
        _exports.endSession(interruptedText);
        throw;
      }
    }
  }

  void _inParallel()
  {
    const std::size_t count = _options.sessions.size();
    session::OrderedJobs<Buffered> jobs(
        count, session::possibleJobs(_options.jobs),
        [this](std::size_t i, const std::atomic<bool>& cancelled) { return _buffered(i, cancelled); });
    for (std::size_t i = 0; i < count && !_isInVain(); ++i)
    {
      Buffered session = jobs.take([this, i, count] { _wait(i, count); });
      _progress.erase();
      _separate(i);
      _display.show(session.output);
      _surroundings.errors << session.errors << std::flush;
      _exports.append(*session.exports);
      if (session.interrupted)
        throw Interrupted(*session.interrupted);
      _add(std::move(session.outcome));
    }
  }

  /// Replays a session on a thread of its own; threads share only constant data.
  Buffered _buffered(std::size_t i, const std::atomic<bool>& cancelled) const
  {
    std::ostringstream output;
    std::ostringstream errors;
    output.exceptions(std::ios::badbit);  // else a lack of memory would cut the text
    errors.exceptions(std::ios::badbit);
    Buffered session;
    session.exports = _exports.spill(_nameOf(i));
    Display display(output, _display.shows());
    Messages messages(errors, _options.quiet);
    ProgressLine progress(errors, false);
    const auto check = [&cancelled] {
      Interruption::check();
      if (cancelled)
        throw Cancelled();
    };
    const recordings::InterruptionCheck whileReading(check);
    try
    {
      session.outcome = _replayed(i, {display, messages, session.exports->observers(), progress, check});
    }
    catch (const Interrupted& interrupted)
    {
      session.interrupted = interrupted;
      session.outcome.error = interruptedText;
    }
    session.exports->endSession(session.outcome.error);
    session.output = output.str();
    session.errors = errors.str();
    return session;
  }

  /// Replays a session, and writes its own report, if there are reports of all.
  SessionOutcome _replayed(std::size_t i, SessionOutlets outlets) const
  {
    const session::SessionInputs& session = _options.sessions[i];
    if (!_reports)
      return replaySession(session, _options, _surroundings, outlets);
    session::OutputCheck checked(true);  // the page was checked at the start
    ReportFile report(_reports->pageOf(i), checked);
    outlets.observers.push_back(&report.observer());
    SessionOutcome outcome = replaySession(session, _options, _surroundings, outlets);
    if (outcome.opened)
    {
      report.commit(session, outcome.problems, _options.format, _options.givenOptions);
      outcome.report = report.overview();
    }
    return outcome;
  }

  /// The sessions themselves notice an interruption, so that their exports are not lost.
  void _wait(std::size_t done, std::size_t all)
  {
    if (_progress.isDue())
      _progress.showCount(done, all);
  }

  void _separate(std::size_t i)
  {
    if (i > 0)
      _display.show("\n");
  }

  std::vector<session::SessionObserver*> _observers()
  {
    std::vector<session::SessionObserver*> observers = _exports.observers();
    if (_report)
      observers.push_back(&_report->observer());
    return observers;
  }

  void _commit()
  {
    _exports.commit();
    if (_report)
      _commitReport();
    if (_reports)
      _reports->commit();
  }

  void _commitReport()
  {
    session::ReportAdditions additions = _options.reportAdditions;
    additions.learned = _learned;
    const std::vector<std::string> warnings = _report->add(additions);
    _report->commit(_options.sessions.front(), _problems, _options.format, _options.givenOptions);
    for (const std::string& warning : warnings)
      _messages.note("warning: " + warning);
  }

  void _add(SessionOutcome outcome)
  {
    _problems.insert(_problems.end(), outcome.problems.begin(), outcome.problems.end());
    _learned = outcome.learned;
    _status = graver(_status, outcome.status);
    _anyOpened = _anyOpened || outcome.opened;
    if (_reports)
      _reports->add({outcome.overview.file, "", std::move(outcome.report), outcome.overview.warnings, outcome.error},
                    outcome.opened);
    _overviews.push_back(std::move(outcome.overview));
  }

  bool _isInVain() const { return _display.closed() && _exports.empty() && !_report && !_reports; }

  session::SessionName _nameOf(std::size_t i) const
  {
    return named(_options.sessions[i]).exportedAs(static_cast<int>(i) + 1);
  }

  const ReplayOptions& _options;
  const ReplaySurroundings& _surroundings;
  Display _display;
  Messages _messages;
  ProgressLine _progress;
  session::Exports _exports;
  boost::optional<ReportFile> _report;
  boost::optional<ReportFolder> _reports;
  std::vector<std::string> _problems;  // warnings and errors of all sessions
  std::vector<std::string> _learned;   // of the faces at rest, by the last session
  std::vector<FileOverview> _overviews;
  ExitStatus _status = Success;
  bool _anyOpened = false;
};

}  // namespace

ExitStatus replay(const ReplayOptions& options, const ReplaySurroundings& surroundings)
{
  return Replay(options, surroundings).all();
}

}  // namespace KV::tools
