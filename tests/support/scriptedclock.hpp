#pragma once

#include <ko/systemclock.hpp>

#include <functional>
#include <utility>

namespace support
{

/// A clock whose readings a test scripts one by one, and that counts how often it is read.
class ScriptedClock : public ko::ClockSource
{
public:
  /// Receives the number of the reading, counted from 0 since the last restart(), and returns the time or throws.
  using Script = std::function<ko::SystemClock::time_point(int)>;

  explicit ScriptedClock(Script script) : _script(std::move(script)) {}

  ko::SystemClock::time_point now() override { return _script(_readings++); }

  /// Returns how often the clock was read since it was made or restarted.
  int readings() const { return _readings; }

  /// Starts a new script at reading 0.
  void restart(Script script)
  {
    _script = std::move(script);
    _readings = 0;
  }

private:
  Script _script;
  int _readings = 0;
};

/// The script of a clock that always shows `time`.
inline ScriptedClock::Script standingAt(ko::SystemClock::time_point time)
{
  return [time](int) { return time; };
}

}  // namespace support
