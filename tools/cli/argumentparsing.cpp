#include "cli/argumentparsing.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace KV::tools
{

namespace
{

const char* const choicesMark = "choices:";

}  // namespace

std::vector<std::string> choicesOf(CLI::Option& option)
{
  try
  {
    const std::string name = option.get_validator(0)->get_name();
    if (name.rfind(choicesMark, 0) == 0)
      return CLI::detail::split(name.substr(std::string(choicesMark).size()), ',');
  }
  catch (const CLI::OptionNotFound&)
  {}
  return {};
}

void keepChoices(CLI::Option& option, const std::vector<std::string>& words)
{
  // A validator without a description does not show in the help; this one accepts everything, and keeps the words.
  const auto takeAll = [](std::string&) { return std::string(); };
  option.check(CLI::Validator(takeAll, "", choicesMark + CLI::detail::join(words, ",")));
}

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
      throw CLI::ValidationError(name, "expected " + wanted + ", found " + recordings::quote(text));
    set(number);
  };
  return command.add_option_function<std::string>(name, take, help)->type_name(unit);
}

CLI::Option* addTexts(CLI::App& command, const std::string& name, const std::string& help, const std::string& type,
                      const std::function<void(const std::string&)>& parse)
{
  const auto take = [=](const std::vector<std::string>& texts) {
    try
    {
      std::for_each(texts.begin(), texts.end(), parse);
    }
    catch (const std::invalid_argument& error)
    {
      const std::size_t comma = name.rfind(',');  // of "-s,--long" the second name
      throw CLI::ValidationError(comma == std::string::npos ? name : name.substr(comma + 1), error.what());
    }
  };
  return command.add_option_function<std::vector<std::string>>(name, take, help)
      ->type_name(type)
      ->allow_extra_args(false);
}

}  // namespace KV::tools
