#include <skeigiot/session/exactnumber.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace KV::session
{

namespace
{

template <typename Number>
void append(std::string& text, Number number)
{
  std::array<char, 32> digits{};
  const auto result = std::to_chars(digits.begin(), digits.end(), number);
  text.append(digits.begin(), result.ptr);
}

template <typename Number>
void appendFloat(std::string& text, Number number)
{
  if (std::isnan(number))
    text += "nan";  // for either sign
  else
    append(text, number);
}

}  // namespace

void appendExact(std::string& text, float number)
{
  appendFloat(text, number);
}

void appendExact(std::string& text, double number)
{
  appendFloat(text, number);
}

void appendExact(std::string& text, int number)
{
  append(text, number);
}

void appendExactSeconds(std::string& text, Duration duration)
{
  constexpr std::int64_t perSecond = 1'000'000'000;
  const std::int64_t seconds = duration.count() / perSecond;
  const std::int64_t rest = std::abs(duration.count() % perSecond);
  if (duration.count() < 0 && seconds == 0)
    text += '-';
  append(text, seconds);
  if (rest == 0)
    return;
  std::string decimals = std::to_string(perSecond + rest);  // a 1, then the nine decimals
  decimals[0] = '.';
  decimals.erase(decimals.find_last_not_of('0') + 1);
  text += decimals;
}

}  // namespace KV::session
