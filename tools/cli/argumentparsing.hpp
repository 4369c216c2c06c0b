#pragma once

#include <skeigiot/recordings/quote.hpp>

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <charconv>
#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace KV::tools
{

/// Reads all of the text as a number, in any locale.
///
/// \throws CLI::ValidationError which names the option.
template <typename Number>
Number parseNumber(const std::string& option, const std::string& text)
{
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || rest != end)
    throw CLI::ValidationError(option, "expected a number, found " + recordings::quote(text));
  return number;
}

bool isPositive(double number);  ///< and finite
bool isShare(double number);     ///< from 0 to 1
bool isFinite(double number);

/// Adds an option for a number for which `isGood` is true; `wanted` describes the allowed numbers.
CLI::Option* addNumber(CLI::App& command, const std::string& name, const std::string& help, const std::string& unit,
                       const std::string& wanted, const std::function<bool(double)>& isGood,
                       const std::function<void(double)>& set);

/// Adds an option that may be given several times; a std::invalid_argument from `parse` refuses its text.
CLI::Option* addTexts(CLI::App& command, const std::string& name, const std::string& help, const std::string& type,
                      const std::function<void(const std::string&)>& parse);

/// Adds an option whose text `parse` reads; a std::invalid_argument from it refuses the text. The target must outlive
/// the command.
template <typename Value>
CLI::Option* addParsed(CLI::App& command, const std::string& name, const std::string& help, const std::string& type,
                       Value (*parse)(const std::string&), Value& target)
{
  const auto take = [name, parse, &target](const std::string& text) {
    try
    {
      target = parse(text);
    }
    catch (const std::invalid_argument& error)
    {
      throw CLI::ValidationError(name, error.what());
    }
  };
  return command.add_option_function<std::string>(name, take, help)->type_name(type);
}

/// Returns the words that the option takes; empty if it takes any text.
std::vector<std::string> choicesOf(CLI::Option& option);

/// Adds these words to choicesOf(). Help and errors stay unchanged.
void keepChoices(CLI::Option& option, const std::vector<std::string>& words);

/// Adds an option that takes one of these words, and sets the target, which must outlive the command, to its value.
template <typename Value>
CLI::Option* addChoice(CLI::App& command, const std::string& name, const std::string& help, const std::string& type,
                       const std::vector<std::pair<std::string, Value>>& choices, Value& target)
{
  const auto take = [=, &target](const std::string& text) {
    std::string words;
    for (const auto& [word, value] : choices)
    {
      if (word == text)
      {
        target = value;
        return;
      }
      words += (words.empty() ? "" : ", ") + word;
    }
    throw CLI::ValidationError(name, "expected one of " + words + ", found " + recordings::quote(text));
  };
  CLI::Option* const option = command.add_option_function<std::string>(name, take, help)->type_name(type);
  std::vector<std::string> words;
  words.reserve(choices.size());
  for (const auto& choice : choices)
    words.push_back(choice.first);
  keepChoices(*option, words);
  return option;
}

}  // namespace KV::tools
