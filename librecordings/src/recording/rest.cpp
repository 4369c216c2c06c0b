#include <skeigiot/recordings/rest.hpp>

#include "recording/numbersof.hpp"

#include <cmath>
#include <stdexcept>

namespace KV::recordings
{
namespace
{
constexpr double greatestTime = 1e9;  // [s]

ko::SystemClock::duration durationOf(double seconds)
{
  return ko::SystemClock::duration(static_cast<ko::SystemClock::rep>(std::llround(seconds * 1e9)));
}

}  // namespace

Rest parseRest(const std::string& text)
{
  if (text == "learned")
    return {};
  if (text == "none")
    return {Rest::Kind::None, {}, {}};
  const auto span = numbersOf(text, "..");
  const bool isSpan = span.size() == 2 && span[0] >= 0. && span[0] < span[1] && span[1] <= greatestTime;
  if (!isSpan)
    throw std::invalid_argument("'" + text + "' is not learned, none, or a span of seconds such as 2..7.5");
  return {Rest::Kind::Span, durationOf(span[0]), durationOf(span[1])};
}

}  // namespace KV::recordings
