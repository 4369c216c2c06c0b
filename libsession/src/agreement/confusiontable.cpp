#include "agreement/confusiontable.hpp"

#include <numeric>

namespace KV::session
{

void ConfusionTable::add(const ConfusionTable& other)
{
  for (std::size_t i = 0; i < _times.size(); ++i)
    _times[i] += other._times[i];
}

double ConfusionTable::total() const
{
  return std::accumulate(_times.begin(), _times.end(), 0.);
}

boost::optional<double> ConfusionTable::accuracy() const
{
  const double all = total();
  if (all <= 0.)
    return boost::none;
  double same = 0.;
  for (std::size_t i = 0; i < _classes; ++i)
    same += time(i, i);
  return same / all;
}

boost::optional<double> ConfusionTable::kappa() const
{
  const boost::optional<double> observed = accuracy();
  if (!observed)
    return boost::none;
  const double all = total();
  double expected = 0.;
  for (std::size_t i = 0; i < _classes; ++i)
  {
    const double row = _row(i) / all;
    const double column = _column(i) / all;
    if (row == 1. && column == 1.)
      return boost::none;
    expected += row * column;
  }
  return (*observed - expected) / (1. - expected);
}

boost::optional<double> ConfusionTable::f1(std::size_t index) const
{
  const double both = _row(index) + _column(index);
  if (both <= 0.)
    return boost::none;
  return 2. * time(index, index) / both;
}

double ConfusionTable::_row(std::size_t first) const
{
  double sum = 0.;
  for (std::size_t second = 0; second < _classes; ++second)
    sum += time(first, second);
  return sum;
}

double ConfusionTable::_column(std::size_t second) const
{
  double sum = 0.;
  for (std::size_t first = 0; first < _classes; ++first)
    sum += time(first, second);
  return sum;
}

}  // namespace KV::session
