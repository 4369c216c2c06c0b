#pragma once

#include <skeigiot/session/snapshot.hpp>

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>

namespace KV::tools
{

/// One line in a terminal that says how far the replay is, and is erased at the end.
class ProgressLine
{
public:
  using Clock = std::chrono::steady_clock;

  /// Makes a line on the stream, which must outlive it; a line that is not shown writes nothing.
  ///
  /// It is shown anew after each interval, and for the first time after one: what is done sooner needs no progress.
  ProgressLine(std::ostream& stream, bool shown, Clock::duration interval = std::chrono::milliseconds(150));

  /// Erases the line.
  ~ProgressLine() { erase(); }

  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Tells whether the line is to be shown anew.
  bool isDue() const { return _shown && Clock::now() >= _next; }

  /// Shows a share in [0, 1], and the time reached in the recording.
  void show(double share, session::Duration reached);

  /// Shows how many of several recordings are done.
  void showCount(std::size_t done, std::size_t all);

  /// Takes the line away, so that something else can be written.
  void erase();

private:
  void _show(double share, const std::string& text);

  std::ostream& _stream;
  bool _shown;
  Clock::duration _interval;
  Clock::time_point _next;
  bool _onScreen = false;
};

}  // namespace KV::tools
