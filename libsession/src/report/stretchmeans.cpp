#include "report/stretchmeans.hpp"

#include <algorithm>
#include <limits>

namespace KV::session
{

StretchMeans::StretchMeans(Duration length, std::size_t stretches)
  : _length(std::max<Duration::rep>(length.count(), 1)), _sums(stretches)
{}

void StretchMeans::add(Duration from, Duration to, float value)
{
  const std::size_t last = _stretchOf(std::max(from, to - Duration(1)));
  for (std::size_t stretch = _stretchOf(from); stretch <= last; ++stretch)
  {
    _sums.at(stretch).values += static_cast<double>(value);
    ++_sums.at(stretch).count;
  }
}

std::vector<float> StretchMeans::all() const
{
  std::vector<float> means;
  means.reserve(_sums.size());
  for (const Sum& sum : _sums)
    means.push_back(sum.count > 0 ? static_cast<float>(sum.values / sum.count)
                                  : std::numeric_limits<float>::quiet_NaN());
  return means;
}

std::size_t StretchMeans::_stretchOf(Duration time) const
{
  const double share = static_cast<double>(time.count()) / static_cast<double>(_length);
  const auto stretch = static_cast<std::size_t>(share * static_cast<double>(_sums.size()));
  return std::min(stretch, _sums.size() - 1);
}

}  // namespace KV::session
