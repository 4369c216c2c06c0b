#include "livelink/timecode.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace KV::recordings
{

std::optional<double> secondsOfTimecode(std::string_view text)
{
  constexpr std::array<double, 4> ends = {24.0, 60.0, 60.0, timecodeRate};
  constexpr std::size_t last = ends.size() - 1;
  std::array<double, ends.size()> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i)
  {
    const std::size_t length = i < last ? std::min(text.find(':'), text.size()) : text.size();
    double& part = parts.at(i);
    const char* const end = text.data() + length;
    const auto [rest, error] = std::from_chars(text.data(), end, part, std::chars_format::fixed);
    const bool isWhole = i == last || part == std::floor(part);
    if (error != std::errc() || rest != end || !(part >= 0.0 && part < ends.at(i)) || !isWhole)
      return {};
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return parts[0] * 3600.0 + parts[1] * 60.0 + parts[2] + parts[3] / timecodeRate;
}

}  // namespace KV::recordings
