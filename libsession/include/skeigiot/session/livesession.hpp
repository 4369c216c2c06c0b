#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/timeunitcheck.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/session.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KV::session
{

/// The time of the clock of a live session during a step.
enum class StreamTimes
{
  Arrival,  ///< the time at which the line came in
  Lines     ///< the time of the line
};

/// Takes the lines of a live stream into one session.
///
/// A line takes effect as a whole or, if it is refused, not at all.
class SKEIGIOT_API LiveSession
{
public:
  /// Makes a session in which nobody is known; the observers must outlive it.
  ///
  /// It sets the clock of its thread, so `wallClock`, which returns the time of arrival, must not read that.
  LiveSession(StreamTimes times, std::function<TimePoint()> wallClock, std::vector<SessionObserver*> observers,
              Cycle cycle = Cycle());

  /// Has `left` called for each person whom a line says to forget, before the step of that line is played.
  void onPersonForgotten(std::function<void(std::int32_t person)> left) { _left = std::move(left); }

  /// Takes the text of one line, and returns who leaves; an empty one says nothing.
  ///
  /// \throws MemberError if the line is refused.
  std::vector<std::int32_t> take(std::string_view text);

  /// Takes a line that has been read already; its time, readings and scopes are checked as those of a text are. With
  /// StreamTimes::Arrival, the time of the line is that of its readings.
  ///
  /// \throws MemberError if the line is refused.
  std::vector<std::int32_t> take(recordings::StreamLine line);

  /// Returns the notes of the session since the last call, see Session::takeNotes().
  std::vector<std::string> takeNotes() { return _session.takeNotes(); }

  /// Returns the time of the last step.
  TimePoint now() const { return _now; }

  /// Returns the time that a step would get if it came in now.
  TimePoint present() const;

private:
  static void _setArrival(recordings::StreamLine& line, TimePoint arrival);
  void _checkTime(const recordings::StreamLine& line);
  void _play(const recordings::StreamLine& line);

  StreamTimes _times;
  std::function<TimePoint()> _wallClock;
  std::function<void(std::int32_t)> _left;
  Session _session;
  recordings::TimeUnitCheck _units;
  TimePoint _now;
};

}  // namespace KV::session
