#include <skeigiot/session/cycle.hpp>

#include <charconv>
#include <stdexcept>
#include <system_error>

namespace KV::session
{

Cycle parseCycle(const std::string& text)
{
  if (text == "recorded")
    return Cycle::recorded();
  double hertz = 0.;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, hertz);
  const bool isInRange = hertz > 0. && hertz <= Cycle::highest;  // false for a NaN
  if (error != std::errc() || rest != end || !isInRange)
    throw std::invalid_argument("expected recorded or a number of updates a second above 0, up to 1000, found '" +
                                text + "'");
  return Cycle{hertz};
}

}  // namespace KV::session
