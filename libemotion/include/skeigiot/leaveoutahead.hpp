#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

#include <cstddef>

namespace KV
{

/// Takes the readings that are later than `latest` out of the observation, and returns how many they were; the others
/// stay.
///
/// For the boundary between sensors and library, where a sensor's clock may be ahead. A reading from the future counts
/// as new until its time has come, and is remembered until its horizon has passed after that: one that lies years ahead
/// speaks for the person for years, and the memory holds all that come until then. Person::update() does not look for
/// them, and costs nothing for it. The caller chooses `latest` so that small differences of clocks are allowed, for
/// example `ko::SystemClock::now() + boost::chrono::seconds(1)`.
///
/// \par Thread safety
///   Safe from any thread, as far as nobody uses the observation meanwhile.
/// \par Complexity
///   Constant.
SKEIGIOT_API std::size_t leaveOutAhead(PersonObservation& observation, ko::SystemClock::time_point latest);

}  // namespace KV
