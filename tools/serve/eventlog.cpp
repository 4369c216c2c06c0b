#include "serve/eventlog.hpp"

#include <algorithm>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t mostAtOnce = 200;
constexpr std::size_t enoughBytesAtOnce = 256 << 10;  // a client has its own copies of them

}  // namespace

void EventLog::setFacts(std::string facts)
{
  auto text = std::make_shared<const std::string>(std::move(facts));
  const std::lock_guard lock(_mutex);
  _facts = std::move(text);
}

void EventLog::publish(std::string text, Clock::time_point now)
{
  auto shared = std::make_shared<const std::string>(std::move(text));
  {
    const std::lock_guard lock(_mutex);
    _bytes += shared->size();
    _events.push_back({now, std::move(shared)});
    while (_events.size() > 1 && (_bytes > _limits.bytes || now - _events.front().time > _limits.age))
    {
      _bytes -= _events.front().text->size();
      _events.pop_front();
      ++_first;
    }
  }
  _changed.notify_all();
}

void EventLog::close()
{
  {
    const std::lock_guard lock(_mutex);
    _closed = true;
  }
  _changed.notify_all();
}

EventLog::Text EventLog::facts() const
{
  const std::lock_guard lock(_mutex);
  return _facts;
}

std::uint64_t EventLog::first() const
{
  const std::lock_guard lock(_mutex);
  return _first;
}

EventLog::Read EventLog::read(std::uint64_t from, std::chrono::milliseconds patience) const
{
  std::unique_lock lock(_mutex);
  _changed.wait_for(lock, patience, [&] { return _closed || _first + _events.size() > from; });
  Read read;
  read.closed = _closed;
  read.tooSlow = from < _first;
  if (read.tooSlow)
    return read;
  const std::size_t begin = static_cast<std::size_t>(from - _first);
  std::size_t bytes = 0;
  for (std::size_t i = begin; i < std::min(_events.size(), begin + mostAtOnce) && bytes < enoughBytesAtOnce; ++i)
  {
    read.events.push_back({_first + i, _events[i].text});
    bytes += _events[i].text->size();
  }
  return read;
}

}  // namespace KV::tools
