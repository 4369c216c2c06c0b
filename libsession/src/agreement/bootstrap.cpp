#include "agreement/bootstrap.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace KV::session
{

namespace
{

constexpr double lowerShare = 0.025;

double percentile(const std::vector<double>& sorted, double share)
{
  const double place = share * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(std::floor(place));
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (place - static_cast<double>(below)) * (sorted[above] - sorted[below]);
}

}  // namespace

boost::optional<std::pair<double, double>> Bootstrap::interval(std::vector<double> values)
{
  if (values.empty())
    return boost::none;
  std::sort(values.begin(), values.end());
  return std::make_pair(percentile(values, lowerShare), percentile(values, 1. - lowerShare));
}

std::uint64_t Bootstrap::_greatestFor(std::size_t count)
{
  constexpr std::uint64_t all = std::numeric_limits<std::uint64_t>::max();
  return count == 0 ? all : all - (all % count + 1) % count;
}

}  // namespace KV::session
