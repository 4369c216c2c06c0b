#pragma once

#include <optional>
#include <string_view>

namespace KV::recordings
{

/// [frames/s] at which a time code of Live Link Face counts.
constexpr double timecodeRate = 60.0;

/// Returns the seconds since midnight of a time code HH:MM:SS:FF.frac; nothing if it is no time code.
std::optional<double> secondsOfTimecode(std::string_view text);

}  // namespace KV::recordings
