#pragma once

#include <chrono>

namespace KV::ros2
{

/// Decides when to connect again: at once, and after each failure later than before. A connection that lasted makes the
/// waiting short again.
///
/// Not synchronised.
class Reconnection
{
public:
  using TimePoint = std::chrono::steady_clock::time_point;

  static constexpr std::chrono::seconds shortestWait{1};
  static constexpr std::chrono::seconds longestWait{30};
  static constexpr std::chrono::seconds lasting{10};  ///< a connection that is as old makes the waiting short again

  /// Returns whether it is time to connect.
  bool isDue(TimePoint now) const { return now >= _next; }

  /// The connection is there.
  void connected(TimePoint now);

  /// The connection is lost, or could not be made. Returns how long to wait.
  std::chrono::seconds lost(TimePoint now);

private:
  TimePoint _next = TimePoint::min();
  TimePoint _since = TimePoint::max();  // of the connection; the greatest time without one
  std::chrono::seconds _wait = shortestWait;
};

}  // namespace KV::ros2
