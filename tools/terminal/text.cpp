#include "text.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sstream>

namespace tools
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

std::string blanksUpTo(std::size_t width, const std::string& text)
{
  const std::size_t taken = displayWidth(text);
  return std::string(width > taken ? width - taken : 0, ' ');
}

}  // namespace

std::string clockText(Duration time, int decimals)
{
  std::int64_t unitsPerSecond = 1;
  for (int i = 0; i < decimals; ++i)
    unitsPerSecond *= 10;
  const std::int64_t nanosecondsPerUnit = 1'000'000'000 / unitsPerSecond;
  const std::int64_t units = (time.count() + nanosecondsPerUnit / 2) / nanosecondsPerUnit;

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

std::string wrapped(const std::string& text, std::size_t width, std::size_t indentation)
{
  std::istringstream words(text);
  std::string result;
  std::string line;
  for (std::string word; words >> word;)
  {
    const bool first = line.empty();
    if (!first && displayWidth(line) + 1 + displayWidth(word) > width)
    {
      result += line + "\n";
      line = std::string(indentation, ' ') + word;
    }
    else
      line += (first ? "" : " ") + word;
  }
  return result + line;
}

std::size_t displayWidth(const std::string& text)
{
  const auto startsCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsCharacter));
}

std::string padRight(const std::string& text, std::size_t width)
{
  return text + blanksUpTo(width, text);
}

std::string padLeft(const std::string& text, std::size_t width)
{
  return blanksUpTo(width, text) + text;
}

}  // namespace tools
