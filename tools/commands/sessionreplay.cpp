#include "sessionreplay.hpp"

#include "librarylog.hpp"
#include "notedreading.hpp"
#include "session.hpp"
#include "summary.hpp"
#include "text.hpp"
#include "timeline.hpp"
#include "timelinetable.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tools
{

namespace
{

class SessionReplay
{
  using Step = NotedReading::Step;

public:
  SessionReplay(const SessionInputs& inputs, const ReplayOptions& options, const ReplaySurroundings& surroundings,
                const SessionOutlets& outlets)
    : _inputs(inputs), _name(inputs.name()), _options(options), _surroundings(surroundings), _outlets(outlets)
  {
    _spans.push_back({"whole recording", Duration(0), boost::none});
    _spans.insert(_spans.end(), options.scopes.begin(), options.scopes.end());
  }

  SessionOutcome run()
  {
    SessionOutcome outcome;
    _show(_surroundings.style.bold(_name) + "\n");
    try
    {
      const std::unique_ptr<RecordingReader> reader = openSession(_inputs, _surroundings.open);
      outcome.opened = true;
      outcome.status = _replay(*reader);
    }
    catch (const RecordingError& error)
    {
      _outlets.checkInterruption();  // opening may fail for that reason alone
      _outlets.messages.error(error.what());
      outcome.status = BadInput;
    }
    return outcome;
  }

private:
  ExitStatus _replay(RecordingReader& reader)
  {
    Timeline timeline(_options.step);
    Summary summary;
    std::vector<SessionObserver*> observers = _outlets.exports.observers();
    observers.push_back(&timeline);
    observers.push_back(&summary);
    Session session(_spans, observers, _options.explain ? Forces::Watched : Forces::Unwatched);
    LibraryLog log;

    NotedReading reading(reader, _options.skipBad);
    _play(reader, reading, session);
    session.finish();
    summary.finish();

    for (const std::string& text : reading.warnings())
      _show(_surroundings.style.yellow("warning: " + text) + "\n");
    _showPersons(timeline, summary);
    _noteLeftOut(session.takeLeftOut());
    _noteLibraryWarnings(log);
    return _reportBadInput(reading);
  }

  void _play(RecordingReader& reader, NotedReading& reading, Session& session)
  {
    ProgressLine& progress = _outlets.progress;
    boost::optional<RecordingEntry> entry;
    bool described = false;
    for (;;)
    {
      const Step step = reading.next(entry);
      _outlets.checkInterruption();
      if (!described)
        _showDescription(reader);  // what was found out with the first step is in it
      described = true;

      if (step == Step::End)
        break;
      if (step == Step::Taken)
      {
        _outlets.exports.write(*entry);
        session.play(*entry);
      }
      if (progress.isDue())
        progress.show(reader.progress(), session.length());
    }
    progress.erase();
  }

  void _showDescription(const RecordingReader& reader)
  {
    for (const std::string& line : reader.describe())
      _show(wrapped(line, static_cast<std::size_t>(_surroundings.outputWidth), 2) + "\n");
  }

  void _showPersons(const Timeline& timeline, const Summary& summary)
  {
    const Style& style = _surroundings.style;
    if (summary.persons().empty())
      _show("\nNobody was seen in this recording.\n");
    for (const auto& [person, rows] : timeline.rows())
      _show("\n" + style.bold("Person " + std::to_string(person)) + "\n" +
            timelineTable(rows, timeline.step(), _surroundings.outputWidth, style) + "\n" +
            summary.describe(person, _surroundings.outputWidth, style));
    const std::string ambiance = summary.describeAmbiance(style);
    if (!ambiance.empty())
      _show("\n" + ambiance);
  }

  void _noteLeftOut(const std::string& text)
  {
    if (!text.empty())
      _outlets.messages.note("warning: " + _name + ": " + text);
  }

  void _noteLibraryWarnings(LibraryLog& log)
  {
    const std::string prefix = _name + ": ";
    for (const std::string& line : log.take())
      _outlets.messages.note(prefix + line);
  }

  ExitStatus _reportBadInput(const NotedReading& reading)
  {
    const std::string skipped = reading.skippedText();
    if (!skipped.empty())
      _outlets.messages.note(_name + ": " + skipped);
    if (!reading.error())
      return Success;
    _outlets.messages.error(reading.error()->what());
    return BadInput;
  }

  void _show(const std::string& text) { _outlets.display.show(text); }

  const SessionInputs& _inputs;
  std::string _name;
  const ReplayOptions& _options;
  const ReplaySurroundings& _surroundings;
  const SessionOutlets& _outlets;
  std::vector<ScopeSpan> _spans;
};

}  // namespace

SessionOutcome replaySession(const SessionInputs& session, const ReplayOptions& options,
                             const ReplaySurroundings& surroundings, const SessionOutlets& outlets)
{
  return SessionReplay(session, options, surroundings, outlets).run();
}

}  // namespace tools
