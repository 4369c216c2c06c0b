#include <skeigiot/leaveoutahead.hpp>

#include "leaveout.hpp"

namespace KV
{

std::size_t leaveOutAhead(PersonObservation& observation, ko::SystemClock::time_point latest)
{
  return leaveOut(observation, [latest](const auto& reading) { return reading.time > latest; });
}

}  // namespace KV
