#include "commands/watch.hpp"

#include <skeigiot/session/librarylog.hpp>
#include "cli/argumentparsing.hpp"
#include "cli/livearguments.hpp"
#include "cli/messages.hpp"
#include "cli/sessionoptions.hpp"
#include "commands/livesource.hpp"
#include "commands/livetable.hpp"
#include "terminal/terminal.hpp"

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const description = "Shows live estimates of all persons in a table";

const char* const footer =
    R"(Reads the same lines from standard input as 'skeigiot stream'. The table has a row for each person. It has the valence
from -1 to 1 and the attention from 0 to 1, each with its confidence and, on a wide terminal, the last minute. The
column "zone" says where the person looks; left and right are the person's own. The column "why" has the pleasure
state, the source that moved valence or attention most in the last update, and the ease of the body language. The pane
below the table has the forces and readings of the chosen person. Persons who were not seen for a minute are left out.

A RECORDING, of any format, is played in real time. Times and rate are those of the recording.

Keys: up and down choose a person, enter shows or hides the pane, space pauses, ? shows help, q quits. The table stays
after the end of the input.

Examples:
  robot-perception | skeigiot watch
  robot-perception | tee session.jsonl | skeigiot watch
  skeigiot watch face.csv --speed 2)";

/// Returns the messages for the end; by then the terminal is restored.
std::vector<std::string> watch(const LiveArguments& arguments)
{
  LiveTable table;
  const session::LibraryLog log;  // nothing else may write to the terminal
  const std::unique_ptr<LiveSource> source = openLiveSource(arguments, table.listeners(), wallClock);
  table.show(*source);
  return source->takeNotes();
}

ExitStatus run(LiveArguments& arguments)
{
  Messages messages(std::cerr, false);
  if (arguments.recording.paths.empty() && isTerminal(STDIN_FILENO))
  {
    messages.error("expected observations on standard input, or a recording; try 'skeigiot watch --help'");
    return BadInput;
  }
  try
  {
    arguments.recording.format = arguments.reading.format;
    for (const std::string& note : watch(arguments))
      messages.note("warning: " + note);
    return Success;
  }
  catch (const recordings::Error& error)
  {
    messages.error(messageOf(error));
    return BadInput;
  }
}

}  // namespace

void addWatchCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<LiveArguments>();
  CLI::App& command = *app.add_subcommand("watch", description);
  CLI::Option* const recording = command
                                     .add_option("RECORDING", arguments->recording.paths,
                                                 "Inputs of one session to play, instead of standard input")
                                     ->type_name("");
  addNumber(
      command, "--speed", "Speed of playing: 2 is twice as fast as recorded (1)", "FACTOR",
      "a number from 0.01 to 1000", [](double speed) { return speed >= 0.01 && speed <= 1000.; },
      [arguments = arguments.get()](double speed) { arguments->speed = speed; })
      ->needs(recording);
  addOffsetOption(command, arguments->recording.offsets);
  addTimesOption(command, arguments->times)->excludes(recording);
  addCycleOption(command, arguments->cycle);
  addReadingOptions(command, arguments->reading);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace KV::tools
