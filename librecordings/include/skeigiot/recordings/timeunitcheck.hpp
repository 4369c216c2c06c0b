#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/implausible.hpp>
#include <skeigiot/recordings/step.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>

namespace KV::recordings
{

/// Looks at the times of the first steps of a recording, which are to be nanoseconds: finds times that are seconds,
/// milliseconds or microseconds. In constant memory. Not synchronised.
class SKEIGIOT_API TimeUnitCheck
{
public:
  /// Takes the next step, and returns what is wrong with its time; the step does not count then.
  ///
  /// That is a first time that implausibleTime() finds; or the fourth time of one person within 100 microseconds, which
  /// is faster than any sensor: such times are seconds or so since the start.
  boost::optional<Implausible> look(const Step& step);

private:
  bool _anyStep = false;
  boost::optional<std::int32_t> _person;  // the first one
  std::size_t _times = 0;                 // different ones of that person
  ko::SystemClock::time_point _first;     // of that person
  ko::SystemClock::time_point _last;
};

}  // namespace KV::recordings
