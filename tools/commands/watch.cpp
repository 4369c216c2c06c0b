#include "commands/watch.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/session/librarylog.hpp>
#include <skeigiot/session/livesession.hpp>
#include <skeigiot/session/persontable.hpp>
#include "cli/argumentparsing.hpp"
#include "cli/lineinput.hpp"
#include "cli/livearguments.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/waiting.hpp"
#include "commands/playback.hpp"
#include "terminal/screen.hpp"
#include "terminal/terminal.hpp"
#include "terminal/watchpage.hpp"

// CLI11 counts on all of its headers being included in order.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const description = "Shows live estimates of all persons in a table";

const char* const footer =
    R"(Reads the same lines from standard input as 'skeigiot stream'. The table has a row for each person. It has the valence
from -1 to 1 and the attention from 0 to 1, each with its confidence and, on a wide terminal, the last minute. The
column "zone" says where the person looks; left and right are the person's own. The column "why" has the pleasure
state, the source that moved valence or attention most in the last update, and the ease of the body language. The pane
below the table has the forces and readings of the chosen person. Persons who were not seen for a minute are left out.

A RECORDING, of any format, is played in real time. Times and rate are those of the recording.

Keys: up and down choose a person, enter shows or hides the pane, space pauses, ? shows help, q quits. The table stays
after the end of the input.

Examples:
  robot-perception | skeigiot watch
  robot-perception | tee session.jsonl | skeigiot watch
  skeigiot watch face.csv --speed 2)";

constexpr std::chrono::milliseconds shortestPause(100);  // between two pages
constexpr std::chrono::milliseconds longestPause(1000);  // ages are shown in seconds
constexpr std::size_t mostLinesAtOnce = 1000;            // keys are looked after in between

using SteadyClock = std::chrono::steady_clock;

struct Arguments
{
  session::StreamTimes times = session::StreamTimes::Arrival;
  session::Cycle cycle;
  session::SessionArguments recording;
  ReadingArguments reading;
  double speed = 1.;
};

/// Where the persons come from.
class Source
{
public:
  Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  virtual ~Source() = default;

  /// Returns what to wait on, and until when.
  virtual std::vector<pollfd> descriptors() const = 0;
  virtual SteadyClock::time_point due() const = 0;

  /// Takes what has come in by now; returns whether that was anything.
  virtual bool take(bool canBeRead) = 0;

  virtual void pause(bool) {}
  virtual session::TimePoint present() const = 0;
  virtual InputStatus status() const = 0;

  /// Returns what there is to say at the end.
  virtual std::vector<std::string> takeNotes() = 0;
};

/// Lines of standard input. They are taken also while the page pauses, so that their sender need not wait.
class Lines : public Source
{
public:
  Lines(const Arguments& arguments, session::PersonTable& table)
    : _table(table), _session(arguments.times, wallClock, {&table}, arguments.cycle)
  {}

  std::vector<pollfd> descriptors() const override
  {
    return _status.ended ? std::vector<pollfd>() : std::vector<pollfd>{{STDIN_FILENO, POLLIN, 0}};
  }
  SteadyClock::time_point due() const override
  {
    return _hasMore ? SteadyClock::time_point() : SteadyClock::time_point::max();
  }

  bool take(bool canBeRead) override
  {
    if (canBeRead && !_hasMore)
      _status.ended = !_input.readFrom(STDIN_FILENO);
    const bool hasEnded = canBeRead && _status.ended;
    std::string_view line;
    for (std::size_t i = 0; i < mostLinesAtOnce; ++i)
    {
      const auto kind = _input.take(line);
      _hasMore = kind != LineInput::Line::NotYetHere;
      if (!_hasMore)
        return i > 0 || hasEnded;
      ++_status.lines;
      if (kind == LineInput::Line::TooLong)
        _refuse("is too long");
      else
        _take(line);
    }
    return true;
  }

  session::TimePoint present() const override { return _session.present(); }
  InputStatus status() const override { return _status; }
  std::vector<std::string> takeNotes() override
  {
    std::string leftOut = _session.takeLeftOut();
    return leftOut.empty() ? std::vector<std::string>() : std::vector<std::string>{std::move(leftOut)};
  }

private:
  void _take(std::string_view line)
  {
    try
    {
      for (const std::int32_t person : _session.take(line))
        _table.remove(person);
    }
    catch (const recordings::MemberError& error)
    {
      _refuse((error.member().empty() ? "" : error.member() + ": ") + error.what());
    }
  }

  void _refuse(const std::string& message)
  {
    ++_status.refused;
    _status.lastError = "line " + std::to_string(_status.lines) + ": " + message;
  }

  session::PersonTable& _table;
  session::LiveSession _session;
  LineInput _input{recordings::InputFile::longestLine};
  InputStatus _status;
  bool _hasMore = false;
};

/// A recording that is played.
class Recording : public Source
{
public:
  Recording(std::unique_ptr<recordings::Reader> reader, std::string name, const Arguments& arguments,
            session::PersonTable& table)
    : _name(std::move(name)),
      _speed(arguments.speed),
      _playback(std::move(reader), arguments.speed, {&table}, arguments.cycle, SteadyClock::now())
  {}

  std::vector<pollfd> descriptors() const override { return {}; }
  SteadyClock::time_point due() const override { return _playback.due(); }
  bool take(bool) override
  {
    const bool isDue = due() <= SteadyClock::now();
    _playback.play(SteadyClock::now());
    return isDue;
  }
  void pause(bool paused) override
  {
    if (paused)
      _playback.pause(SteadyClock::now());
    else
      _playback.resume(SteadyClock::now());
  }
  session::TimePoint present() const override { return _playback.at(SteadyClock::now()); }
  InputStatus status() const override
  {
    InputStatus status;
    status.name = _name;
    status.speed = _speed;
    status.reached = _playback.reached(SteadyClock::now());
    status.lines = _playback.steps();
    status.refused = _playback.badLines();
    status.lastError = _playback.lastError();
    status.ended = _playback.ended();
    return status;
  }
  std::vector<std::string> takeNotes() override { return _playback.takeNotes(); }

private:
  std::string _name;
  double _speed;
  Playback _playback;
};

/// What the page shows while it pauses.
struct Frozen
{
  PersonRows rows;
  InputStatus status;
  session::TimePoint now;
};

class Watch
{
public:
  Watch(Source& source, session::PersonTable& table)
    : _source(source), _table(table), _screen(useColors(ColorChoice::Auto, STDERR_FILENO))
  {}

  void run()
  {
    _show();
    while (!_view.quits() && !_terminalIsGone)
    {
      _waitForSomething();
      if (SteadyClock::now() >= _nextPage)
        _show();
    }
  }

private:
  void _waitForSomething()
  {
    std::vector<pollfd> descriptors{{_screen.fileDescriptor(), POLLIN, 0}};
    for (const pollfd& descriptor : _source.descriptors())
      descriptors.push_back(descriptor);
    const auto until = std::min(_nextPage, _source.due());
    const auto pause = until > SteadyClock::now()
                           ? std::chrono::ceil<std::chrono::milliseconds>(until - SteadyClock::now())
                           : std::chrono::milliseconds(0);
    waitFor(descriptors, static_cast<int>(pause.count()));

    if (_source.take(descriptors.size() > 1 && descriptors.back().revents != 0))
      _nextPage = std::min(_nextPage, _lastPage + shortestPause);
    _terminalIsGone = (descriptors.front().revents & (POLLHUP | POLLERR)) != 0;
    _takeKeys();
  }

  void _takeKeys()
  {
    for (Key key = _screen.key(); key != Key::None; key = _screen.key())
    {
      _view.press(key, _frozen ? _frozen->rows : _table.rows());
      _nextPage = SteadyClock::now();  // the key may be a new size
      if (_view.isPaused() != _frozen.has_value())
        _pause(_view.isPaused());
    }
  }

  void _pause(bool paused)
  {
    _source.pause(paused);
    _frozen = boost::none;
    if (paused)
      _frozen = Frozen{_table.rows(), _source.status(), _source.present()};
  }

  void _show()
  {
    const session::TimePoint now = _source.present();
    _table.removeOld(now);
    const InputStatus status = _source.status();
    const WatchContents contents = _frozen ? WatchContents{_frozen->rows, _frozen->status, _frozen->now}
                                           : WatchContents{_table.rows(), status, now};
    _screen.show(watchPage(contents, _view, _screen.width(), _screen.height()));
    _lastPage = SteadyClock::now();
    _nextPage = _lastPage + longestPause;
  }

  Source& _source;
  session::PersonTable& _table;
  WatchView _view;
  boost::optional<Frozen> _frozen;
  Screen _screen;
  SteadyClock::time_point _lastPage;
  SteadyClock::time_point _nextPage;
  bool _terminalIsGone = false;
};

/// \throws Error if the recording cannot be opened.
/// \throws CLI::ValidationError if there is not exactly one.
std::unique_ptr<Source> sourceOf(const Arguments& arguments, session::PersonTable& table)
{
  if (arguments.recording.paths.empty())
    return std::make_unique<Lines>(arguments, table);
  const session::SessionPlan plan = planNamedSessions(arguments.recording);
  if (plan.sessions.size() > 1)
    throw CLI::ValidationError("RECORDING", "there are several in the folder: name one of them");
  const session::SessionInputs& inputs = plan.sessions.front();
  return std::make_unique<Recording>(session::openSession(inputs, openerOf(arguments.reading)), inputs.name(),
                                     arguments, table);
}

/// Returns what there is to say at the end; by then the terminal is as before.
std::vector<std::string> watch(const Arguments& arguments)
{
  session::PersonTable table;
  const session::LibraryLog log;  // nothing else may write on the terminal
  const std::unique_ptr<Source> source = sourceOf(arguments, table);
  Watch(*source, table).run();
  return source->takeNotes();
}

ExitStatus run(Arguments& arguments)
{
  Messages messages(std::cerr, false);
  if (arguments.recording.paths.empty() && isTerminal(STDIN_FILENO))
  {
    messages.error("expected observations on standard input, or a recording; try 'skeigiot watch --help'");
    return BadInput;
  }
  try
  {
    arguments.recording.format = arguments.reading.format;
    for (const std::string& note : watch(arguments))
      messages.note("warning: " + note);
    return Success;
  }
  catch (const recordings::Error& error)
  {
    messages.error(messageOf(error));
    return BadInput;
  }
}

}  // namespace

void addWatchCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("watch", description);
  CLI::Option* const recording = command
                                     .add_option("RECORDING", arguments->recording.paths,
                                                 "Inputs of one session to play, instead of standard input")
                                     ->type_name("");
  addNumber(
      command, "--speed", "Speed of playing: 2 is twice as fast as recorded (1)", "FACTOR",
      "a number from 0.01 to 1000", [](double speed) { return speed >= 0.01 && speed <= 1000.; },
      [arguments = arguments.get()](double speed) { arguments->speed = speed; })
      ->needs(recording);
  addOffsetOption(command, arguments->recording.offsets);
  addTimesOption(command, arguments->times)->excludes(recording);
  addCycleOption(command, arguments->cycle);
  addReadingOptions(command, arguments->reading);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace KV::tools
