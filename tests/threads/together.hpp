#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <vector>

namespace threads
{

/// Lets threads continue once all of them have come.
class StartLine
{
public:
  explicit StartLine(int count) : _missing(count) {}

  void comeAndWait()
  {
    std::unique_lock<std::mutex> lock(_mutex);
    if (--_missing == 0)
      _allThere.notify_all();
    _allThere.wait(lock, [this] { return _missing <= 0; });
  }

private:
  std::mutex _mutex;
  std::condition_variable _allThere;
  int _missing;  // guarded by _mutex
};

/// Calls each action `rounds` times, with the number of the round, on a thread of its own; all begin together.
///
/// Returns when all are done.
template <typename... Actions>
void runTogether(int rounds, Actions... actions)
{
  StartLine line(static_cast<int>(sizeof...(actions)));
  std::vector<std::thread> running;
  const auto start = [&](auto action) {
    running.emplace_back([&line, rounds, action] {
      line.comeAndWait();
      for (int round = 0; round < rounds; ++round)
        action(round);
    });
  };
  (start(actions), ...);
  for (std::thread& thread : running)
    thread.join();
}

/// As above, for one action on `count` threads, which also gets the thread's number: action(thread, round).
template <typename Action>
void runOnThreads(int count, int rounds, Action action)
{
  StartLine line(count);
  std::vector<std::thread> running;
  for (int thread = 0; thread < count; ++thread)
    running.emplace_back([&line, rounds, action, thread] {
      line.comeAndWait();
      for (int round = 0; round < rounds; ++round)
        action(thread, round);
    });
  for (std::thread& thread : running)
    thread.join();
}

}  // namespace threads
