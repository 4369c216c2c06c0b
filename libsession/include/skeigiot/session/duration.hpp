#pragma once

#include <ko/systemclock.hpp>

namespace KV::session
{

using Duration = ko::SystemClock::duration;
using TimePoint = ko::SystemClock::time_point;

}  // namespace KV::session
