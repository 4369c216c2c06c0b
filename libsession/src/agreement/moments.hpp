#pragma once

#include <boost/optional/optional.hpp>

namespace KV::session
{

/// Sums over two tracks of values x and y, each pair weighted by its time, and measures from these sums.
///
/// With m the weighted means, v the weighted variances (divided by the sum of weights) and c the covariance:
///
///     ccc      2 c / (v_x + v_y + (m_x - m_y)^2)
///     pearson  c / sqrt(v_x v_y)
///     rmse     sqrt(mean of (x - y)^2)
///
/// The concordance correlation is 1 only if x = y always; unlike Pearson's correlation it is lower for another level or
/// scale (L. I-K. Lin, A concordance correlation coefficient to evaluate reproducibility, Biometrics 45, 1989,
/// 255-268).
class Moments
{
public:
  void add(double x, double y, double time);
  void add(const Moments& other);

  double total() const { return _time; }

  boost::optional<double> ccc() const;      ///< nothing if x and y are one constant value
  boost::optional<double> pearson() const;  ///< nothing if x or y does not vary
  boost::optional<double> rmse() const;     ///< nothing if no time was compared

private:
  // Sums, so that those of several units can be added; values are near 0.
  double _time = 0.;
  double _x = 0.;
  double _y = 0.;
  double _xx = 0.;
  double _yy = 0.;
  double _xy = 0.;
  double _squares = 0.;  // of differences
};

}  // namespace KV::session
