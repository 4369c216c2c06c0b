#pragma once

#include <cstddef>
#include <vector>

namespace KV::recordings
{

/// A comparison of a stream's clock with that of the recorder.
struct XdfClockOffset
{
  double time = 0.;   // [s] on the stream's clock
  double value = 0.;  // [s] to add to its times
};

/// Measurements between two restarts of the computer that a stream comes from, and the line through them.
struct XdfClockSegment
{
  double from = 0.;  // [s] time of the first measurement
  double to = 0.;    // [s] of the last
  double offset = 0.;
  double slope = 0.;  // a time t becomes t + offset + slope * (t - from)
};

/// Splits the measurements where the clock was set back or jumped: where both the time between two of them and the
/// change of their values are far outside of the usual. Fits a line to each part, robust against outliers.
std::vector<XdfClockSegment> clockSegmentsOf(const std::vector<XdfClockOffset>& offsets);

/// Moves the times to the recorder's clock. Times are in the order of the file. Each goes with the segment that it is
/// nearest to, and never back to an earlier one; those before the first measurement go with the first.
void synchronise(std::vector<double>& times, const std::vector<XdfClockSegment>& segments);

/// Replaces the times of a stream with a regular rate by evenly spaced ones, from a line through those of each stretch
/// without a break. A break is a step of more than a second and more than 500 samples.
void removeJitter(std::vector<double>& times, double rate);

}  // namespace KV::recordings
