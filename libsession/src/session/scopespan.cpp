#include <skeigiot/session/scopespan.hpp>

#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace KV::session
{

namespace
{

[[noreturn]] void refuse(const std::string& text, const std::string& why)
{
  throw std::invalid_argument("'" + text + "' is not NAME=FROM..TO: " + why);
}

Duration parseSeconds(const std::string& seconds, const std::string& span)
{
  double number = 0.;
  const char* const end = seconds.data() + seconds.size();
  const auto [rest, error] = std::from_chars(seconds.data(), end, number);
  if (error != std::errc() || rest != end || !std::isfinite(number) || number < 0.)
    refuse(span, "'" + seconds + "' is no time in seconds");
  const double nanoseconds = std::round(number * 1e9);
  if (nanoseconds >= static_cast<double>(std::numeric_limits<Duration::rep>::max()))
    refuse(span, "'" + seconds + "' is too far away");
  return Duration(static_cast<Duration::rep>(nanoseconds));
}

}  // namespace

ScopeSpan parseScopeSpan(const std::string& text)
{
  const std::size_t equals = text.rfind('=');  // a name may contain one, a time may not
  if (equals == std::string::npos)
    refuse(text, "'=' is missing");
  if (equals == 0)
    refuse(text, "the name is missing");

  const std::string times = text.substr(equals + 1);
  const std::size_t dots = times.find("..");
  if (dots == std::string::npos)
    refuse(text, "'..' is missing");
  const std::string from = times.substr(0, dots);
  const std::string to = times.substr(dots + 2);

  ScopeSpan span;
  span.name = text.substr(0, equals);
  if (!from.empty())
    span.from = parseSeconds(from, text);
  if (!to.empty())
    span.to = parseSeconds(to, text);
  if (span.to && *span.to < span.from)
    refuse(text, "it ends before it begins");
  return span;
}

}  // namespace KV::session
