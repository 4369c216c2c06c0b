#pragma once

#include <boost/optional/optional.hpp>

#include <charconv>
#include <string>
#include <system_error>

namespace KV::session
{

/// Reads all of the text as a number, in any locale; nothing if the text is not a number.
template <typename Number>
boost::optional<Number> numberIn(const std::string& text)
{
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end)
    return boost::none;
  return number;
}

}  // namespace KV::session
