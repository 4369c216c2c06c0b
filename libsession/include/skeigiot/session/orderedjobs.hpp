#pragma once

#include <skeigiot/api.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace KV::session
{

/// Does numbered pieces of work on several threads, and hands out their results in the order of the numbers.
template <typename Result>
class SKEIGIOT_API OrderedJobs
{
public:
  /// A working thread reads it now and then, and throws when it is set.
  using Cancelled = std::atomic<bool>;
  /// Does the work of one number. It is called on several threads at once; what it throws, take() throws.
  using Work = std::function<Result(std::size_t number, const Cancelled& cancelled)>;

  /// So many results more than there are threads may wait to be taken: one slow piece of work must not let those
  /// behind it pile up.
  static constexpr std::size_t mostWaiting = 64;

  /// Begins to work on the numbers from 0 to `count` - 1.
  ///
  /// \throws std::exception if there can be no thread at all; fewer than wanted do as well.
  OrderedJobs(std::size_t count, std::size_t threads, Work work) : _count(count), _work(std::move(work)), _done(count)
  {
    const std::size_t wanted = std::min(threads, count);
    _mostAhead = wanted + mostWaiting;
    _threads.reserve(wanted);
    while (_threads.size() < wanted && _addThread())
    {}
  }

  /// Cancels what is not done yet.
  ~OrderedJobs()
  {
    {
      const std::lock_guard<std::mutex> lock(_mutex);
      _cancelled = true;
    }
    _change.notify_all();
    for (std::thread& thread : _threads)
      thread.join();
  }

  OrderedJobs(const OrderedJobs&) = delete;
  OrderedJobs& operator=(const OrderedJobs&) = delete;

  /// Returns the result of the next number, or throws what its work threw; `whileWaiting` is called now and then.
  Result take(const std::function<void()>& whileWaiting)
  {
    std::unique_lock<std::mutex> lock(_mutex);
    const auto isDone = [this] { return _done[_taken].has_value(); };
    while (!_change.wait_for(lock, std::chrono::milliseconds(50), isDone))
    {
      lock.unlock();
      whileWaiting();
      lock.lock();
    }
    Done done = std::move(*_done[_taken]);
    _done[_taken].reset();
    ++_taken;
    lock.unlock();
    _change.notify_all();
    if (done.error)
      std::rethrow_exception(done.error);
    return std::move(*done.result);
  }

private:
  struct Done
  {
    std::optional<Result> result;
    std::exception_ptr error;
  };

  /// Returns whether another thread could be started; throws if it was to be the first.
  bool _addThread()
  {
    try
    {
      _threads.emplace_back([this] { _run(); });
      return true;
    }
    catch (const std::exception&)
    {
      if (_threads.empty())
        throw;
      return false;
    }
  }

  void _run()
  {
    while (const auto number = _nextNumber())
    {
      Done done;
      try
      {
        done.result.emplace(_work(*number, _cancelled));
      }
      catch (...)
      {
        done.error = std::current_exception();
      }
      {
        const std::lock_guard<std::mutex> lock(_mutex);
        _done[*number].emplace(std::move(done));
      }
      _change.notify_all();
    }
  }

  std::optional<std::size_t> _nextNumber()
  {
    std::unique_lock<std::mutex> lock(_mutex);
    _change.wait(lock, [this] { return _cancelled || _begun == _count || _begun < _taken + _mostAhead; });
    if (_cancelled || _begun == _count)
      return {};
    return _begun++;
  }

  const std::size_t _count;
  const Work _work;
  std::size_t _mostAhead = 0;
  Cancelled _cancelled{false};
  std::condition_variable _change;
  std::mutex _mutex;

  // Guarded by _mutex
  std::size_t _begun = 0;
  std::size_t _taken = 0;
  std::vector<std::optional<Done>> _done;  // by number; and not taken. Its room is there from the beginning

  std::vector<std::thread> _threads;  // last: they use all of the above
};

}  // namespace KV::session
