#include "argumentparsing.hpp"

#include <cmath>

namespace tools
{

bool isPositive(double number)
{
  return std::isfinite(number) && number > 0.;
}

bool isShare(double number)
{
  return number >= 0. && number <= 1.;
}

bool isFinite(double number)
{
  return std::isfinite(number);
}

CLI::Option* addNumber(CLI::App& command, const std::string& name, const std::string& help, const std::string& unit,
                       const std::string& wanted, const std::function<bool(double)>& isGood,
                       const std::function<void(double)>& set)
{
  const auto take = [=](const std::string& text) {
    const auto number = parseNumber<double>(name, text);
    if (!isGood(number))
      throw CLI::ValidationError(name, "expected " + wanted + ", found " + quote(text));
    set(number);
  };
  return command.add_option_function<std::string>(name, take, help)->type_name(unit);
}

}  // namespace tools
