#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/remembered.hpp>

#include <boost/smart_ptr/shared_ptr.hpp>

namespace KV
{

struct PersonMemoryPrivate;

/// The short-term memories of one person, one for each kind of reading.
///
/// A handle: copies share the record.
class SKEIGIOT_API PersonMemory
{
public:
  /// Makes a record of its own with every memory empty.
  PersonMemory();
  /// Makes a second handle on the record of the other.
  PersonMemory(const PersonMemory&) = default;
  /// Lets go of the record so far, and shares that of the other.
  PersonMemory& operator=(const PersonMemory&) = default;
  /// Hands the record over: the handle that was moved from has none, and may only be assigned to or destroyed.
  PersonMemory(PersonMemory&&) = default;
  /// As the move constructor; lets go of the record so far.
  PersonMemory& operator=(PersonMemory&&) = default;
  ~PersonMemory();

  /// Files each reading of the observation into its memory, under the reading's own time.
  ///
  /// `headHeight` and `voiceEmotion` are not remembered. A reading that is absent leaves its memory untouched. If
  /// memory runs out, std::bad_alloc passes to the caller; the readings before stay filed, and the observation may be
  /// given again.
  ///
  /// \par Thread safety
  ///   Takes the mutex of one memory at a time, never two at once; another thread that reads a memory under its mutex
  ///   may see the observation half filed. Add to one record from one thread at a time, since what was filed is looked
  ///   at again without the mutex.
  void add(const PersonObservation& observation);

  /// Returns how many records of a reading are remembered, and the youngest of them:
  /// `memory.remembered(&KV::PersonObservation::age).youngest`.
  ///
  /// Records older than the horizon, 7 s or for a context emotion 20 s, do not count. Nothing is forgotten or changed.
  /// `headHeight` and `voiceEmotion` are never remembered: their count is 0, as is that of a null pointer.
  ///
  /// \par Thread safety
  ///   Takes the mutex of this one memory, and reads the clock under it. May run beside an update of the person, and
  ///   inside a force callback.
  /// \par Complexity
  ///   Logarithmic in the number of records.
  template <typename T>
  Remembered<T> remembered(PersonObservation::Reading<T> PersonObservation::*reading) const;

  boost::shared_ptr<PersonMemoryPrivate> _p;  ///< the shared record, for the library's own components
};

}  // namespace KV
