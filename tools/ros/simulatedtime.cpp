#include "ros/simulatedtime.hpp"

#include <algorithm>

namespace KV::tools
{

namespace
{
constexpr std::int64_t firstDate = 1'000'000'000'000'000'000;  // [ns] of 2001; earlier times count from 0
constexpr std::int64_t madeUpDate = 1'577'836'800'000'000'000;
}  // namespace

std::int64_t SimulatedTime::take(std::int64_t clock)
{
  if (!_clock)
  {
    _offset = clock < firstDate ? madeUpDate : 0;
    _clock = clock;
    return 0;
  }
  const std::int64_t back = *_clock - clock;
  if (back < shortestJump)
  {
    _clock = std::max(*_clock, clock);
    return 0;
  }
  _offset += back;
  _clock = clock;
  return back;
}

}  // namespace KV::tools
