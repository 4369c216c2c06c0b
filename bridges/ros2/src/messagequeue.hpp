#pragma once

#include <skeigiot/ros2/bus.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

namespace KV::ros2
{

/// The messages between the threads of DDS, which add, and the one that takes them. Of too many, the newest are kept.
///
/// \par Thread safety
///   Each function takes the queue's mutex. The clock is called while it is held, so the times of messages rise in
///   their order.
class MessageQueue
{
public:
  MessageQueue(std::size_t mostMessages, std::size_t mostBytes, Bus::Clock clock);

  /// Adds a message, sets the time at which it came in, and drops the oldest messages of too many.
  void add(BusMessage message);

  /// Takes all messages, the oldest first.
  std::vector<BusMessage> takeAll();

  std::uint64_t added() const;
  std::uint64_t dropped() const;
  std::size_t size() const;

private:
  const std::size_t _mostMessages;
  const std::size_t _mostBytes;
  mutable std::mutex _mutex;

  // Guarded by _mutex
  Bus::Clock _clock;
  std::deque<BusMessage> _messages;
  std::size_t _bytes = 0;
  std::uint64_t _added = 0;
  std::uint64_t _dropped = 0;
};

}  // namespace KV::ros2
