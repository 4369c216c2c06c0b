#include "inspectcommand.hpp"

#include "inspectionreport.hpp"
#include "messages.hpp"
#include "outputstream.hpp"
#include "readingarguments.hpp"
#include "terminal.hpp"
#include "timelinetable.hpp"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

namespace tools
{

namespace
{

const char* const footer =
    R"(Reads the whole recording, over bad lines. Readings are named as in JSON Lines; scores with confidence 0 do not count.

Exit status: 0 if all of it can be read, 2 if a line, or the rest of the file, cannot.)";

struct Arguments
{
  std::string path;
  ReadingArguments reading;
  bool json = false;
};

ExitStatus run(const Arguments& arguments)
{
  try
  {
    const InspectionReport report = inspect(arguments.path, arguments.reading.format, arguments.reading.options);
    OutputStream output(STDOUT_FILENO, "standard output");
    if (arguments.json)
      writeAsJson(output, report);
    else
      writeAsText(output, report, std::clamp(terminalWidth(STDOUT_FILENO, widestTable), narrowestTable, widestTable));
    output.flush();
    return report.badLines == 0 && report.error.empty() ? Success : BadInput;
  }
  catch (const RecordingError& error)
  {
    Messages(std::cerr, false).error(error.what());
    return BadInput;
  }
}

}  // namespace

void addInspectCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("inspect", "Tells what is in a recording, and how it is read");
  command.add_option("RECORDING", arguments->path, "File to look into")->required()->type_name("");
  command.add_flag("--json", arguments->json, "As JSON");
  addReadingOptions(command, arguments->reading);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace tools
