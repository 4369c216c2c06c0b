#include "commands/watch.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/session/librarylog.hpp>
#include <skeigiot/session/livesession.hpp>
#include <skeigiot/session/persontable.hpp>
#include "cli/lineinput.hpp"
#include "cli/livearguments.hpp"
#include "cli/messages.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/waiting.hpp"
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
#include <vector>

namespace KV::tools
{

namespace
{

const char* const description = "Shows a live table of the persons whose observations come in";

const char* const footer =
    R"(Reads the same lines from standard input as 'skeigiot stream', and shows on the terminal, for each person: the
valence from -1 to 1 and the attention from 0 to 1, now and over the last minute, the zone that the person looks at
(left and right being the person's own), and why: the state of pleasure, what moved valence or attention most in the
last update, and the ease of the body language. Persons who were not seen for a minute are left out. q quits; the
table stays when the input has ended.

Examples:
  robot-perception | skeigiot watch
  robot-perception | tee session.jsonl | skeigiot watch)";

constexpr std::chrono::milliseconds shortestPause(100);  // between two pages
constexpr std::chrono::milliseconds longestPause(1000);  // ages are shown in seconds

using SteadyClock = std::chrono::steady_clock;

struct Arguments
{
  session::StreamTimes times = session::StreamTimes::Arrival;
  session::Cycle cycle;
};

class Watch
{
public:
  explicit Watch(const Arguments& arguments)
    : _session(arguments.times, wallClock, {&_table}, arguments.cycle),
      _screen(useColors(ColorChoice::Auto, STDERR_FILENO))
  {}

  void run()
  {
    _show();
    while (!_wantsToQuit)
    {
      _waitForSomething();
      if (SteadyClock::now() >= _nextPage)
        _show();
    }
  }

  /// Returns a line about the readings that were left out, empty if there were none.
  std::string takeLeftOut() { return _session.takeLeftOut(); }

private:
  void _waitForSomething()
  {
    std::vector<pollfd> descriptors{{_screen.fileDescriptor(), POLLIN, 0}};
    if (!_status.ended)
      descriptors.push_back({STDIN_FILENO, POLLIN, 0});
    const auto pause = std::chrono::ceil<std::chrono::milliseconds>(_nextPage - SteadyClock::now());
    waitFor(descriptors, std::max(0, static_cast<int>(pause.count())));

    if (!_status.ended && descriptors.back().revents != 0)
      _takeInput();
    _takeKeys((descriptors.front().revents & (POLLHUP | POLLERR)) != 0);
  }

  void _takeKeys(bool terminalIsGone)
  {
    _wantsToQuit = terminalIsGone;
    for (int key = _screen.key(); key != 0; key = _screen.key())
    {
      _wantsToQuit = _wantsToQuit || key == 'q' || key == 'Q';
      _nextPage = SteadyClock::now();  // the key may be a new size
    }
  }

  void _takeInput()
  {
    _status.ended = !_input.readFrom(STDIN_FILENO);
    std::string_view line;
    for (auto kind = _input.take(line); kind != LineInput::Line::NotYetHere; kind = _input.take(line))
    {
      ++_status.lines;
      if (kind == LineInput::Line::TooLong)
        _refuse("is too long");
      else
        _take(line);
    }
    _nextPage = std::min(_nextPage, _lastPage + shortestPause);
  }

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

  void _show()
  {
    const session::TimePoint now = _session.present();
    _table.removeOld(now);
    _screen.show(watchPage(_table, _status, now, _screen.width(), _screen.height()));
    _lastPage = SteadyClock::now();
    _nextPage = _lastPage + longestPause;
  }

  session::PersonTable _table;
  session::LiveSession _session;
  session::LibraryLog _log;  // nothing else may write on the terminal
  LineInput _input{recordings::InputFile::longestLine};
  InputStatus _status;
  Screen _screen;
  SteadyClock::time_point _lastPage;
  SteadyClock::time_point _nextPage;
  bool _wantsToQuit = false;
};

/// Returns a line about the readings that were left out, empty if there were none; by then the terminal is as before.
std::string watch(const Arguments& arguments)
{
  Watch watch(arguments);
  watch.run();
  return watch.takeLeftOut();
}

ExitStatus run(const Arguments& arguments)
{
  if (isTerminal(STDIN_FILENO))
  {
    Messages(std::cerr, false).error("expected observations on standard input; try 'skeigiot watch --help'");
    return BadInput;
  }
  const std::string leftOut = watch(arguments);
  if (!leftOut.empty())
    Messages(std::cerr, false).note("warning: " + leftOut);
  return Success;
}

}  // namespace

void addWatchCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("watch", description);
  addTimesOption(command, arguments->times);
  addCycleOption(command, arguments->cycle);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace KV::tools
