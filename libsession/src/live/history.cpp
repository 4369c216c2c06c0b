#include <skeigiot/session/history.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace KV::session
{

namespace
{

std::int64_t secondOf(TimePoint time)
{
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  return time.time_since_epoch().count() / nanoseconds;
}

std::size_t slotOf(std::int64_t second)
{
  return static_cast<std::size_t>(second) % History::seconds;
}

const char* blockOf(double share)
{
  static constexpr std::array blocks{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  const double step = std::clamp(share, 0., 1.) * static_cast<double>(blocks.size());
  return blocks.at(std::min(static_cast<std::size_t>(step), blocks.size() - 1));
}

}  // namespace

void History::add(TimePoint time, float value)
{
  if (std::isnan(value))
    return;
  const std::int64_t number = secondOf(time);
  Second& second = _seconds.at(slotOf(number));
  if (second.number != number)
    second = {number, 0., 0};
  second.sum += static_cast<double>(value);
  ++second.count;
}

std::vector<double> History::means(TimePoint now, std::size_t count) const
{
  std::vector<double> means;
  const std::size_t length = seconds / count;
  std::int64_t number = secondOf(now) - static_cast<std::int64_t>(seconds) + 1;
  for (std::size_t i = 0; i < count; ++i)
  {
    Second sum;
    for (std::size_t j = 0; j < length; ++j, ++number)
    {
      const Second& second = _seconds.at(slotOf(number));
      if (second.number != number)
        continue;
      sum.sum += second.sum;
      sum.count += second.count;
    }
    means.push_back(sum.count > 0 ? sum.sum / static_cast<double>(sum.count)
                                  : std::numeric_limits<double>::quiet_NaN());
  }
  return means;
}

std::string sparkline(const std::vector<double>& values, double low, double high)
{
  std::string text;
  for (const double value : values)
    text += std::isnan(value) ? " " : blockOf((value - low) / (high - low));
  return text;
}

}  // namespace KV::session
