#include <skeigiot/shorttermmemory.hpp>

#include "age.hpp"

#include <boost/none.hpp>
#include <boost/optional/optional.hpp>
#include <boost/thread/lock_guard.hpp>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <iostream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <utility>

namespace KV
{

namespace
{

/// Returns whether records are too old, each with a clock reading of its own unless the time is given.
class TooOld
{
public:
  explicit TooOld(boost::chrono::milliseconds horizon) : _horizon(horizon.count()), _surelyYoung(ticksOf(_horizon)) {}

  bool operator()(ko::SystemClock::time_point time) const { return at(_clock.now(), time); }

  bool at(ko::SystemClock::time_point now, ko::SystemClock::time_point time) const
  {
    // Nearly all are younger than the horizon: this test needs no division. A time in the future wraps around.
    if (ticksOf(now) - ticksOf(time) < _surelyYoung)
      return false;
    return ageInMs(time, now) > _horizon;
  }

private:
  static std::uint64_t ticksOf(ko::SystemClock::time_point time)
  {
    return static_cast<std::uint64_t>(time.time_since_epoch().count());
  }

  /// 0 where 64 bits cannot hold them.
  static std::uint64_t ticksOf(std::int64_t ms)
  {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() / nanosecondsPerMillisecond;
    return ms > 0 && ms <= most ? static_cast<std::uint64_t>(ms * nanosecondsPerMillisecond) : 0;
  }

  const ko::ClockReader _clock;
  const std::int64_t _horizon;       // [ms]
  const std::uint64_t _surelyYoung;  // [ns] an age below this is not too old
};

/// Brings the records for which `isTooOld` is false to the front, in their order, and returns where they end.
///
/// Swaps instead of moving, so that no record is lost or doubled if `isTooOld` throws; if the records are in order of
/// age, nothing is swapped at all.
template <typename Iterator, typename Predicate>
Iterator keepYoung(Iterator first, Iterator last, Predicate isTooOld)
{
  Iterator kept = std::find_if(first, last, isTooOld);
  if (kept == last)
    return last;
  for (Iterator it = std::next(kept); it != last; ++it)
    if (!isTooOld(*it))
      std::swap(*kept++, *it);
  return kept;
}

/// Returns the time of the ManualClock that the thread reads, if it reads one. A ManualClock cannot count its readings:
/// one reading for all records equals a pass in which no other thread happened to move the clock.
///
/// Deliberate: a class that is derived from ManualClock may count, so it is read for each record, as other clocks are.
boost::optional<ko::SystemClock::time_point> timeOfManualClock()
{
  if (!ko::detail::threadClock.ticks)
    return boost::none;
  return ko::SystemClock::now();
}

/// Returns where the young records end at one time. The records are sorted by time, and so by age: mostly, a look at
/// the last one is enough.
template <typename Iterator>
Iterator endOfYoung(Iterator first, Iterator last, const TooOld& isTooOld, ko::SystemClock::time_point now)
{
  while (last != first && isTooOld.at(now, std::prev(last)->time))
    --last;
  return last;
}

}  // namespace

template <typename T>
ShortTermMemory<T>::ShortTermMemory(boost::chrono::milliseconds horizon) : _horizon(horizon)
{}

template <typename T>
void ShortTermMemory<T>::record(const Timestamped<T>& reading)
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  _records.insert(reading);
  _forgetOld();
}

template <typename T>
Timestamped<T>& ShortTermMemory<T>::youngest()
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  _forgetOld();
  if (_records.empty())
    throw std::range_error("The ShortTermMemory is empty.");
  return *_records.begin();
}

template <typename T>
void ShortTermMemory<T>::_forgetOld()
{
  try
  {
    const TooOld isTooOld(_horizon);
    if (const auto now = timeOfManualClock())
    {
      const auto kept = endOfYoung(_records.begin(), _records.end(), isTooOld, *now);
      if (kept != _records.end())
        _records.erase(kept, _records.end());
      return;
    }
    const auto tooOld = [&isTooOld](const Timestamped<T>& reading) { return isTooOld(reading.time); };
    _records.erase(keepYoung(_records.begin(), _records.end(), tooOld), _records.end());
  }
  catch (const std::exception& error)
  {
    _restoreOrder();
    std::cout << "Error while forgeting old memory: " << error.what() << std::endl;
  }
  catch (...)
  {
    _restoreOrder();
    throw;
  }
}

/// Sorts again after swaps that were left half-way.
template <typename T>
void ShortTermMemory<T>::_restoreOrder()
{
  std::sort(_records.begin(), _records.end(), std::greater<Timestamped<T>>());
}

template <typename T>
bool ShortTermMemory<T>::_isTooOld(const Timestamped<T>& reading) const
{
  return TooOld(_horizon)(reading.time);
}

template class ShortTermMemory<HeadPosture>;
template class ShortTermMemory<float>;
template class ShortTermMemory<bool>;
template class ShortTermMemory<Smile>;
template class ShortTermMemory<Gaze>;
template class ShortTermMemory<Expressions>;
template class ShortTermMemory<ValueConfidence<bool>>;
template class ShortTermMemory<ValueConfidence<unsigned int>>;
template class ShortTermMemory<FacialPoints>;
template class ShortTermMemory<std::int32_t>;
template class ShortTermMemory<ContextEmotion>;
template class ShortTermMemory<RobotHeadPosture>;

}  // namespace KV
