#pragma once

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <vector>

namespace KV::session
{

/// How long two sides had which classes at the same time, and measures of their agreement.
///
/// With w(i, j) the time in which the first side has class i and the second class j, W their sum, r(i) that of row i
/// and c(j) that of column j:
///
///     accuracy  p_o = sum of w(i, i) / W
///     kappa     (p_o - p_e) / (1 - p_e),  p_e = sum of r(i) c(i) / W^2
///     f1(i)     2 w(i, i) / (r(i) + c(i))
///
/// Kappa is 1 if both sides always agree, 0 if they agree by chance alone (J. Cohen, A coefficient of agreement for
/// nominal scales, Educational and Psychological Measurement 20, 1960, 37-46). F1 is the harmonic mean of precision and
/// recall (C. J. van Rijsbergen, Information Retrieval, 2nd edition, 1979, chapter 7); it does not matter which side is
/// the truth.
class ConfusionTable
{
public:
  explicit ConfusionTable(std::size_t classes = 0) : _classes(classes), _times(classes * classes, 0.) {}

  void add(std::size_t first, std::size_t second, double time) { _times[first * _classes + second] += time; }
  void add(const ConfusionTable& other);

  std::size_t classes() const { return _classes; }
  double time(std::size_t first, std::size_t second) const { return _times[first * _classes + second]; }
  double total() const;

  boost::optional<double> accuracy() const;             ///< nothing if no time was compared
  boost::optional<double> kappa() const;                ///< nothing if both sides have one and the same class only
  boost::optional<double> f1(std::size_t index) const;  ///< nothing if neither side has the class

private:
  double _row(std::size_t first) const;
  double _column(std::size_t second) const;

  std::size_t _classes;
  std::vector<double> _times;
};

}  // namespace KV::session
