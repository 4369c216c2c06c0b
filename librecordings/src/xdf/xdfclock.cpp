#include "xdf/xdfclock.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace KV::recordings
{
namespace
{
// The limits of the reference implementation.
constexpr double resetDeviations = 5.;         // of the times between measurements
constexpr double resetSeconds = 5.;            // [s]
constexpr double resetOffsetDeviations = 10.;  // of the changes of values
constexpr double resetOffsetSeconds = 1.;      // [s]
constexpr double outlier = 1e-4;               // [s] a residual that counts less and less beyond
constexpr double breakSeconds = 1.;
constexpr double breakSamples = 500.;
constexpr int rounds = 50;           // of the robust fit
constexpr double steppedBack = -1.;  // [s] that far back, a clock was set

double medianOf(std::vector<double> values)
{
  const std::size_t middle = values.size() / 2;
  std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(middle), values.end());
  const double upper = values[middle];
  if (values.size() % 2 != 0)
    return upper;
  return (upper + *std::max_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(middle))) / 2.;
}

/// Returns the median, and the median of the deviations from it.
struct Spread
{
  explicit Spread(const std::vector<double>& values) : median(medianOf(values))
  {
    std::vector<double> deviations;
    deviations.reserve(values.size());
    for (const double value : values)
      deviations.push_back(std::abs(value - median));
    deviation = medianOf(std::move(deviations)) + std::numeric_limits<double>::epsilon();
  }

  double median;
  double deviation = 0.;
};

/// Returns the measurements after which the clock was set, by their indices.
std::vector<std::size_t> resetsIn(const std::vector<XdfClockOffset>& offsets)
{
  std::vector<double> steps;
  std::vector<double> changes;
  for (std::size_t i = 1; i < offsets.size(); ++i)
  {
    steps.push_back(offsets[i].time - offsets[i - 1].time);
    changes.push_back(std::abs(offsets[i].value - offsets[i - 1].value));
  }
  if (steps.empty())
    return {};
  const Spread step(steps);
  const Spread change(changes);
  std::vector<std::size_t> resets;
  for (std::size_t i = 0; i < steps.size(); ++i)
  {
    const double late = steps[i] - step.median;
    const double moved = changes[i] - change.median;
    const bool isGlitch = steps[i] < 0. || (late / step.deviation > resetDeviations && late > resetSeconds);
    if (isGlitch && moved / change.deviation > resetOffsetDeviations && moved > resetOffsetSeconds)
      resets.push_back(i);
  }
  return resets;
}

/// Fits a line by least squares whose weights sink with the residuals (Huber).
XdfClockSegment fitted(const XdfClockOffset* begin, const XdfClockOffset* end)
{
  XdfClockSegment line{begin->time, (end - 1)->time, begin->value, 0.};
  if (end - begin < 2)
    return line;
  std::vector<double> weights(static_cast<std::size_t>(end - begin), 1.);
  for (int round = 0; round < rounds; ++round)
  {
    double sum = 0.;
    double sumX = 0.;
    double sumY = 0.;
    for (const auto* one = begin; one != end; ++one)
    {
      const double weight = weights[static_cast<std::size_t>(one - begin)];
      sum += weight;
      sumX += weight * (one->time - line.from);
      sumY += weight * one->value;
    }
    const double meanX = sumX / sum;
    const double meanY = sumY / sum;
    double square = 0.;
    double product = 0.;
    for (const auto* one = begin; one != end; ++one)
    {
      const double weight = weights[static_cast<std::size_t>(one - begin)];
      const double x = one->time - line.from - meanX;
      square += weight * x * x;
      product += weight * x * (one->value - meanY);
    }
    line.slope = square > 0. ? product / square : 0.;
    line.offset = meanY - line.slope * meanX;
    for (const auto* one = begin; one != end; ++one)
    {
      const double residual = std::abs(one->value - line.offset - line.slope * (one->time - line.from));
      weights[static_cast<std::size_t>(one - begin)] = residual <= outlier ? 1. : outlier / residual;
    }
  }
  return line;
}

double distance(const XdfClockSegment& segment, double time)
{
  return std::max({segment.from - time, time - segment.to, 0.});
}

/// Replaces the values by a line through them.
void straighten(double* begin, const double* end)
{
  const auto count = static_cast<double>(end - begin);
  const double first = *begin;
  const double middle = (count - 1.) / 2.;
  double mean = 0.;
  for (const double* one = begin; one != end; ++one)
    mean += (*one - first) / count;
  double square = 0.;
  double product = 0.;
  for (const double* one = begin; one != end; ++one)
  {
    const double x = static_cast<double>(one - begin) - middle;
    square += x * x;
    product += x * (*one - first - mean);
  }
  const double slope = square > 0. ? product / square : 0.;
  for (double* one = begin; one != end; ++one)
    *one = first + mean + slope * (static_cast<double>(one - begin) - middle);
}

}  // namespace

std::vector<XdfClockSegment> clockSegmentsOf(const std::vector<XdfClockOffset>& offsets)
{
  std::vector<XdfClockSegment> segments;
  std::size_t begin = 0;
  for (const std::size_t reset : resetsIn(offsets))
  {
    segments.push_back(fitted(offsets.data() + begin, offsets.data() + reset + 1));
    begin = reset + 1;
  }
  if (begin < offsets.size())
    segments.push_back(fitted(offsets.data() + begin, offsets.data() + offsets.size()));
  return segments;
}

void synchronise(std::vector<double>& times, const std::vector<XdfClockSegment>& segments)
{
  if (segments.empty())
    return;
  std::size_t at = 0;
  double previous = -std::numeric_limits<double>::infinity();
  for (double& time : times)
  {
    const bool isBack = time - previous < steppedBack;
    if (at + 1 < segments.size() && isBack)
      ++at;
    while (at + 1 < segments.size() && distance(segments[at + 1], time) < distance(segments[at], time))
      ++at;
    previous = time;
    const XdfClockSegment& segment = segments[at];
    time += segment.offset + segment.slope * (time - segment.from);
  }
}

void removeJitter(std::vector<double>& times, double rate)
{
  if (!(rate > 0.))
    return;
  const double longest = std::max(breakSeconds, breakSamples / rate);
  std::size_t begin = 0;
  for (std::size_t i = 1; i <= times.size(); ++i)
    if (i == times.size() || std::abs(times[i] - times[i - 1]) > longest)
    {
      straighten(times.data() + begin, times.data() + i);
      begin = i;
    }
}

}  // namespace KV::recordings
