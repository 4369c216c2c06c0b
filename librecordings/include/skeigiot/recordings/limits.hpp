#pragma once

/// \file
/// Limits of numbers in a recording; a number beyond its limit is not used.

namespace KV::recordings
{

/// [s] The times that fit a clock in nanoseconds, whether they count from the start of the recording or since 1970.
constexpr double earliestTimestamp = -1.5e9;
/// [s] The end of the same range; it is included.
constexpr double latestTimestamp = 9.2e9;

/// No sensor measures a number beyond this, either way; its square might not fit a float.
constexpr double greatestMeasurement = 1e15;

}  // namespace KV::recordings
