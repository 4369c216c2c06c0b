#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <string>

namespace KV::tools
{

/// The outcome of an order.
struct OrderAnswer
{
  /// Returns whether the order was done.
  bool isDone() const { return status == 200; }

  int status = 200;  ///< of HTTP
  std::string text;  ///< why it is refused, or the answer; empty if it was done and there is nothing to say
};

/// Lets any thread have something done by the one thread that owns the live session.
class Orders
{
public:
  using Order = std::function<OrderAnswer()>;

  Orders();
  ~Orders();
  Orders(const Orders&) = delete;
  Orders& operator=(const Orders&) = delete;

  /// Has the order done, and waits for that; an order that is not done in that time is refused, and may be done later.
  ///
  /// Takes 16 orders at a time; more are refused.
  OrderAnswer submit(Order order, std::chrono::milliseconds patience = std::chrono::seconds(5));

  /// Returns a descriptor that can be read when there are orders.
  int descriptor() const { return _descriptor; }

  /// Refuses the orders that wait, and all that come from now on.
  void close();

  /// Does the orders; called by the thread that owns the session.
  void doAll();

private:
  using Task = std::packaged_task<OrderAnswer()>;

  int _descriptor = -1;
  std::mutex _mutex;

  // Guarded by _mutex
  std::deque<Task> _tasks;
  bool _closed = false;
};

}  // namespace KV::tools
