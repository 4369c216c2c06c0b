#include "commands/inspect.hpp"

#include "cli/interruption.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/standardinput.hpp"
#include "commands/inspectfolder.hpp"
#include "terminal/inspectiontext.hpp"
#include "terminal/terminal.hpp"
#include "terminal/terminalstream.hpp"
#include "terminal/timelinetable.hpp"

#include <skeigiot/session/inspectionreport.hpp>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>

#include <unistd.h>

namespace KV::tools
{

namespace
{

const char* const footer =
    R"(Reads the whole recording and skips bad lines. Readings have the names of JSON Lines. Scores with confidence 0 do not
count.

Exit status: 0 if all lines can be read, 2 if a line or the rest of the file cannot be read.)";

struct Arguments
{
  std::string path;
  ReadingArguments reading;
  bool json = false;
  bool columns = false;
};

/// Returns whether it is a folder of recordings, and no bag.
bool isFolder(const std::string& path)
{
  std::error_code error;
  return std::filesystem::is_directory(path, error) &&
         !std::filesystem::exists(std::filesystem::path(path) / "metadata.yaml", error);
}

ExitStatus runOfFolder(const Arguments& arguments)
{
  Messages messages(std::cerr, false);
  const session::SessionPlan plan = session::planSessions({{arguments.path}, {}, true, arguments.reading.format});
  for (const std::string& note : plan.notes)
    messages.note(note);
  StandardOutput output;
  return inspectFolder(plan.sessions, arguments.reading, arguments.json, output, messages);
}

session::InspectionReport inspected(const Arguments& arguments)
{
  const auto goOn = [](const session::Progress&) {
    Interruption::check();
    return true;
  };
  const std::string& format = arguments.reading.format;
  if (isStandardInput(arguments.path))
    return session::inspect(standardInput(), nameOf(arguments.path), format, arguments.reading.options, goOn);
  return session::inspect(arguments.path, format, arguments.reading.options, goOn);
}

ExitStatus run(const Arguments& arguments)
{
  checkStandardOutput({{{arguments.path, {}}}});
  try
  {
    if (isFolder(arguments.path))
      return runOfFolder(arguments);
    const session::InspectionReport report = inspected(arguments);
    StandardOutput output;
    if (arguments.json)
      session::writeAsJson(output, report);
    else
      writeAsText(output, report, std::clamp(terminalWidth(STDOUT_FILENO, widestTable), narrowestTable, widestTable),
                  arguments.columns ? ShownColumns::All : ShownColumns::Families);
    output.flush();
    return report.badLines == 0 && report.error.empty() ? Success : BadInput;
  }
  catch (const recordings::Error& error)
  {
    Messages(std::cerr, false).error(error.what());
    return BadInput;
  }
}

}  // namespace

void addInspectCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("inspect", "Shows the content of a recording, and how it is read");
  command
      .add_option("RECORDING", arguments->path,
                  "File, \"-\" for standard input, or folder of recordings, which is shown\nas a table")
      ->required()
      ->type_name("");
  command.add_flag("--json", arguments->json, "As JSON");
  command.add_flag("--columns", arguments->columns,
                   "Name every column; without it, columns whose names differ only in a\nnumber are shown as one");
  addReadingOptions(command, arguments->reading);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace KV::tools
