#include "commands/types.hpp"

#include "cli/messages.hpp"
#include "terminal/terminalstream.hpp"
#include "terminal/typelisting.hpp"

#include <ko/type.hpp>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

namespace KV::tools
{

namespace
{

struct Arguments
{
  std::string className;
  bool json = false;
};

ExitStatus listTypes(const Arguments& arguments)
{
  std::vector<ko::StructTypeInterface*> structs = ko::registeredStructs();
  Nested nested = Nested::No;
  if (!arguments.className.empty())
  {
    ko::StructTypeInterface* const type = ko::findStruct(arguments.className);
    if (!type)
    {
      Messages(std::cerr, false).error("no struct '" + arguments.className + "' is registered; try 'skeigiot types'");
      return BadInput;
    }
    structs = {type};
    nested = Nested::Yes;
  }

  StandardOutput output;
  const auto write = arguments.json ? writeTypesAsJson : writeTypesAsText;
  write(output, structs, nested);
  output.flush();
  return Success;
}

}  // namespace

void addTypesCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("types", "Lists the records that programs can read by name");
  command.add_option("NAME", arguments->className, "Only this one, with the members of its members")->type_name("");
  command.add_flag("--json", arguments->json, "As JSON");
  command.callback([arguments, &status] { status = listTypes(*arguments); });
}

}  // namespace KV::tools
