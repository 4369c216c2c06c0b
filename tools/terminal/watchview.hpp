#pragma once

#include <skeigiot/session/persontable.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <map>

namespace KV::tools
{

using PersonRows = std::map<std::int32_t, session::PersonRow>;

/// The request of a key in `watch`.
enum class Key
{
  None,  ///< no key was pressed
  Up,
  Down,
  PageUp,
  PageDown,
  First,
  Last,
  Pane,
  Pause,
  Help,
  Quit,
  Other  ///< a key without a meaning, or another size of the terminal
};

/// Returns the request of a key that writes a character.
Key keyOf(char character);

/// The choices of the user of `watch`. Does not depend on a terminal.
class WatchView
{
public:
  /// Does the request of the key; the rows are those on the page.
  void press(Key key, const PersonRows& rows);

  bool quits() const { return _quits; }
  bool isPaused() const { return _isPaused; }
  bool showsHelp() const { return _showsHelp; }
  bool showsPane() const { return _showsPane; }

  /// Returns the row of the chosen person: of the first, if nobody was chosen; of the next one, if the chosen one has
  /// no row any more; the end if there are no rows.
  PersonRows::const_iterator chosen(const PersonRows& rows) const;

  /// Returns how many rows to leave out at the top, so that the chosen one is among the `room` rows that are shown.
  std::size_t scroll(const PersonRows& rows, std::size_t room);

private:
  void _choose(std::size_t index, const PersonRows& rows);
  std::size_t _indexOfChosen(const PersonRows& rows) const;

  boost::optional<std::int32_t> _chosen;
  std::size_t _top = 0;
  std::size_t _room = 1;
  bool _quits = false;
  bool _isPaused = false;
  bool _showsHelp = false;
  bool _showsPane = true;
};

}  // namespace KV::tools
