#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/duration.hpp>

#include <cstddef>
#include <string>

namespace KV::session
{

/// Returns the time as "m:ss.s", or "h:mm:ss.s" from one hour on, rounded to that many decimals (0 to 3).
SKEIGIOT_API std::string clockText(Duration time, int decimals = 1);

/// Returns the number with a sign and two decimals: "+0.41", "-0.02", " 0.00".
SKEIGIOT_API std::string signedNumber(double value);

/// Returns the number with two decimals.
SKEIGIOT_API std::string plainNumber(double value);

/// Returns the share in [0, 1] as "42 %", and "<1 %" or ">99 %" where rounding would claim none or all.
SKEIGIOT_API std::string percentage(double share);

/// Returns "1 update", "2 updates": the noun takes an s unless there is exactly one.
SKEIGIOT_API std::string counted(std::size_t count, const std::string& noun);

}  // namespace KV::session
