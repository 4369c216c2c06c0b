#pragma once

#include "face/frametimes.hpp"

#include <cstdint>
#include <optional>

namespace KV::recordings
{

/// Computes the rate of a video whose file has the time of each frame only in whole seconds.
class ApproximateRate
{
public:
  /// Adds the information that this frame, counted from 0, was shown in this second.
  void add(std::int64_t frame, std::int64_t second);

  /// Returns the usual rate that fits all frames best, or nothing if there are no frames or they contradict each other.
  ///
  /// It warns if the frames leave another rate possible.
  std::optional<AssumedRate> rate() const;

private:
  double _least = 0.0;     // [frames/s] exclusive
  double _greatest = 1e9;  // [frames/s] inclusive
};

}  // namespace KV::recordings
