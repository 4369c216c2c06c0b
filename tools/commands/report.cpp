#include "commands/report.hpp"

#include "cli/givenoptions.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "commands/replayrun.hpp"
#include "terminal/terminal.hpp"
#include "terminal/terminalstream.hpp"

#include <skeigiot/session/report.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <iostream>
#include <memory>
#include <utility>

#include <unistd.h>

namespace KV::tools
{

namespace
{

const char* const description = "Makes a page of what the library thought of the persons in a recording, and why";

const char* const footer =
    R"(The page is one HTML file that opens in any browser, without a network. It shows valence and attention of each person
over time with their confidences, what was observed, and what pulled; and for a moment that is clicked, every force in
order. Files named together are inputs of one session, as for "skeigiot replay".

A long recording is thinned so that the page stays below 15 MB: extremes are kept, and the page says so.

Exit status: as that of "skeigiot replay".

Examples:
  skeigiot report face.csv -o report.html
  skeigiot report face.csv voice.csv --scope greeting=0..12.5 -o report.html)";

const char* const withoutPage =
    "this command was built without the page of the report: install npm (on Debian: nodejs and npm), and build it anew";

struct Arguments
{
  ReplayOptions replay;
  session::SessionArguments sessions;
  ReadingArguments reading;
  std::string target;
};

/// \throws Error, CLI::ValidationError if there can be no such session.
void plan(Arguments& arguments)
{
  arguments.sessions.format = arguments.reading.format;
  arguments.replay.skipBad = arguments.reading.skipBad;
  arguments.replay.otherInputs = {arguments.reading.options.mapping};
  arguments.replay.shown = false;
  arguments.replay.report = arguments.target;
  arguments.replay.sessions = planNamedSessions(arguments.sessions).sessions;
  if (arguments.replay.sessions.size() != 1)
    throw CLI::ValidationError(
        "a report is about one session: name the inputs of one recording, and no folder of several");
}

ExitStatus run(Arguments& arguments)
{
  Messages messages(std::cerr, false);
  if (!session::Report::isAvailable())
  {
    messages.error(withoutPage);
    return Failure;
  }
  try
  {
    plan(arguments);
  }
  catch (const recordings::Error& error)
  {
    messages.error(error.what());
    return BadInput;
  }
  StandardOutput output;
  return replay(arguments.replay,
                {openerOf(arguments.reading), output, widestTable, Style(false), std::cerr, isTerminal(STDERR_FILENO)});
}

}  // namespace

void addReportCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("report", description);
  command.add_option("RECORDING", arguments->sessions.paths, "Files of one session")->required()->type_name("");
  command.add_option("-o,--output", arguments->target, "Where the page goes, \"-\" for standard output")
      ->required()
      ->type_name("FILE");
  addForceOption(command, arguments->replay.force);
  addOffsetOption(command, arguments->sessions.offsets);
  addScopeOption(command, arguments->replay.scopes);
  addCycleOption(command, arguments->replay.cycle);
  addReadingOptions(command, arguments->reading);
  addBoundaryOptions(command);
  command.footer(footer);
  command.callback([arguments, &command, &status] {
    arguments->replay.format = arguments->reading.format;
    arguments->replay.givenOptions = givenReadingOptions(command);
    status = run(*arguments);
  });
}

}  // namespace KV::tools
