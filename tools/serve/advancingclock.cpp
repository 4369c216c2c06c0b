#include "serve/advancingclock.hpp"

#include <algorithm>
#include <cstdint>

namespace KV::tools
{

session::TimePoint AdvancingClock::operator()()
{
  const session::TimePoint wall = _wallClock();
  const SteadyTime steady = _steadyClock();
  const std::int64_t passed = std::chrono::duration_cast<std::chrono::nanoseconds>(steady - _lastSteady).count();
  _last = wall > _last ? wall : _last + session::Duration(std::max<std::int64_t>(passed, 1));
  _lastSteady = steady;
  return _last;
}

}  // namespace KV::tools
