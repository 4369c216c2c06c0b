#pragma once

#include <skeigiot/session/duration.hpp>

#include <chrono>
#include <functional>

namespace KV::tools
{

/// Returns the time of a wall clock, but advances with each call: if the wall clock is set back or does not advance,
/// time goes on by the steady clock until the wall clock has caught up.
///
/// So each line of a live session has a time of its own, and a replay of the lines can repeat the session.
class AdvancingClock
{
public:
  using SteadyTime = std::chrono::steady_clock::time_point;

  explicit AdvancingClock(std::function<session::TimePoint()> wallClock,
                          std::function<SteadyTime()> steadyClock = std::chrono::steady_clock::now)
    : _wallClock(std::move(wallClock)), _steadyClock(std::move(steadyClock))
  {}

  session::TimePoint operator()();

private:
  std::function<session::TimePoint()> _wallClock;
  std::function<SteadyTime()> _steadyClock;
  session::TimePoint _last;
  SteadyTime _lastSteady = _steadyClock();
};

}  // namespace KV::tools
