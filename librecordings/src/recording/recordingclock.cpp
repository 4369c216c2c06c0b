#include "recording/recordingclock.hpp"

#include <boost/chrono/duration.hpp>

#include <cmath>
#include <cstdint>

namespace KV::recordings
{

std::string tooLate(double seconds)
{
  return "is " + std::to_string(std::llround(seconds)) +
         " s after the one before; expected seconds; it looks like nanoseconds: divide it by 1000000000";
}

double secondsOf(ko::SystemClock::time_point time)
{
  return static_cast<double>(time.time_since_epoch().count()) * 1e-9;
}

// Whole seconds and the rest are added separately: a double does not hold the nanoseconds since 1970.
ko::SystemClock::time_point timeAfter(double origin, double seconds)
{
  constexpr double nanosecondsPerSecond = 1e9;
  const double whole = std::floor(seconds);
  const auto nanoseconds = static_cast<std::int64_t>(std::llround((seconds - whole) * nanosecondsPerSecond));
  return ko::SystemClock::time_point(boost::chrono::seconds(static_cast<std::int64_t>(origin + whole)) +
                                     boost::chrono::nanoseconds(nanoseconds));
}

}  // namespace KV::recordings
