#include "csv/personnames.hpp"

#include "input/utf8text.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>

namespace KV::recordings
{
namespace
{
// Whole numbers may be written with a fraction of 0.
std::optional<std::int32_t> wholeNumber(std::string_view text)
{
  double value = 0.0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  using Limits = std::numeric_limits<std::int32_t>;
  if (error != std::errc() || rest != end || value != std::floor(value) ||
      !(value >= static_cast<double>(Limits::min()) && value <= static_cast<double>(Limits::max())))
    return {};
  return static_cast<std::int32_t>(value);
}

}  // namespace

std::int32_t PersonNames::numberOf(std::string_view name, const Error::Place& place)
{
  if (name.empty())
    throw BadLine(place, "expected the number or name of a person, found ''");
  const auto number = wholeNumber(name);
  if (_areNumbers.value_or(number.has_value()) != number.has_value())
    throw BadLine(place, std::string("expected a ") + (*_areNumbers ? "whole number" : "name") +
                             " as in the rows before, found " + quote(name));
  _areNumbers = number.has_value();
  return number ? *number : _countedNumberOf(name, place);
}

std::string PersonNames::nameOf(std::int32_t number) const
{
  const auto index = static_cast<std::size_t>(number);
  return number >= 0 && index < _names.size() ? _names[index] : std::string();
}

std::int32_t PersonNames::_countedNumberOf(std::string_view name, const Error::Place& place)
{
  const auto found = _numbers.find(name);
  if (found != _numbers.end())
    return found->second;
  if (_numbers.size() == mostNames)
    throw Error(place, "there are more than " + std::to_string(mostNames) +
                           " names of persons: this column does not name persons");
  const auto number = static_cast<std::int32_t>(_numbers.size());
  _numbers.emplace(name, number);
  _names.push_back(utf8Of(name));
  return number;
}

}  // namespace KV::recordings
