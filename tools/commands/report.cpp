#include "commands/report.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/givenoptions.hpp"
#include "cli/labelarguments.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "commands/replayrun.hpp"
#include "commands/reportvideo.hpp"
#include "terminal/terminal.hpp"
#include "terminal/terminalstream.hpp"

#include <skeigiot/session/report.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace KV::tools
{

namespace
{

const char* const description = "Writes an HTML report of the estimates in a recording, and the forces behind them";

const char* const footer =
    R"(The report is one HTML file that opens in any browser, without a network. It shows the valence and attention of each
person over time with their confidences, the readings, and the sources that moved the estimates. Click a moment to see
all its forces. Files that you name together are one session, as in "skeigiot replay".

For a folder of recordings, the command writes a folder with a report of each, and index.html with links and small
pictures.

Labels of coders are drawn beside the estimate: states and other labels as ribbons, values as lines. Files and options
are those of "skeigiot agree". A video remains a separate file. The report has its path relative to itself, so move
both together.

A long recording is shortened so that the report stays below 15 MB. Extremes are kept, and the report says so.

Exit status: as for "skeigiot replay".

Examples:
  skeigiot report face.csv -o report.html
  skeigiot report face.csv voice.csv --scope greeting=0..12.5 -o report.html
  skeigiot report face.csv --labels anna.eaf --label "smiling=positive" --video face.mp4 -o report.html
  skeigiot report recordings/ -o pages/)";

const char* const withoutPage =
    "this command was built without the HTML report: install npm (on Debian: nodejs and npm), and build again";

struct Arguments
{
  ReplayOptions replay;
  session::SessionArguments sessions;
  ReadingArguments reading;
  ScopesArguments scopes;
  std::string target;
  std::vector<std::string> labels;
  std::string video;
};

constexpr double greatestTime = 4e9;  // [s]

/// Returns whether the recording comes from a folder that the user named.
bool isOfFolder(const session::SessionInputs& session, const session::SessionArguments& arguments)
{
  return session.inputs.front().path != arguments.paths.front();
}

/// \throws CLI::ValidationError if the target cannot be a folder of pages.
void planFolder(Arguments& arguments)
{
  if (!arguments.labels.empty() || !arguments.video.empty())
    throw CLI::ValidationError("--labels and --video belong to one recording: name a file, not a folder of several");
  const std::filesystem::path target = arguments.target;
  std::error_code error;
  const bool isOther = std::filesystem::exists(target, error) && !std::filesystem::is_directory(target, error);
  if (arguments.target == "-" || isOther || (target.extension() == ".html" && !std::filesystem::exists(target, error)))
    throw CLI::ValidationError(
        "-o", "each recording of a folder gets a report: name a folder for them, not '" + arguments.target + "'");
  arguments.replay.reportFolder = arguments.target;
  arguments.replay.jobs = std::max(1U, std::thread::hardware_concurrency());
}

/// \throws Error, CLI::ValidationError if such a session is impossible.
void plan(Arguments& arguments, Messages& messages)
{
  arguments.sessions.format = arguments.reading.format;
  arguments.replay.skipBad = arguments.reading.skipBad;
  arguments.replay.otherInputs = {arguments.reading.options.mapping, arguments.video};
  arguments.replay.otherInputs.insert(arguments.replay.otherInputs.end(), arguments.labels.begin(),
                                      arguments.labels.end());
  arguments.replay.shown = false;
  session::SessionPlan plan = planNamedSessions(arguments.sessions);
  for (const std::string& note : plan.notes)
    messages.note(note);
  arguments.replay.sessions = std::move(plan.sessions);
  if (arguments.replay.sessions.size() == 1 && !isOfFolder(arguments.replay.sessions.front(), arguments.sessions))
    arguments.replay.report = arguments.target;
  else
    planFolder(arguments);
}

/// Adds the page's parts besides the session.
void addShownBeside(CLI::App& command, Arguments& arguments)
{
  session::ReportAdditions& additions = arguments.replay.reportAdditions;
  addTexts(command, "--labels", "File of labels to draw. May be given several times, for several coders", "FILE",
           [&arguments](const std::string& text) { arguments.labels.push_back(text); });
  command.add_option("--video", arguments.video, "Video to show in the report, at the time of the cursor")
      ->type_name("FILE");
  addNumber(
      command, "--video-offset", "Second of the recording at which the video begins (0)", "SECONDS", "seconds",
      [](double seconds) { return seconds >= -greatestTime && seconds <= greatestTime; },
      [&additions](double seconds) { additions.videoOffset = seconds; });
  addLabelOptions(command, additions.labelOptions);
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
    plan(arguments, messages);
    readScopes(arguments.scopes, messages, arguments.replay.scopes, arguments.replay.otherInputs);
    session::ReportAdditions& additions = arguments.replay.reportAdditions;
    additions.labels = readLabelFiles(arguments.labels, messages);
    if (!arguments.video.empty())
      additions.video = addressOfVideo(arguments.video, arguments.target);
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
  command
      .add_option("RECORDING", arguments->sessions.paths,
                  "Files of one session, or a folder of recordings; \"-\" is standard input")
      ->required()
      ->type_name("");
  command
      .add_option(
          "-o,--output", arguments->target,
          "File for the report, \"-\" for standard output; for a folder of\nrecordings, the folder for the reports")
      ->required()
      ->type_name("FILE");
  addForceOption(command, arguments->replay.force);
  addOffsetOption(command, arguments->sessions.offsets);
  addScopeOption(command, arguments->replay.scopes);
  addScopesOptions(command, arguments->scopes, "Options");
  addCycleOption(command, arguments->replay.cycle);
  addShownBeside(command, *arguments);
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
