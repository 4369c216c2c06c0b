#include "replay.hpp"

#include "exports.hpp"
#include "interruption.hpp"
#include "librarylog.hpp"
#include "messages.hpp"
#include "outputstream.hpp"
#include "progressline.hpp"
#include "session.hpp"
#include "summary.hpp"
#include "text.hpp"
#include "timeline.hpp"
#include "timelinetable.hpp"

namespace tools
{

namespace
{

const std::string standardOutput = "-";

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

class Replay
{
public:
  Replay(const ReplayOptions& options, ReplaySurroundings& surroundings)
    : _options(options), _surroundings(surroundings), _messages(surroundings.errors, options.quiet)
  {
    const bool outputIsTaken =
        options.csv == standardOutput || options.jsonl == standardOutput || options.toJsonl == standardOutput;
    _shows = !options.quiet && !outputIsTaken;
    _spans.push_back({"whole recording", Duration(0), boost::none});
    _spans.insert(_spans.end(), options.scopes.begin(), options.scopes.end());
    _openExports();
  }

  ExitStatus all()
  {
    ExitStatus status = Success;
    int number = 0;
    for (const std::string& path : _options.recordings)
    {
      status = graver(status, _one(path, ++number));
      if (_outputClosed && _exports.empty())
        break;
    }
    if (_anyOpened)
      _exports.commit();
    return _outputClosed ? Failure : status;
  }

private:
  void _openExports()
  {
    if (!_options.csv.empty())
      _exports.addCsv(_options.csv);
    if (!_options.jsonl.empty())
      _exports.addJsonl(_options.jsonl);
    if (!_options.toJsonl.empty())
      _exports.addRecording(_options.toJsonl);
  }

  ExitStatus _one(const std::string& path, int number)
  {
    _show((number > 1 ? "\n" : "") + _surroundings.style.bold(path) + "\n");
    try
    {
      const std::unique_ptr<RecordingReader> reader = _surroundings.open(path);
      _anyOpened = true;
      _exports.beginRecording(number);
      return _replay(path, *reader);
    }
    catch (const RecordingError& error)
    {
      Interruption::check();  // opening may fail for that reason alone
      _messages.error(error.what());
      return BadInput;
    }
  }

  ExitStatus _replay(const std::string& path, RecordingReader& reader)
  {
    Timeline timeline(_options.step);
    Summary summary;
    std::vector<SessionObserver*> observers = _exports.observers();
    observers.push_back(&timeline);
    observers.push_back(&summary);
    Session session(_spans, observers);
    LibraryLog log;

    const Played played = _play(reader, session);
    session.finish();
    summary.finish();

    _showWarnings(played.warnings);
    _showPersons(timeline, summary);
    _noteLibraryWarnings(path, log);
    return _reportBadInput(path, played);
  }

  Played _play(RecordingReader& reader, Session& session)
  {
    ProgressLine progress(_surroundings.errors, _surroundings.showProgress && !_options.quiet);
    Played played;
    boost::optional<RecordingEntry> entry;
    bool described = false;
    for (;;)
    {
      const Step step = _next(reader, entry, played);
      Interruption::check();
      if (!described)
        _showDescription(reader);  // what was found out with the first step is in it
      described = true;

      if (step == Step::End)
        return played;
      if (step == Step::Taken)
      {
        _exports.write(*entry);
        session.play(*entry);
      }
      if (progress.isDue())
        progress.show(reader.progress(), session.length());
    }
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

  void _noteLibraryWarnings(const std::string& path, LibraryLog& log)
  {
    const std::string prefix = path + ": ";
    for (const std::string& line : log.take())
      _messages.note(prefix + line);
  }

  ExitStatus _reportBadInput(const std::string& path, const Played& played)
  {
    if (played.skipped.count > 0)
      _messages.note(path + ": skipped " + counted(played.skipped.count, "bad line") +
                     ", the first: " + played.skipped.first);
    if (played.error.empty())
      return Success;
    _messages.error(played.error);
    return BadInput;
  }

  /// Writes for people; when they have gone away, nothing is written any more, but exports go on.
  void _show(const std::string& text)
  {
    if (!_shows || _outputClosed)
      return;
    try
    {
      _surroundings.output << text << std::flush;
    }
    catch (const WriteError& error)
    {
      if (!error.pipeClosed())
        throw;
      _outputClosed = true;
    }
  }

  const ReplayOptions& _options;
  ReplaySurroundings& _surroundings;
  Messages _messages;
  Exports _exports;
  std::vector<ScopeSpan> _spans;
  bool _shows = true;
  bool _outputClosed = false;
  bool _anyOpened = false;
};

}  // namespace

ExitStatus replay(const ReplayOptions& options, ReplaySurroundings& surroundings)
{
  return Replay(options, surroundings).all();
}

}  // namespace tools
