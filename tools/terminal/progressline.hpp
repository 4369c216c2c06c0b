#pragma once

#include <skeigiot/session/snapshot.hpp>

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>

namespace KV::tools
{

/// One line in a terminal that shows the progress of the replay, and is erased at the end.
class ProgressLine
{
public:
  using Clock = std::chrono::steady_clock;

  /// Makes a line on the stream, which must outlive it; a line that is not shown writes nothing.
  ///
  /// The line is drawn after each interval, for the first time after the first: shorter work needs no progress.
  ProgressLine(std::ostream& stream, bool shown, Clock::duration interval = std::chrono::milliseconds(150));

  /// Erases the line.
  ~ProgressLine() { erase(); }

  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Returns whether the line is due to be drawn again.
  bool isDue() const { return _shown && Clock::now() >= _next; }

  /// Shows a share in [0, 1], and the time reached in the recording.
  void show(double share, session::Duration reached);

  /// Shows how many of several recordings are complete.
  void showCount(std::size_t done, std::size_t all);

  /// Shows how many of several sessions are complete, and how long the rest will take if the share in [0, 1] that is
  /// done goes on growing as it did.
  void showSessions(std::size_t done, std::size_t all, double share);

  /// Removes the line, so that other text can be written.
  void erase();

private:
  void _show(double share, const std::string& text);

  std::ostream& _stream;
  bool _shown;
  Clock::duration _interval;
  Clock::time_point _begin;
  Clock::time_point _next;
  bool _onScreen = false;
};

}  // namespace KV::tools
