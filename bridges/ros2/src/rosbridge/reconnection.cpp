#include "rosbridge/reconnection.hpp"

#include <algorithm>
#include <utility>

namespace KV::ros2
{

void Reconnection::connected(TimePoint now)
{
  _since = now;
}

std::chrono::seconds Reconnection::lost(TimePoint now)
{
  const TimePoint since = std::exchange(_since, TimePoint::max());
  if (since != TimePoint::max() && now - since >= lasting)
    _wait = shortestWait;
  const std::chrono::seconds wait = _wait;
  _next = now + wait;
  _wait = std::min(2 * _wait, std::chrono::seconds(longestWait));
  return wait;
}

}  // namespace KV::ros2
