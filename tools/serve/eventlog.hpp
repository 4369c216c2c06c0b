#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace KV::tools
{

/// The events of the last minute, for any number of readers that each read at their own pace.
///
/// All readers share one list, so that memory is bounded however many they are. A reader that falls behind so far that
/// the list has lost what it wants to read next is too slow.
///
/// \par Thread safety
///   One thread publishes, any threads read.
class EventLog
{
public:
  using Clock = std::chrono::steady_clock;
  using Text = std::shared_ptr<const std::string>;

  /// How much is kept.
  struct Limits
  {
    std::chrono::seconds age{60};
    std::size_t bytes = std::size_t{16} << 20U;
  };

  /// An event and its number.
  struct Event
  {
    std::uint64_t number = 0;
    Text text;
  };

  /// The answer to a reader.
  struct Read
  {
    std::vector<Event> events;  ///< in their order; none if nothing happened in the time that the reader waits
    bool tooSlow = false;       ///< events are lost that the reader wanted
    bool closed = false;        ///< nothing will come any more
  };

  EventLog() : EventLog(Limits()) {}
  explicit EventLog(const Limits& limits) : _limits(limits) {}

  /// Sets the text that each reader gets first.
  void setFacts(std::string facts);

  /// Adds an event.
  void publish(std::string text, Clock::time_point now);

  /// Lets all readers end.
  void close();

  /// Returns the facts as they are now.
  Text facts() const;

  /// Returns the number of the first event that is kept, or will be the first.
  std::uint64_t first() const;

  /// Waits for events from that number on, and returns those that there are: 200 at most, and none after 256 KiB.
  Read read(std::uint64_t from, std::chrono::milliseconds patience) const;

private:
  struct Kept
  {
    Clock::time_point time;
    Text text;
  };

  const Limits _limits;
  mutable std::mutex _mutex;
  mutable std::condition_variable _changed;

  // Guarded by _mutex
  Text _facts = std::make_shared<const std::string>();
  std::deque<Kept> _events;
  std::uint64_t _first = 1;
  std::size_t _bytes = 0;
  bool _closed = false;
};

}  // namespace KV::tools
