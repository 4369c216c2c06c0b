#pragma once

#include <ko/api.hpp>

#include <boost/chrono/duration.hpp>
#include <boost/chrono/time_point.hpp>

#include <atomic>
#include <cstdint>

namespace ko
{

class ClockSource;

namespace detail
{

/// The clock that SystemClock::now() reads on one thread; both null for the wall clock.
struct ThreadClock
{
  const std::atomic<std::int64_t>* ticks;  // of a ManualClock, which is so common in replays that it is read in place
  ClockSource* source;
};

/// Of the calling thread. In static storage of the thread, without a constructor: a look-up is one load.
extern KO_API __thread ThreadClock threadClock __attribute__((tls_model("initial-exec")));

}  // namespace detail

/// The clock of the middleware: a Boost.Chrono clock over signed 64-bit nanoseconds since the Unix epoch.
///
/// Every age in the system is "now minus a time stamp" on this clock. Without a ScopedClockSource on the calling
/// thread it is the machine's wall clock, which may be stepped or slewed by the system. Between two readings of the
/// system's clock, at most a millisecond apart, the wall clock counts on with the processor's time-stamp counter where
/// the kernel itself relies on that; it is then never more than 1 us off, and shows a step a millisecond late at most.
class KO_API SystemClock
{
public:
  using duration = boost::chrono::nanoseconds;                          ///< signed, of 64 bits
  using rep = duration::rep;                                            ///< the count of a duration
  using period = duration::period;                                      ///< a nanosecond
  using time_point = boost::chrono::time_point<SystemClock, duration>;  ///< [ns] since 1970-01-01T00:00:00Z
  static constexpr bool is_steady = false;                              ///< the wall clock may be set back

  /// Returns the time of the innermost ScopedClockSource of this thread, or of the wall clock without one.
  ///
  /// \throws whatever the clock source throws; the wall clock throws nothing.
  /// \par Thread safety
  ///   Safe from any thread; takes no lock.
  static time_point now()
  {
    if (const std::atomic<std::int64_t>* const ticks = detail::threadClock.ticks)
      return time_point(duration(ticks->load(std::memory_order_acquire)));
    return _nowElsewhere();
  }

private:
  static time_point _nowElsewhere();  // of a source other than a ManualClock, or of the wall clock
};

/// Where SystemClock::now() may take the time from, see ScopedClockSource.
class KO_API ClockSource
{
public:
  ClockSource() = default;
  ClockSource(const ClockSource&) = delete;
  ClockSource& operator=(const ClockSource&) = delete;
  virtual ~ClockSource();

  /// Returns the current time of this source.
  virtual SystemClock::time_point now() = 0;
};

/// A clock that moves only when the program moves it: for replays and tests.
///
/// \par Thread safety
///   All operations may be called from several threads at once.
class KO_API ManualClock : public ClockSource
{
public:
  /// Makes a clock that shows `start`.
  explicit ManualClock(SystemClock::time_point start);

  /// Returns the time last set.
  SystemClock::time_point now() override;

  /// Moves the clock to `time`, forwards or backwards.
  void set(SystemClock::time_point time);

  /// Moves the clock on by `step` (backwards if negative).
  void advance(boost::chrono::nanoseconds step);

private:
  friend class ScopedClockSource;

  std::atomic<std::int64_t> _ticks;  // nanoseconds since the Unix epoch
};

/// Reads the clock of the thread that made it, again and again: what SystemClock::now() gives, with the look at what is
/// to be read taken once. To be dropped before a ScopedClockSource begins or ends on the thread.
class ClockReader
{
public:
  /// Returns what SystemClock::now() returns.
  SystemClock::time_point now() const
  {
    if (_ticks)
      return SystemClock::time_point(SystemClock::duration(_ticks->load(std::memory_order_acquire)));
    return SystemClock::now();
  }

private:
  const std::atomic<std::int64_t>* const _ticks = detail::threadClock.ticks;
};

/// While it lives, SystemClock::now() on the thread that made it reads the given source; other threads are unaffected.
///
/// Scopes nest: the innermost one counts, and its end brings the one around it back. Destroy a scope on the thread that
/// made it, in reverse order of making. The source must outlive the scope.
class KO_API ScopedClockSource
{
public:
  /// Lets this thread read `source`, which is not owned.
  explicit ScopedClockSource(ClockSource& source);
  ~ScopedClockSource();
  ScopedClockSource(const ScopedClockSource&) = delete;
  ScopedClockSource& operator=(const ScopedClockSource&) = delete;

private:
  detail::ThreadClock _outer;  // what this thread read before
};

}  // namespace ko
