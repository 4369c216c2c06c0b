#include "cli/givenoptions.hpp"

#include <algorithm>
#include <array>

namespace KV::tools
{

namespace
{

bool isAboutReading(const CLI::Option& option)
{
  constexpr std::array groups{"How the recording is read", "Boundaries", "What labels mean"};
  constexpr std::array names{"--offset", "--separately",    "--cycle", "--scope",
                             "--scopes", "--scopes-offset", "--labels"};
  const std::string& group = option.get_group();
  const std::string name = option.get_name();
  return std::find(groups.begin(), groups.end(), group) != groups.end() ||
         std::find(names.begin(), names.end(), name) != names.end();
}

/// A text with blanks or quotes, in quotes for a shell.
std::string typed(const std::string& text)
{
  if (!text.empty() && text.find_first_of(" \t\n'\"\\$`*?;&|<>()") == std::string::npos)
    return text;
  std::string quoted = "'";
  for (const char character : text)
    quoted += character == '\'' ? "'\\''" : std::string(1, character);
  return quoted + "'";
}

}  // namespace

std::vector<std::string> givenReadingOptions(const CLI::App& command)
{
  std::vector<std::string> given;
  for (const CLI::Option* const option : command.get_options())
  {
    if (option->count() == 0 || !isAboutReading(*option))
      continue;
    if (option->get_items_expected_max() == 0)  // a flag
      given.push_back(option->get_name());
    else
      for (const std::string& value : option->results())
        given.push_back(option->get_name() + " " + typed(value));
  }
  return given;
}

}  // namespace KV::tools
