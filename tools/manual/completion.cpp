#include "manual/completion.hpp"

#include "cli/argumentparsing.hpp"

#include <algorithm>
#include <cstddef>
#include <map>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const beginning =
    R"(# Completion of skeigiot for bash. Made by script/build-manual from what the command says of itself.

_skeigiot_files()
{
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_skeigiot_words()
{
  mapfile -t COMPREPLY < <(compgen -W "$2" -- "$1")
}

_skeigiot()
{
  local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} command="" i
  COMPREPLY=()

  # To bash an equals sign is a word of its own, and --color=never are three.
  if [[ $word == = ]]; then
    word=
  elif [[ $option == = ]]; then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi

  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
)";

const char* const ending = R"(}

complete -F _skeigiot skeigiot
)";

std::string joined(const std::vector<std::string>& texts, const std::string& between)
{
  return CLI::detail::join(texts, between);
}

std::vector<std::string> namesOf(const CLI::Option& option)
{
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames())
    names.push_back("-" + name);
  for (const std::string& name : option.get_lnames())
    names.push_back("--" + name);
  return names;
}

std::vector<std::string> optionNames(CLI::App& command)
{
  std::vector<std::string> all;
  for (const CLI::Option* option : command.get_options())
  {
    const std::vector<std::string> names = namesOf(*option);
    all.insert(all.end(), names.begin(), names.end());
  }
  std::sort(all.begin(), all.end());
  return all;
}

std::vector<std::string> subcommandNames(CLI::App& app)
{
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands(nullptr))
    names.push_back(command->get_name());
  return names;
}

bool takesFiles(CLI::App& command)
{
  const auto options = command.get_options();
  return std::any_of(options.begin(), options.end(), [](const CLI::Option* option) {
    return option->get_positional() && (option->get_name(true) == "RECORDING" || option->get_name(true) == "PATH");
  });
}

/// The words that an argument of the command takes; empty if each takes any text.
std::vector<std::string> wordsOfArgument(CLI::App& command)
{
  std::vector<std::string> words;
  for (CLI::Option* const option : command.get_options())
  {
    const std::vector<std::string> some = option->get_positional() ? choicesOf(*option) : std::vector<std::string>();
    words.insert(words.end(), some.begin(), some.end());
  }
  return words;
}

/// The text in single quotes, as fish reads it, without line ends.
std::string fishText(const std::string& text)
{
  std::string quoted = "'";
  for (const char c : text)
  {
    if (c == '\'' || c == '\\')
      quoted += '\\';
    quoted += c == '\n' ? ' ' : c;
  }
  return quoted + "'";
}

/// The first sentence of a description, or the line before its list.
std::string inShort(const std::string& description)
{
  const std::string text = description.substr(0, description.find(":\n"));
  return text.substr(0, text.find(". "));
}

std::string fishOption(CLI::Option& option, const std::string& condition)
{
  std::string line = "complete -c skeigiot -n " + fishText(condition);
  for (const std::string& name : option.get_snames())
    line += " -s " + name;
  for (const std::string& name : option.get_lnames())
    line += " -l " + name;
  const std::vector<std::string> words = choicesOf(option);
  const bool takesFile = option.get_type_name().rfind("FILE", 0) == 0;
  if (!words.empty())
    line += " -x -a " + fishText(joined(words, " "));
  else if (option.get_items_expected_max() != 0)
    line += takesFile ? " -r -F" : " -x";
  return line + " -d " + fishText(inShort(option.get_description())) + "\n";
}

std::string fishOptions(CLI::App& command, const std::string& condition)
{
  std::string lines;
  for (CLI::Option* option : command.get_options())
  {
    if (option->nonpositional())
      lines += fishOption(*option, condition);
  }
  return lines;
}

/// The bash code that completes the value of an option.
std::string completionOfValue(CLI::Option& option)
{
  const std::vector<std::string> words = choicesOf(option);
  if (!words.empty())
    return "_skeigiot_words \"$word\" \"" + joined(words, " ") + "\"";
  return option.get_type_name().rfind("FILE", 0) == 0 ? "_skeigiot_files \"$word\"" : ":";
}

/// The cases of a command's options with a value; options with the same completion share a case.
std::string valueCases(CLI::App& command)
{
  std::map<std::string, std::vector<std::string>> options;
  for (CLI::Option* option : command.get_options())
  {
    if (!option->nonpositional() || option->get_items_expected_max() == 0)
      continue;
    for (const std::string& name : namesOf(*option))
      options[completionOfValue(*option)].push_back("\"" + command.get_name() + " " + name + "\"");
  }
  std::string cases;
  for (const auto& [completion, patterns] : options)
    cases += "    " + joined(patterns, " | ") + ")\n      " + completion + "\n      return\n      ;;\n";
  return cases;
}

std::string wordCases(CLI::App& app)
{
  std::string cases;
  for (CLI::App* command : app.get_subcommands(nullptr))
  {
    cases += "    " + command->get_name() + ")\n";
    const std::vector<std::string> arguments = wordsOfArgument(*command);
    std::vector<std::string> offered = arguments;
    const std::vector<std::string> options = optionNames(*command);
    offered.insert(offered.end(), options.begin(), options.end());
    const std::string words = "_skeigiot_words \"$word\" \"" + joined(offered, " ") + "\"\n";
    if (takesFiles(*command))
      cases += "      if [[ $word != -* ]]; then\n        _skeigiot_files \"$word\"\n" +
               (arguments.empty() ? std::string()
                                  : "        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -W \"" +
                                        joined(arguments, " ") + "\" -- \"$word\")\n") +
               "      else\n        " + words + "      fi\n";
    else
      cases += "      " + words;
    cases += "      ;;\n";
  }
  return cases;
}

}  // namespace

std::string bashCompletion(CLI::App& app)
{
  const std::vector<std::string> commands = subcommandNames(app);
  std::string values;
  for (CLI::App* command : app.get_subcommands(nullptr))
    values += valueCases(*command);
  return std::string(beginning) + "      " + joined(commands, " | ") +
         ")\n        command=${COMP_WORDS[i]}\n        break\n        ;;\n    esac\n  done\n\n" +
         "  case \"$command $option\" in\n" + values + "  esac\n\n" + "  case $command in\n    \"\")\n" +
         "      _skeigiot_words \"$word\" \"" + joined(commands, " ") + " " + joined(optionNames(app), " ") +
         "\"\n      ((${#COMPREPLY[@]})) || _skeigiot_files \"$word\"  # a recording\n      ;;\n" + wordCases(app) +
         "  esac\n" + ending;
}

std::string fishCompletion(CLI::App& app)
{
  std::string text =
      "# Completion of skeigiot for fish. Made by script/build-manual from what the command says of itself.\n\n"
      "complete -c skeigiot -f\n";
  const std::string none = "__fish_use_subcommand";
  text += fishOptions(app, none);
  for (const CLI::App* command : app.get_subcommands(nullptr))
    text += "complete -c skeigiot -n " + none + " -a " + command->get_name() + " -d " +
            fishText(command->get_description()) + "\n";
  for (CLI::App* command : app.get_subcommands(nullptr))
  {
    const std::string inside = "__fish_seen_subcommand_from " + command->get_name();
    text += "\n";
    if (takesFiles(*command))
      text += "complete -c skeigiot -n " + fishText(inside) + " -F\n";
    if (const std::vector<std::string> words = wordsOfArgument(*command); !words.empty())
      text += "complete -c skeigiot -n " + fishText(inside) + (takesFiles(*command) ? " -a " : " -x -a ") +
              fishText(joined(words, " ")) + "\n";
    text += fishOptions(*command, inside);
  }
  return text;
}

}  // namespace KV::tools
