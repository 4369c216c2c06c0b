#include "cli/words.hpp"

#include "cli/nearest.hpp"
#include "cli/standardinput.hpp"

#include <skeigiot/recordings/quote.hpp>

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace KV::tools
{

namespace
{

const char* const assumedCommand = "replay";

std::vector<const CLI::App*> commandsOf(const CLI::App& app)
{
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<std::string> optionNames(const CLI::App& command)
{
  std::vector<std::string> names;
  for (const CLI::Option* const option : command.get_options())
  {
    for (const std::string& name : option->get_lnames())
      names.push_back("--" + name);
  }
  return names;
}

bool isOption(const std::string& word)
{
  return word.size() > 1 && word.front() == '-';
}

bool isThere(const std::string& word)
{
  std::error_code error;
  return isStandardInput(word) || std::filesystem::exists(word, error);
}

/// A word with a dot or a slash is a path, even if no such file exists: a better message than an unknown command.
bool isRecording(const std::string& word)
{
  return isThere(word) || word.find_first_of("./") != std::string::npos;
}

bool isOptionOf(const CLI::App& app, const std::string& word)
{
  return app.get_option_no_throw(word.substr(0, word.find('='))) != nullptr;
}

std::string unexpectedText(const std::vector<std::string>& words, const CLI::App& command)
{
  const std::string text = std::string(words.size() == 1 ? "this argument was" : "these arguments were") +
                           " not expected: " + CLI::detail::join(words, " ");
  const auto similar = nearest(words.front().substr(0, words.front().find('=')), optionNames(command));
  return similar ? text + "; did you mean '" + *similar + "'?" : text;
}

/// Returns whether the word is a recording without the command before it.
bool lackCommand(const std::vector<std::string>& words, const CLI::App& app)
{
  const std::vector<std::string> commands = commandNames(app);
  const auto isCommand = [&commands](const std::string& word) {
    return std::find(commands.begin(), commands.end(), word) != commands.end();
  };
  if (!isOption(words.front()))
    return !isCommand(words.front()) && isRecording(words.front());
  return !isOptionOf(app, words.front()) && std::none_of(words.begin(), words.end(), isCommand) &&
         std::any_of(words.begin(), words.end(), isThere);
}

}  // namespace

std::vector<std::string> commandNames(const CLI::App& app)
{
  std::vector<std::string> names;
  for (const CLI::App* const command : commandsOf(app))
    names.push_back(command->get_name());
  return names;
}

std::vector<std::string> withCommand(std::vector<std::string> words, const CLI::App& app)
{
  if (words.empty())
    throw CLI::ValidationError("expected a recording, or one of the commands " +
                               CLI::detail::join(commandNames(app), ", "));
  if (lackCommand(words, app))
    words.insert(words.begin(), assumedCommand);
  else if (!isOption(words.front()))
    commandNamed(words.front(), app);
  else if (!isOptionOf(app, words.front()))
    throw CLI::ValidationError(unexpectedText({words.front()}, app));
  return words;
}

const CLI::App& commandNamed(const std::string& name, const CLI::App& app)
{
  for (const CLI::App* const command : commandsOf(app))
  {
    if (command->get_name() == name)
      return *command;
  }
  const std::vector<std::string> names = commandNames(app);
  const auto similar = nearest(name, names);
  throw CLI::ValidationError("there is no command " + recordings::quote(name) +
                             (similar ? "; did you mean '" + *similar + "'?"
                                      : "; expected a recording, or one of " + CLI::detail::join(names, ", ")));
}

std::string describeUnexpected(const CLI::App& app)
{
  const std::vector<CLI::App*> commands = app.get_subcommands();
  return unexpectedText(app.remaining(true), commands.empty() ? app : *commands.back());
}

}  // namespace KV::tools
