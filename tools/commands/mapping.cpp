#include "commands/mapping.hpp"

#include "terminal/terminalstream.hpp"

#include <skeigiot/recordings/builtinmapping.hpp>

namespace KV::tools
{

void addMappingCommand(CLI::App& app, ExitStatus& status)
{
  CLI::App& command =
      *app.add_subcommand("mapping", "Prints the built-in tables of readings, to be edited for --mapping");
  command.footer(
      "Examples:\n"
      "  skeigiot mapping > mine.json\n"
      "  skeigiot replay face.csv --mapping mine.json");
  command.callback([&status] {
    StandardOutput output;
    output << recordings::builtInMapping();
    output.flush();
    status = Success;
  });
}

}  // namespace KV::tools
