#include "ros/rosarguments.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/nearest.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>

namespace KV::tools
{

namespace
{

constexpr std::array<std::string_view, 18> parameterOptions = {
    "--cycle",          "--times",         "--hold",    "--silence",     "--record",        "--jsonl",
    "--ros-distro",     "--rosbridge",     "--look-at", "--rest",        "--camera-height", "--mirrored",
    "--min-confidence", "--au-full-scale", "--mapping", "--head-joints", "--head-base",     "--use-sim-time"};
const std::string boundaryPrefix = "--boundary-";

/// Returns the name of the option as a parameter.
std::string parameterNameOf(const std::string& option)
{
  const bool isBoundary = option.rfind(boundaryPrefix, 0) == 0;
  std::string name = option.substr(isBoundary ? boundaryPrefix.size() : 2);
  std::replace(name.begin(), name.end(), '-', '_');
  return isBoundary ? "boundary." + name : name;
}

bool isParameter(const std::string& option)
{
  return option.rfind(boundaryPrefix, 0) == 0 ||
         std::find(parameterOptions.begin(), parameterOptions.end(), option) != parameterOptions.end();
}

/// Reads a truth as YAML has it.
///
/// \throws std::invalid_argument for another text.
bool truthOf(std::string text)
{
  const std::string given = text;
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) { return std::tolower(letter); });
  for (const char* const word : {"true", "yes", "on"})
    if (text == word)
      return true;
  for (const char* const word : {"false", "no", "off"})
    if (text == word)
      return false;
  throw std::invalid_argument("expected true or false, found " + recordings::quote(given));
}

/// Sets options of a command by the names of parameters.
class Setter
{
public:
  explicit Setter(CLI::App& command)
  {
    for (CLI::Option* const option : command.get_options())
    {
      const std::string name = option->get_name();
      if (isParameter(name))
        _options[parameterNameOf(name)] = option;
      else if (name.size() > 2)
        _otherOptions[parameterNameOf(name)] = name;
      if (option->count() > 0)
        _given.insert(option);
    }
  }

  /// \throws std::invalid_argument for a parameter that is not there, or has a wrong value.
  void set(const RosParameter& parameter) const
  {
    const auto found = _options.find(parameter.name);
    try
    {
      if (found != _options.end())
        _set(*found->second, parameter.value);
      else if (!parameter.isForAll)
        _throwUnknown(parameter.name);
    }
    catch (const std::invalid_argument& error)
    {
      throw std::invalid_argument(parameter.place + ": " + parameter.name + ": " + error.what());
    }
  }

private:
  void _set(CLI::Option& option, const std::string& value) const
  {
    const bool isFlag = option.get_items_expected_max() == 0;
    const std::string text = isFlag ? (truthOf(value) ? "true" : "false") : value;
    if (_given.count(&option) > 0)
      return;
    try
    {
      option.clear();
      option.add_result(text);
      option.run_callback();
    }
    catch (const CLI::Error& error)
    {
      const std::string why = error.what();
      const std::string prefix = option.get_name() + ": ";
      throw std::invalid_argument(why.rfind(prefix, 0) == 0 ? why.substr(prefix.size()) : why);
    }
  }

  [[noreturn]] void _throwUnknown(const std::string& name) const
  {
    const auto option = _otherOptions.find(name);
    if (option != _otherOptions.end())
      throw std::invalid_argument("is no parameter: give " + option->second + " in the command line");
    std::vector<std::string> names;
    for (const auto& known : _options)
      names.push_back(known.first);
    const auto similar = nearest(name, names);
    throw std::invalid_argument("there is no such parameter" +
                                (similar ? "; did you mean " + recordings::quote(*similar) + "?"
                                         : "; expected one of " + CLI::detail::join(names, ", ")));
  }

  std::map<std::string, CLI::Option*> _options;      // by the name of the parameter
  std::map<std::string, std::string> _otherOptions;  // by what the name would be
  std::set<const CLI::Option*> _given;               // in the command line
};

}  // namespace

void addRosArguments(CLI::App& command, RosArguments& arguments)
{
  const std::string group = "Parameters and names of ROS";
  command
      .add_option("--params-file", arguments.parameterFiles,
                  "YAML file with parameters in the form of ROS; several times for several.\n"
                  "Of several values, the last one counts")
      ->type_name("FILE")
      ->allow_extra_args(false)
      ->group(group);
  addTexts(command, "-p,--param",
           "Parameter, such as cycle:=20; it replaces that of a file. May be given\n"
           "several times. An option of the command line replaces both",
           "NAME:=VALUE",
           [&arguments](const std::string& text) {
             for (RosParameter& parameter : parseRosParameter(text))
               arguments.parameters.push_back(std::move(parameter));
           })
      ->group(group);
  addTexts(command, "-r,--remap",
           "Other name for a topic, such as /tf:=/robot1/tf, for all topics below a\n"
           "root, such as /humans:=/robot1/humans, or for the node: __node:=NAME. May\n"
           "be given several times",
           "FROM:=TO", [&arguments](const std::string& text) { arguments.names.addRule(text); })
      ->group(group);
  command.add_flag("--ros-args", "Changes nothing: launch files of ROS write it in front of such options")
      ->group(group);
}

void applyRosParameters(CLI::App& command, const RosArguments& arguments)
{
  const Setter setter(command);
  for (const std::string& file : arguments.parameterFiles)
    for (const RosParameter& parameter : readRosParameters(file, arguments.names.node()))
      setter.set(parameter);
  for (const RosParameter& parameter : arguments.parameters)
    setter.set(parameter);
}

}  // namespace KV::tools
