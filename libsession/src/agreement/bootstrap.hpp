#pragma once

#include <skeigiot/recordings/interruptioncheck.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace KV::session
{

/// Draws samples of units with replacement. The same seed draws the same on every machine: the generator's bits are
/// fixed by the standard, and the distribution is our own.
class Bootstrap
{
public:
  Bootstrap(std::uint64_t seed, std::size_t resamples) : _seed(seed), _resamples(resamples) {}

  /// Calls `take(sum)` for each resample, with the sum of its units, which are as many as the original ones.
  template <typename Unit, typename Take>
  void resample(const std::vector<Unit>& units, const Unit& nothing, Take&& take) const
  {
    std::mt19937_64 generator(_seed);
    const std::uint64_t greatest = _greatestFor(units.size());
    for (std::size_t i = 0; i < _resamples; ++i)
    {
      recordings::InterruptionCheck::ask();
      Unit sum = nothing;
      for (std::size_t drawn = 0; drawn < units.size(); ++drawn)
        sum.add(units[_below(units.size(), greatest, generator)]);
      take(sum);
    }
  }

  /// Returns the ends of the interval that holds the middle 95 % of the values; nothing without values.
  ///
  /// Percentiles, interpolated linearly between values (B. Efron, R. J. Tibshirani, An Introduction to the Bootstrap,
  /// 1993, chapter 13).
  static boost::optional<std::pair<double, double>> interval(std::vector<double> values);

private:
  /// Returns the greatest number of the generator that is used: above it, some units would have a greater chance.
  static std::uint64_t _greatestFor(std::size_t count);

  static std::size_t _below(std::size_t count, std::uint64_t greatest, std::mt19937_64& generator)
  {
    std::uint64_t drawn = generator();
    while (drawn > greatest)
      drawn = generator();
    return static_cast<std::size_t>(drawn % count);
  }

  std::uint64_t _seed;
  std::size_t _resamples;
};

}  // namespace KV::session
