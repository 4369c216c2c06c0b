#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personstate.hpp>

#include <ko/systemclock.hpp>

#include <boost/thread/mutex.hpp>

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <utility>

namespace KV
{

/// Records a person's states over named scopes, and judges each scope when it ends.
///
/// An operation that throws, since memory has run out or the clock throws, has changed nothing, and holds no lock.
class SKEIGIOT_API KVEmotionRecorder
{
public:
  /// When a state was recorded, and a copy of the handle that was given.
  ///
  /// It shows the record as it is when read. To keep a moment, hand in a state whose record nobody updates any more.
  using Sample = std::pair<ko::SystemClock::time_point, PersonState>;

  /// One open scope.
  struct EmoRecordInfo
  {
    std::int32_t remainingSamples = 0;  ///< how many more samples it takes; negative is without limit
    std::list<Sample> samples;          ///< in the order recorded
  };

  /// Makes a recorder without scopes.
  KVEmotionRecorder() = default;
  /// Copies every scope with its samples, and makes a mutex of its own. Takes no lock: the caller keeps the source from
  /// changing.
  KVEmotionRecorder(const KVEmotionRecorder& other);
  KVEmotionRecorder& operator=(const KVEmotionRecorder&) = delete;

  /// Opens `scope` for that many samples (negative: without limit); one that is open already starts anew.
  ///
  /// \par Thread safety
  ///   Takes the recorder's mutex.
  void startRecording(const std::string& scope, std::int32_t samples);

  /// Records `state` in every open scope that still takes samples, all with the same time.
  ///
  /// \par Thread safety
  ///   Takes no lock: the caller keeps other operations from running at the same time.
  void update_notMutexed(const PersonState& state);

  /// Returns whether any scope is open, even one that takes no more samples.
  ///
  /// \par Thread safety
  ///   Takes no lock: the caller keeps other operations from running at the same time.
  bool hasAnOpenScope_notMutexed() const;

  /// Closes `scope`; returns the verdict on its samples as they read now, and the samples.
  ///
  /// The verdict is "positive", "neutral", "negative" or "unknown" (see Verdict), or "error", with no samples, if there
  /// is no such scope.
  ///
  /// \par Thread safety
  ///   Takes the recorder's mutex.
  std::pair<std::string, std::list<Sample>> stopRecording(const std::string& scope);

private:
  boost::mutex _mutex;

  // Guarded by _mutex, except in the operations whose names end in _notMutexed
  std::map<std::string, EmoRecordInfo> _scopes;
};

}  // namespace KV
