#include <skeigiot/session/agreementoptions.hpp>

#include <skeigiot/recordings/quote.hpp>

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <system_error>

namespace KV::session
{

namespace
{

template <typename Number>
bool readWhole(const std::string& text, Number& number)
{
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

}  // namespace

void parseLabelPerson(const std::string& text, std::map<std::string, std::int32_t>& persons)
{
  const std::size_t equals = text.rfind('=');
  const std::string name = equals == std::string::npos ? std::string() : text.substr(0, equals);
  std::int32_t person = 0;
  if (!readWhole(equals == std::string::npos ? text : text.substr(equals + 1), person))
    throw std::invalid_argument("expected NAME=NUMBER or NUMBER, found " + recordings::quote(text));
  if (!persons.emplace(name, person).second)
    throw std::invalid_argument("the person " + recordings::quote(name) + " has two numbers");
}

std::pair<double, double> parseLabelScale(const std::string& text)
{
  const std::size_t dots = text.find("..");
  std::pair<double, double> scale;
  const bool isGood = dots != std::string::npos && readWhole(text.substr(0, dots), scale.first) &&
                      readWhole(text.substr(dots + 2), scale.second) && std::isfinite(scale.first) &&
                      std::isfinite(scale.second) && scale.first != scale.second;
  if (!isGood)
    throw std::invalid_argument("expected FROM..TO, two numbers that differ, found " + recordings::quote(text));
  return scale;
}

}  // namespace KV::session
