#include "commands/help.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/words.hpp"
#include "terminal/terminalstream.hpp"

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace KV::tools
{

namespace
{

/// The help as --help shows it; App::help() would show that of "help" itself.
std::string helpOn(const CLI::App& app, const std::string& command)
{
  if (command.empty())
    return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
  return commandNamed(command, app).help(app.get_name());
}

}  // namespace

void addHelpCommand(CLI::App& app, ExitStatus& status)
{
  const auto command = std::make_shared<std::string>();
  CLI::App& help = *app.add_subcommand("help", "Shows this help, or that of a command");
  CLI::Option* const option = help.add_option("COMMAND", *command, "Name of the command")->type_name("");
  keepChoices(*option, commandNames(app));
  help.callback([&app, command, &status] {
    StandardOutput output;
    output << helpOn(app, *command);
    output.flush();
    status = Success;
  });
}

}  // namespace KV::tools
