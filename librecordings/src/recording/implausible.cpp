#include <skeigiot/recordings/implausible.hpp>

#include <skeigiot/readings.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <type_traits>
#include <utility>

namespace KV::recordings
{
namespace
{
// Scores that are percent.
constexpr float leastPercent = 2.f;
constexpr float greatestPercent = 100.f;

// [s] since 1970: from 2001 to 2096. A number of this size is a date, in one unit or another.
constexpr double earliestDate = 1e9;
constexpr double latestDate = 4e9;

struct Unit
{
  const char* name;
  double perSecond;
};
constexpr std::array<Unit, 4> units = {
    {{"seconds", 1.}, {"milliseconds", 1e3}, {"microseconds", 1e6}, {"nanoseconds", 1e9}}};

// The unit in which the number is a present-day date; null if there is no such unit.
const Unit* unitOf(double number)
{
  const auto* const found = std::find_if(units.begin(), units.end(), [number](const Unit& unit) {
    return number >= earliestDate * unit.perSecond && number <= latestDate * unit.perSecond;
  });
  return found == units.end() ? nullptr : found;
}

double nanosecondsOf(ko::SystemClock::time_point time)
{
  return static_cast<double>(time.time_since_epoch().count());
}

std::string wholeNumber(double number)
{
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.0f", number);
  return text.data();
}

// The names of a number, from its innermost part outwards.
struct Path
{
  const Path* outer;
  const char* name;

  std::string text() const { return outer == nullptr ? name : outer->text() + "." + name; }
};

bool isShare(const KV::Scale& scale)
{
  return std::string_view(scale.unit).empty() && scale.least == 0. && scale.greatest == 1.;
}

// Checks all numbers of a value until one is found.
template <typename Value>
void look(const Path& path, const Value& value, const KV::Scale& scale, boost::optional<Implausible>& found)
{
  if constexpr (std::is_floating_point_v<Value>)
  {
    if (found || !(value > leastPercent && value <= greatestPercent) || !isShare(scale))
      return;
    std::array<char, 32> number{};
    std::snprintf(number.data(), number.size(), "%g", static_cast<double>(value));
    found = Implausible{path.text(), std::string("expected a number from 0 to 1, found ") + number.data() +
                                         "; it looks like percent: divide it by 100"};
  }
  else if constexpr (std::is_class_v<Value> && !std::is_same_v<Value, std::pair<float, float>>)
    forEachPart<Value>([&](const auto& part) {
      look(Path{&path, part.name}, part.in(value), part.scale.value_or(scale), found);
    });
}

}  // namespace

boost::optional<Implausible> implausibleReading(const Step& step)
{
  boost::optional<Implausible> found;
  const bool isOfOurTime = unitOf(nanosecondsOf(step.time)) == &units.back();
  forEachReading([&](const auto& known) {
    const auto& reading = known.in(step.observation);
    if (!reading || found)
      return;
    const Path path{nullptr, known.name};
    look(path, reading->value, known.scale, found);
    if (!found && isOfOurTime && reading->time != step.time)
      found = implausibleTime(reading->time);
    if (found && found->member == "time")
      found->member = Path{&path, "time"}.text();
  });
  return found;
}

boost::optional<Implausible> implausibleTime(ko::SystemClock::time_point time)
{
  const double number = nanosecondsOf(time);
  const Unit* const unit = unitOf(number);
  if (unit == nullptr || unit == &units.back())
    return {};
  return Implausible{"time", "expected nanoseconds since 1970, found " + wholeNumber(number) + "; it looks like " +
                                 unit->name + ": multiply it by " +
                                 wholeNumber(units.back().perSecond / unit->perSecond)};
}

std::string adviceOnSeconds(double seconds)
{
  const Unit* const unit = unitOf(seconds);
  if (unit == nullptr || unit == &units.front())
    return {};
  return std::string("; it looks like ") + unit->name + ": divide it by " + wholeNumber(unit->perSecond);
}

}  // namespace KV::recordings
