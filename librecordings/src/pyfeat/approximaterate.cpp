#include "pyfeat/approximaterate.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>
#include <string>

namespace KV::recordings
{
namespace
{
// [frames/s] the likeliest first
constexpr std::array<double, 12> usualRates = {30.0, 25.0,  24.0, 29.97, 23.976, 60.0,
                                               50.0, 59.94, 15.0, 10.0,  20.0,   5.0};

// Rates with a smaller ratio count as equal.
constexpr double noticedDifference = 1.05;

std::string rounded(double rate)
{
  std::ostringstream text;
  text << std::setprecision(4) << rate;
  return text.str();
}

}  // namespace

// The second is frame / rate, rounded down.
void ApproximateRate::add(std::int64_t frame, std::int64_t second)
{
  _least = std::max(_least, static_cast<double>(frame) / static_cast<double>(second + 1));
  if (second > 0)
    _greatest = std::min(_greatest, static_cast<double>(frame) / static_cast<double>(second));
}

std::optional<AssumedRate> ApproximateRate::rate() const
{
  constexpr double unbounded = 1e8;
  if (_greatest > unbounded || _least >= _greatest)
    return {};
  const auto* const fitting = std::find_if(usualRates.begin(), usualRates.end(),
                                           [this](double rate) { return rate > _least && rate <= _greatest; });
  const double rate = fitting != usualRates.end() ? *fitting : (_least + _greatest) / 2.0;

  AssumedRate assumed;
  assumed.framesPerSecond = rate;
  assumed.reason = "since times in whole seconds allow " + rounded(_least) + " to " + rounded(_greatest);
  assumed.warning = _greatest < _least * noticedDifference
                        ? std::string()
                        : "the times in whole seconds leave open which rate from " + rounded(_least) + " to " +
                              rounded(_greatest) + " frames/s the video had: " + rounded(rate) + " are assumed";
  assumed.advice = "give it";
  return assumed;
}

}  // namespace KV::recordings
