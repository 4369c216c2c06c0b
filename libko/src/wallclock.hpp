#pragma once

#include <cstdint>

namespace ko
{

/// Returns the time of the machine's wall clock in nanoseconds since the Unix epoch.
///
/// Counts on from the system's clock with the processor's counter, if that counter is reliable; see
/// extrapolatedclock.hpp.
std::int64_t wallClockNow();

}  // namespace ko
