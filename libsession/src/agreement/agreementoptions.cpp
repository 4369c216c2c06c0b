#include <skeigiot/session/agreementoptions.hpp>

#include "agreement/numberin.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <cmath>
#include <stdexcept>

namespace KV::session
{

void parseLabelPerson(const std::string& text, std::map<std::string, std::int32_t>& persons)
{
  const std::size_t equals = text.rfind('=');
  const std::string name = equals == std::string::npos ? std::string() : text.substr(0, equals);
  const auto person = numberIn<std::int32_t>(equals == std::string::npos ? text : text.substr(equals + 1));
  if (!person)
    throw std::invalid_argument("expected NAME=NUMBER or NUMBER, found " + recordings::quote(text));
  if (!persons.emplace(name, *person).second)
    throw std::invalid_argument("the person " + recordings::quote(name) + " has two numbers");
}

std::pair<double, double> parseLabelScale(const std::string& text)
{
  const std::size_t dots = text.find("..");
  const auto from = numberIn<double>(text.substr(0, dots));
  const auto to = dots == std::string::npos ? boost::none : numberIn<double>(text.substr(dots + 2));
  const bool isGood = from && to && std::isfinite(*from) && std::isfinite(*to) && *from != *to;
  if (!isGood)
    throw std::invalid_argument("expected FROM..TO, two numbers that differ, found " + recordings::quote(text));
  return {*from, *to};
}

}  // namespace KV::session
