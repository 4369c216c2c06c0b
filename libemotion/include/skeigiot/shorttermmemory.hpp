#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/contextemotion.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/facialpoints.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/robotheadposture.hpp>
#include <skeigiot/smile.hpp>
#include <skeigiot/timestamped.hpp>
#include <skeigiot/valueconfidence.hpp>

#include <boost/chrono/duration.hpp>
#include <boost/container/flat_set.hpp>
#include <boost/thread/mutex.hpp>

#include <cstdint>
#include <functional>

namespace KV
{

/// Keeps the timestamped readings of one kind that were seen during a sliding window of time, newest first.
///
/// Readings older than the horizon are forgotten whenever the memory is written, or read through youngest(); never by
/// themselves. There is no other limit on their number. No two records share a time.
///
/// Made for HeadPosture, float, bool, Smile, Gaze, Expressions, ValueConfidence<bool>, ValueConfidence<unsigned int>,
/// FacialPoints, std::int32_t, ContextEmotion and RobotHeadPosture.
template <typename T>
class SKEIGIOT_API ShortTermMemory
{
public:
  /// The records in one contiguous array, newest first.
  using Records = boost::container::flat_set<Timestamped<T>, std::greater<Timestamped<T>>>;

  /// Makes an empty memory.
  explicit ShortTermMemory(boost::chrono::milliseconds horizon);
  ShortTermMemory(const ShortTermMemory&) = delete;
  ShortTermMemory& operator=(const ShortTermMemory&) = delete;

  /// Remembers `reading` at its place in time, then forgets old records.
  ///
  /// A reading with exactly the time of a remembered one is discarded: the first writer wins. One older than the
  /// horizon is forgotten at once.
  ///
  /// \throws std::bad_alloc if there is no room for one more; the memory then holds what it held before.
  /// \par Thread safety
  ///   Takes the memory's mutex (not recursive) for its whole run.
  /// \par Complexity
  ///   Linear in the number of records.
  void record(const Timestamped<T>& reading);

  /// Returns the remembered record with the greatest time.
  ///
  /// Records older than horizon() are forgotten first, so a memory that held some may turn out empty.
  ///
  /// \return the stored record; the reference is valid until the memory is next modified.
  /// \throws std::range_error "The ShortTermMemory is empty." if no record is left.
  /// \par Thread safety
  ///   Takes the memory's mutex (not recursive) for its whole run, and releases it before the caller reads the result.
  /// \par Complexity
  ///   Linear in the number of records.
  Timestamped<T>& youngest();

  /// Removes every record that _isTooOld() judges too old, each with a clock reading of its own, newest first.
  ///
  /// A ko::ManualClock itself is read once for all of them. An exception of any other clock is caught and written to
  /// standard output as "Error while forgeting old memory: <what>"; the memory then holds what it held before. So it
  /// does if the clock throws what is no std::exception, which passes to the caller.
  ///
  /// \par Thread safety
  ///   Takes no lock: the caller holds mutex().
  void _forgetOld();

  /// Returns whether the age of the reading, in whole milliseconds (truncated), is strictly greater than the horizon.
  ///
  /// A reading from the future has a negative age and is never too old.
  ///
  /// \par Thread safety
  ///   Takes no lock and needs none.
  bool _isTooOld(const Timestamped<T>& reading) const;

  /// Returns the records, newest first. Nothing is forgotten.
  ///
  /// \par Thread safety
  ///   Takes no lock: the caller holds mutex() while it reads.
  const Records& records() const { return _records; }

  /// Returns the mutex (not recursive) that guards the records.
  boost::mutex& mutex() const { return _mutex; }

  /// Returns for how long a record is kept.
  boost::chrono::milliseconds horizon() const { return _horizon; }

private:
  void _restoreOrder();

  const boost::chrono::milliseconds _horizon;

  // Guarded by _mutex
  Records _records;

  mutable boost::mutex _mutex;
};

extern template class ShortTermMemory<HeadPosture>;
extern template class ShortTermMemory<float>;
extern template class ShortTermMemory<bool>;
extern template class ShortTermMemory<Smile>;
extern template class ShortTermMemory<Gaze>;
extern template class ShortTermMemory<Expressions>;
extern template class ShortTermMemory<ValueConfidence<bool>>;
extern template class ShortTermMemory<ValueConfidence<unsigned int>>;
extern template class ShortTermMemory<FacialPoints>;
extern template class ShortTermMemory<std::int32_t>;
extern template class ShortTermMemory<ContextEmotion>;
extern template class ShortTermMemory<RobotHeadPosture>;

}  // namespace KV
