#include "messagequeue.hpp"

#include <iterator>
#include <utility>

namespace KV::ros2
{
namespace
{

std::size_t bytesOf(const BusMessage& message)
{
  return sizeof(message) + message.topic.size() + message.data.size();
}

}  // namespace

MessageQueue::MessageQueue(std::size_t mostMessages, std::size_t mostBytes, Bus::Clock clock)
  : _mostMessages(mostMessages), _mostBytes(mostBytes), _clock(std::move(clock))
{}

void MessageQueue::add(BusMessage message)
{
  const std::lock_guard lock(_mutex);
  message.received = _clock();
  _bytes += bytesOf(message);
  _messages.push_back(std::move(message));
  ++_added;
  while (_messages.size() > _mostMessages || _bytes > _mostBytes)
  {
    _bytes -= bytesOf(_messages.front());
    _messages.pop_front();
    ++_dropped;
  }
}

std::vector<BusMessage> MessageQueue::takeAll()
{
  const std::lock_guard lock(_mutex);
  std::vector<BusMessage> taken(std::make_move_iterator(_messages.begin()), std::make_move_iterator(_messages.end()));
  _messages.clear();
  _bytes = 0;
  return taken;
}

std::uint64_t MessageQueue::added() const
{
  const std::lock_guard lock(_mutex);
  return _added;
}

std::uint64_t MessageQueue::dropped() const
{
  const std::lock_guard lock(_mutex);
  return _dropped;
}

std::size_t MessageQueue::size() const
{
  const std::lock_guard lock(_mutex);
  return _messages.size();
}

}  // namespace KV::ros2
