#pragma once

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/session.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <boost/optional/optional.hpp>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace KV::tools
{

/// Plays a recording as if it came in now: each step when its time has come, at a speed.
///
/// Times of `Clock` are those of the machine; they never decrease.
class Playback
{
public:
  using Clock = std::chrono::steady_clock;

  /// The first step is due at once. The observers must outlive it.
  Playback(std::unique_ptr<recordings::Reader> reader, double speed, std::vector<session::SessionObserver*> observers,
           session::Cycle cycle, Clock::time_point now);

  /// Plays the steps that are due, but only a certain number at once, so that the caller can react to keys in between.
  void play(Clock::time_point now);

  /// Returns when to call play() again: when the next step is due, or far in the future if there is no next step.
  Clock::time_point due() const;

  /// Plays a step that starts or stops scopes; its time is that of the recording now.
  ///
  /// \return why it is refused; empty if it is played
  std::string takeScopes(recordings::Step step, Clock::time_point now);

  void pause(Clock::time_point now);
  void resume(Clock::time_point now);

  /// Returns the time of the recording that is shown at this time of the machine.
  session::TimePoint at(Clock::time_point now) const;

  /// Returns which part of the recording lies before that time.
  session::Duration reached(Clock::time_point now) const;

  bool ended() const { return _ended; }
  std::size_t steps() const { return _steps; }

  /// Returns how many lines could not be used, and the reason for the last of them.
  std::size_t badLines() const { return _badLines; }
  const std::string& lastError() const { return _lastError; }

  /// Returns the messages for the end: the readings that were left out, and the fault that ended the recording.
  std::vector<std::string> takeNotes();

private:
  void _take(const recordings::Step& step);
  void _read();

  std::unique_ptr<recordings::Reader> _reader;
  double _speed;
  session::Session _session;
  boost::optional<recordings::Step> _next;
  boost::optional<session::TimePoint> _first;  // of the steps that were played
  session::TimePoint _last;                    // of the steps that were played
  Clock::time_point _start;                    // when the first step would have been due without pauses
  boost::optional<Clock::time_point> _pausedAt;
  bool _ended = false;
  bool _isFinished = false;
  std::size_t _steps = 0;
  std::size_t _badLines = 0;
  std::string _lastError;
  std::vector<std::string> _notes;
};

}  // namespace KV::tools
