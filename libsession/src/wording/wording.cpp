#include <skeigiot/session/wording.hpp>

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace KV::session
{

namespace
{

template <typename... Arguments>
std::string formatted(const char* format, Arguments... arguments)
{
  char text[64];
  std::snprintf(text, sizeof text, format, arguments...);
  return text;
}

/// Two decimals, without the sign of a zero.
double rounded(double value)
{
  return std::round(value * 100.) / 100. + 0.;
}

}  // namespace

std::string clockText(Duration time, int decimals)
{
  std::int64_t unitsPerSecond = 1;
  for (int i = 0; i < decimals; ++i)
    unitsPerSecond *= 10;
  const std::int64_t nanosecondsPerUnit = 1'000'000'000 / unitsPerSecond;
  // Rounded without a sum, which may be more than 64 bits hold.
  const std::int64_t units =
      time.count() / nanosecondsPerUnit + (time.count() % nanosecondsPerUnit >= (nanosecondsPerUnit + 1) / 2 ? 1 : 0);

  const auto seconds = static_cast<long long>(units / unitsPerSecond);
  std::string text = seconds >= 3600 ? formatted("%lld:%02lld:%02lld", seconds / 3600, seconds / 60 % 60, seconds % 60)
                                     : formatted("%lld:%02lld", seconds / 60, seconds % 60);
  if (decimals > 0)
    text += "." + std::to_string(unitsPerSecond + units % unitsPerSecond).substr(1);  // a 1 keeps leading zeros
  return text;
}

std::string signedNumber(double value)
{
  if (std::isnan(value))
    return "  nan";
  const double shown = rounded(value);
  return formatted(shown == 0. ? " %.2f" : "%+.2f", shown);
}

std::string plainNumber(double value)
{
  return std::isnan(value) ? " nan" : formatted("%.2f", rounded(value));
}

std::string percentage(double share)
{
  const double percent = std::round(share * 100.);
  if (percent == 0. && share > 0.)
    return "<1 %";
  if (percent == 100. && share < 1.)
    return ">99 %";
  return formatted("%.0f %%", percent);
}

std::string counted(std::size_t count, const std::string& noun)
{
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace KV::session
