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

  /// Takes one line, and returns who leaves; an empty one says nothing.
  ///
  /// \throws MemberError if the line is refused.
  std::vector<std::int32_t> take(std::string_view line);

  /// Returns a line about the readings that were left out since the last call, or an empty text.
  std::string takeLeftOut() { return _session.takeLeftOut(); }

  /// Returns the time of the last step.
  TimePoint now() const { return _now; }

  /// Returns what a step would be given as its time that came in now.
  TimePoint present() const;

private:
  recordings::StreamLine _readAtArrival(std::string_view text) const;
  recordings::StreamLine _readAtItsTime(std::string_view text);

  StreamTimes _times;
  std::function<TimePoint()> _wallClock;
  Session _session;
  recordings::TimeUnitCheck _units;
  TimePoint _now;
};

}  // namespace KV::session
