#pragma once

#include <boost/thread/lock_types.hpp>
#include <boost/thread/mutex.hpp>

#include <chrono>
#include <functional>
#include <future>
#include <vector>

namespace support
{

/// Returns whether `action` waits for `mutex`: on another thread, it ends only after the mutex was released. Calls
/// `meanwhile` before that.
///
/// An operation that takes no mutex can seem to wait only if its thread was not scheduled for a moment; an operation
/// that does wait never fails the check.
template <typename Action>
bool waitsFor(
    boost::mutex& mutex, Action action, const std::function<void()>& meanwhile = [] {})
{
  boost::unique_lock<boost::mutex> lock(mutex);
  std::future<void> done = std::async(std::launch::async, action);
  const bool waited = done.wait_for(std::chrono::milliseconds(20)) == std::future_status::timeout;
  meanwhile();
  lock.unlock();
  done.get();
  return waited;
}

/// Returns whether `action`, on another thread, ends while all of these mutexes are held.
template <typename Action>
bool endsDespite(const std::vector<boost::mutex*>& mutexes, Action action)
{
  std::vector<boost::unique_lock<boost::mutex>> locks;
  locks.reserve(mutexes.size());
  for (boost::mutex* mutex : mutexes)
    locks.emplace_back(*mutex);
  std::future<void> done = std::async(std::launch::async, action);
  const bool ended = done.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
  locks.clear();
  done.get();
  return ended;
}

/// Returns whether the mutex is free.
inline bool isFree(boost::mutex& mutex)
{
  return boost::unique_lock<boost::mutex>(mutex, boost::try_to_lock).owns_lock();
}

}  // namespace support
