#pragma once

#include <string>
#include <vector>

namespace benchmarks
{

/// The time of one run of a process [s].
struct LoadTime
{
  double processor = 0.;  ///< of all processors
  double elapsed = 0.;    ///< from its start to its end
};

/// Starts `loadLibrary` many times without an argument and with each of the libraries, by turns, and returns the
/// medians in this order.
///
/// \throws std::runtime_error if it cannot be started or fails.
std::vector<LoadTime> loadTimes(const std::string& loadLibrary, const std::vector<std::string>& libraries);

}  // namespace benchmarks
