#include "terminal/watchview.hpp"

#include <algorithm>
#include <iterator>

namespace KV::tools
{

Key keyOf(char character)
{
  switch (character)
  {
    case 'k':
      return Key::Up;
    case 'j':
      return Key::Down;
    case 'g':
      return Key::First;
    case 'G':
      return Key::Last;
    case '\n':
    case '\r':
      return Key::Pane;
    case ' ':
    case 'p':
      return Key::Pause;
    case '?':
    case 'h':
      return Key::Help;
    case 'q':
    case 'Q':
      return Key::Quit;
    default:
      return Key::Other;
  }
}

void WatchView::press(Key key, const PersonRows& rows)
{
  const std::size_t index = _indexOfChosen(rows);
  switch (key)
  {
    case Key::Up:
      return _choose(index - std::min<std::size_t>(index, 1), rows);
    case Key::Down:
      return _choose(index + 1, rows);
    case Key::PageUp:
      return _choose(index - std::min(index, _room), rows);
    case Key::PageDown:
      return _choose(index + _room, rows);
    case Key::First:
      return _choose(0, rows);
    case Key::Last:
      return _choose(rows.size(), rows);
    case Key::Pane:
      _showsPane = !_showsPane;
      return;
    case Key::Pause:
      _isPaused = !_isPaused;
      return;
    case Key::Help:
      _showsHelp = !_showsHelp;
      return;
    case Key::Quit:
      _quits = true;
      return;
    case Key::None:
    case Key::Other:
      return;
  }
}

PersonRows::const_iterator WatchView::chosen(const PersonRows& rows) const
{
  if (!_chosen || rows.empty())
    return rows.begin();
  const auto row = rows.lower_bound(*_chosen);
  return row == rows.end() ? std::prev(row) : row;
}

std::size_t WatchView::scroll(const PersonRows& rows, std::size_t room)
{
  _room = std::max<std::size_t>(room, 1);
  const std::size_t index = _indexOfChosen(rows);
  const std::size_t most = rows.size() - std::min(rows.size(), _room);
  const std::size_t least = index + 1 - std::min(index + 1, _room);
  _top = std::min(std::clamp(_top, least, std::max(least, index)), most);
  return _top;
}

void WatchView::_choose(std::size_t index, const PersonRows& rows)
{
  _showsHelp = false;
  if (rows.empty())
    return;
  _chosen = std::next(rows.begin(), static_cast<std::ptrdiff_t>(std::min(index, rows.size() - 1)))->first;
}

std::size_t WatchView::_indexOfChosen(const PersonRows& rows) const
{
  return static_cast<std::size_t>(std::distance(rows.begin(), chosen(rows)));
}

}  // namespace KV::tools
