#pragma once

#include <skeigiot/session/duration.hpp>

#include <cstddef>
#include <vector>

namespace KV::session
{

/// The means of a quantity in stretches of a recording that are equally long, for a small picture.
class StretchMeans
{
public:
  /// \param length     of the recording
  /// \param stretches  into how many the recording is divided
  StretchMeans(Duration length, std::size_t stretches);

  /// Adds a value that is valid from one time to another: it counts once in each stretch that it touches.
  void add(Duration from, Duration to, float value);

  /// Returns the mean of each stretch; NaN where there is no value.
  std::vector<float> all() const;

private:
  std::size_t _stretchOf(Duration time) const;

  struct Sum
  {
    double values = 0.;
    int count = 0;
  };

  Duration::rep _length;
  std::vector<Sum> _sums;
};

}  // namespace KV::session
