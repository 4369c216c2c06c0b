#include <skeigiot/recordings/timeunitcheck.hpp>

#include <boost/chrono/duration.hpp>

#include <string>

namespace KV::recordings
{
namespace
{
constexpr std::size_t requiredTimes = 4;
const boost::chrono::microseconds shortestSpan{100};  // for so many times

}  // namespace

boost::optional<Implausible> TimeUnitCheck::look(const Step& step)
{
  if (!_anyStep)
    if (auto found = implausibleTime(step.time))
      return found;
  _anyStep = true;

  if (!step.person || _times == requiredTimes || (_person && *_person != *step.person))
    return {};
  if (!_person)
    _first = step.time;
  else if (step.time == _last)
    return {};
  if (_times + 1 == requiredTimes && step.time - _first < shortestSpan)
    return Implausible{"time",
                       "this is the fourth time of person " + std::to_string(*step.person) + " within " +
                           std::to_string((step.time - _first).count()) +
                           " ns: expected nanoseconds; the times look like seconds, milliseconds or microseconds"};
  _person = step.person;
  _last = step.time;
  ++_times;
  return {};
}

}  // namespace KV::recordings
