#include "agreement/moments.hpp"

#include <algorithm>
#include <cmath>

namespace KV::session
{

namespace
{

/// A variance below this share of the mean square is a rounding error of constant values.
constexpr double rounding = 1e-12;

double variance(double sumOfSquares, double sum, double time)
{
  const double meanSquare = sumOfSquares / time;
  const double mean = sum / time;
  const double found = meanSquare - mean * mean;
  return found > rounding * meanSquare ? found : 0.;
}

}  // namespace

void Moments::add(double x, double y, double time)
{
  _time += time;
  _x += time * x;
  _y += time * y;
  _xx += time * x * x;
  _yy += time * y * y;
  _xy += time * x * y;
  _squares += time * (x - y) * (x - y);
}

void Moments::add(const Moments& other)
{
  _time += other._time;
  _x += other._x;
  _y += other._y;
  _xx += other._xx;
  _yy += other._yy;
  _xy += other._xy;
  _squares += other._squares;
}

boost::optional<double> Moments::ccc() const
{
  if (_time <= 0.)
    return boost::none;
  const double ofX = variance(_xx, _x, _time);
  const double ofY = variance(_yy, _y, _time);
  const double difference = (_x - _y) / _time;
  const double below = ofX + ofY + difference * difference;
  if (below <= 0.)
    return boost::none;
  const double covariance = ofX > 0. && ofY > 0. ? _xy / _time - _x / _time * (_y / _time) : 0.;
  return std::clamp(2. * covariance / below, -1., 1.);
}

boost::optional<double> Moments::pearson() const
{
  if (_time <= 0.)
    return boost::none;
  const double ofX = variance(_xx, _x, _time);
  const double ofY = variance(_yy, _y, _time);
  if (ofX <= 0. || ofY <= 0.)
    return boost::none;
  return std::clamp((_xy / _time - _x / _time * (_y / _time)) / std::sqrt(ofX * ofY), -1., 1.);
}

boost::optional<double> Moments::rmse() const
{
  if (_time <= 0.)
    return boost::none;
  return std::sqrt(_squares / _time);
}

}  // namespace KV::session
