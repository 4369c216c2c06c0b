#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace KV::session
{

/// The last minute of one quantity, second by second.
class SKEIGIOT_API History
{
public:
  static constexpr std::size_t seconds = 60;  ///< how far back it goes

  /// Adds a value; NaN is left out. A value of a later minute replaces those of the minute before.
  void add(TimePoint time, float value);

  /// Returns the means of `count` stretches of equal length, which together are the minute up to `now`, the oldest
  /// first; NaN where nothing is known. `count` is a divisor of 60.
  std::vector<double> means(TimePoint now, std::size_t count) const;

private:
  struct Second
  {
    std::int64_t number = -1;  // since 1970
    double sum = 0.;
    std::size_t count = 0;
  };

  std::array<Second, seconds> _seconds;
};

/// Returns a line of blocks, one for each value, whose heights go from `low` to `high`; blank for a missing value.
SKEIGIOT_API std::string sparkline(const std::vector<double>& values, double low, double high);

}  // namespace KV::session
