#include "serve/orders.hpp"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <system_error>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t mostOrders = 16;
constexpr int busy = 503;

}  // namespace

Orders::Orders() : _descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
  if (_descriptor < 0)
    throw std::system_error(errno, std::generic_category(), "eventfd");
}

Orders::~Orders()
{
  ::close(_descriptor);
}

OrderAnswer Orders::submit(Order order, std::chrono::milliseconds patience)
{
  std::future<OrderAnswer> answer;
  {
    const std::lock_guard lock(_mutex);
    if (_closed)
      return {busy, "the session ends"};
    if (_tasks.size() >= mostOrders)
      return {busy, "too many orders wait"};
    answer = _tasks.emplace_back(std::move(order)).get_future();
  }
  eventfd_write(_descriptor, 1);
  if (answer.wait_for(patience) != std::future_status::ready)
    return {busy, "the session is busy"};
  try
  {
    return answer.get();
  }
  catch (const std::future_error&)  // the order was dropped
  {
    return {busy, "the session ends"};
  }
}

void Orders::close()
{
  std::deque<Task> dropped;
  const std::lock_guard lock(_mutex);
  _closed = true;
  dropped.swap(_tasks);
}

void Orders::doAll()
{
  eventfd_t count = 0;
  eventfd_read(_descriptor, &count);
  for (;;)
  {
    Task task;
    {
      const std::lock_guard lock(_mutex);
      if (_tasks.empty())
        return;
      task = std::move(_tasks.front());
      _tasks.pop_front();
    }
    task();
  }
}

}  // namespace KV::tools
