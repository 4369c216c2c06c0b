#pragma once

#include <ko/systemclock.hpp>

namespace KV::session
{

using Duration = ko::SystemClock::duration;     ///< [ns]
using TimePoint = ko::SystemClock::time_point;  ///< [ns] since 1970, on the clock of a recording or of a live session

}  // namespace KV::session
