#include "commands/livetable.hpp"

#include "cli/waiting.hpp"
#include "terminal/screen.hpp"
#include "terminal/terminal.hpp"
#include "terminal/watchpage.hpp"

#include <boost/optional/optional.hpp>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <vector>

namespace KV::tools
{

namespace
{

constexpr std::chrono::milliseconds shortestPause(100);  // between two pages
constexpr std::chrono::milliseconds longestPause(1000);  // ages are shown in seconds

using SteadyClock = std::chrono::steady_clock;

/// The content of the page while it is paused.
struct Frozen
{
  PersonRows rows;
  InputStatus status;
  session::TimePoint now;
};

/// A table that is on the screen.
class ShownTable
{
public:
  ShownTable(LiveSource& source, session::PersonTable& table)
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
    waitUntil(descriptors, std::min(_nextPage, _source.due()));

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

  LiveSource& _source;
  session::PersonTable& _table;
  WatchView _view;
  boost::optional<Frozen> _frozen;
  Screen _screen;
  SteadyClock::time_point _lastPage;
  SteadyClock::time_point _nextPage;
  bool _terminalIsGone = false;
};

}  // namespace

LiveListeners LiveTable::listeners()
{
  return {{&_table}, [this](std::int32_t person) { _table.remove(person); }};
}

void LiveTable::show(LiveSource& source)
{
  ShownTable(source, _table).run();
}

}  // namespace KV::tools
