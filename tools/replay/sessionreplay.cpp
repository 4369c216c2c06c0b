#include "sessionreplay.hpp"

#include "librarylog.hpp"
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

/// Keeps the first few of many texts, and counts the rest.
class FirstFew
{
public:
  void add(const std::string& text)
  {
    if (_texts.size() < most)
      _texts.push_back(text);
    ++_count;
  }

  void add(const std::vector<std::string>& texts)
  {
    for (const std::string& text : texts)
      add(text);
  }

  const std::vector<std::string>& texts() const { return _texts; }
  std::size_t more() const { return _count - _texts.size(); }

private:
  static constexpr std::size_t most = 10;

  std::vector<std::string> _texts;
  std::size_t _count = 0;
};

/// Bad lines that were passed over.
struct SkippedLines
{
  std::size_t count = 0;
  std::string first;
};

/// What is known of one recording when it was read to its end, or to where it turned bad.
struct Played
{
  FirstFew warnings;
  SkippedLines skipped;
  std::string error;  ///< empty: read to its end
};

class SessionReplay
{
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

    const Played played = _play(reader, session);
    session.finish();
    summary.finish();

    _showWarnings(played.warnings);
    _showPersons(timeline, summary);
    _noteLibraryWarnings(log);
    return _reportBadInput(played);
  }

  Played _play(RecordingReader& reader, Session& session)
  {
    ProgressLine& progress = _outlets.progress;
    Played played;
    boost::optional<RecordingEntry> entry;
    bool described = false;
    for (;;)
    {
      const Step step = _next(reader, entry, played);
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
    return played;
  }

  enum class Step
  {
    Taken,
    Skipped,
    End
  };

  /// Reads the next entry, and notes in `played` what there was to say of it.
  Step _next(RecordingReader& reader, boost::optional<RecordingEntry>& entry, Played& played)
  {
    Step step = Step::End;
    try
    {
      entry = reader.next();
      if (entry)
        step = Step::Taken;
    }
    catch (const BadLine& error)
    {
      if (_options.skipBad)
        step = Step::Skipped;
      if (step != Step::Skipped)
        played.error = error.what();
      else if (++played.skipped.count == 1)
        played.skipped.first = error.what();
    }
    catch (const RecordingError& error)
    {
      played.error = error.what();
    }
    played.warnings.add(reader.takeWarnings());
    return step;
  }

  void _showDescription(const RecordingReader& reader)
  {
    for (const std::string& line : reader.describe())
      _show(wrapped(line, static_cast<std::size_t>(_surroundings.outputWidth), 2) + "\n");
  }

  void _showWarnings(const FirstFew& warnings)
  {
    for (const std::string& text : warnings.texts())
      _show(_surroundings.style.yellow("warning: " + text) + "\n");
    if (warnings.more() > 0)
      _show(_surroundings.style.yellow("warning: " + counted(warnings.more(), "more warning")) + "\n");
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

  void _noteLibraryWarnings(LibraryLog& log)
  {
    const std::string prefix = _name + ": ";
    for (const std::string& line : log.take())
      _outlets.messages.note(prefix + line);
  }

  ExitStatus _reportBadInput(const Played& played)
  {
    if (played.skipped.count > 0)
      _outlets.messages.note(_name + ": skipped " + counted(played.skipped.count, "bad line") +
                             ", the first: " + played.skipped.first);
    if (played.error.empty())
      return Success;
    _outlets.messages.error(played.error);
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
