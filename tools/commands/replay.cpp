#include "commands/replay.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/givenoptions.hpp"
#include "cli/labelarguments.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/standardinput.hpp"
#include "commands/replayrun.hpp"
#include "terminal/terminalstream.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/labelexport.hpp>
#include <skeigiot/session/report.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace KV::tools
{

namespace
{

const char* const description = "Estimates valence and attention of the persons in a recording";

const char* const footer =
    R"(Inputs: files that you name together are one session, merged by time. Name the file with the face first. Its steps
set the timing: a reading of another file joins the next step about the same person, within 0.2 s. Times that count
from 0 start together, at a fixed date; times since 1970 are not changed. If you name a folder, each recording in it
is a session of its own.

Updates: a person is updated 10 times a second, at any rate of observations. --cycle sets another rate; with --cycle
recorded, each step of the recording makes an update.

Output: first the result in a sentence, then the timeline. A row of the timeline has the mean valence (-1 negative to
1 positive) and the mean attention (0 to 1), each with its confidence (0 to 1). It also has the most frequent zone, in
which left and right are the person's own, and the most frequent pleasure state. The body language describes the head:
up and left count as uneasy, down and right as at ease. An estimate without any evidence is unknown. Equal rows in
sequence are one line. With --explain, each row has the sources that moved valence and attention most, with their sums.

Verdict: a scope is "positive", "neutral" or "negative" by its updates, weighted by their confidence, or "unknown" if
the mean confidence is too low.

Exports have a line for each update of each person, with these fields:
  recording                          number of the session, from 1
  person                             identifier
  time, clock                        seconds since the start of the recording, and since 1970-01-01 UTC;
                                     clock is empty if the recording has no date
  seen                               whether the person was observed in this update
  valence, valence_confidence        -1 to 1, 0 to 1
  valence_binary                     1 above 0.2, -1 from -0.2 downwards, else 0
  unsmoothed_valence_binary, unsmoothed_valence_confidence
                                     the same, of a second valence that the same forces move
  attention, attention_confidence    0 to 1 each
  zone                               LookingAtRobot, LookingUp, ..., LookingDownRight, or Unknown
  pleasure                           positive, neutral, negative, or unknown
  ease, ease_confidence              of the body language: -0.5 to 0.5, 0 to 1
  valence_known, attention_known     0 without any evidence so far: the numbers then mean nothing
  name                               of the person, if the recording has one
  file                               path of the recording, below its folder or as you gave it

The summary has a row for each recording, person and scope. It has the verdict, the number of updates, and the share of
the time in which the person was seen. It also has the means of valence and attention with their confidences, and the
shares of zones and pleasure states. A field is empty if its value was never known.

Labels: --eaf and --audacity write the results as labels, which coders see in their own program. Each person has zones,
pleasure states, verdicts, and the mean valence and attention of each second. --beside keeps the coders' own labels in
that file. Such a file is only replaced with --force, since people edit it. --scopes makes a scope of each label of a
coder.

Exit status: 0 for success; 2 if a recording or the command line cannot be used (results before the bad input are
still shown and exported); 1 for any other error, such as an export that cannot be written.

Examples:
  skeigiot face.csv
  ssh robot cat face.csv | skeigiot replay -
  skeigiot replay face.csv --scope greeting=0..12.5 --scope goodbye=50..
  skeigiot replay face.csv voice.csv touch.csv --offset voice.csv=0.25
  skeigiot replay recordings/ --csv states.csv --summary summary.csv
  skeigiot replay face.csv --scopes anna.eaf:task --beside anna.eaf --eaf anna-estimate.eaf
  skeigiot replay face.csv --quiet --csv - | column -s , -t | less -S)";

const char* const reportOption = "--report";
const char* const besideOption = "--beside";

/// All options of the command line.
struct Arguments
{
  ReplayOptions replay;
  session::SessionArguments sessions;
  ReadingArguments reading;
  ScopesArguments scopes;
  std::string coders;  // file of labels that exports of labels keep
  ColorChoice color = ColorChoice::Auto;
};

void addSessionOptions(CLI::App& command, Arguments& arguments)
{
  const std::string group = "Sessions";
  command
      .add_option("RECORDING", arguments.sessions.paths, "Files to replay, or folders of them; \"-\" is standard input")
      ->required()
      ->type_name("");
  addOffsetOption(command, arguments.sessions.offsets)->group(group);
  command
      .add_flag("--separately", arguments.sessions.separately,
                "Replay each file as a session of its own; without it, all files are\none session")
      ->group(group);
  addCycleOption(command, arguments.replay.cycle)->group(group);
  addNumber(
      command, "--jobs",
      "Number of sessions to replay at the same time; the output does not\nchange (default: one for each core)",
      "NUMBER", "a whole number from 1 to 1024",
      [](double number) { return number >= 1. && number <= 1024. && number == std::floor(number); },
      [&arguments](double number) { arguments.replay.jobs = static_cast<std::size_t>(number); })
      ->group(group);
}

void addShowingOptions(CLI::App& command, Arguments& arguments)
{
  const std::string group = "Output";
  addScopeOption(command, arguments.replay.scopes)->group(group);
  addScopesOptions(command, arguments.scopes, group);
  addNumber(
      command, "--step", "Length of a row of the timeline (default: chosen for about 40 rows)", "SECONDS",
      "a number from 0.001 on", [](double seconds) { return seconds >= 0.001 && seconds < 1e9; },
      [&arguments](double seconds) {
        arguments.replay.step = session::Duration(static_cast<session::Duration::rep>(std::llround(seconds * 1e9)));
      })
      ->group(group);
  addChoice<ColorChoice>(
      command, "--color", "auto (default: on a terminal, unless NO_COLOR is set), always, never", "WHEN",
      {{"auto", ColorChoice::Auto}, {"always", ColorChoice::Always}, {"never", ColorChoice::Never}}, arguments.color)
      ->group(group);
  command
      .add_flag("--explain", arguments.replay.explain,
                "Show in the timeline the sources that moved valence and attention most")
      ->group(group);
  command.add_flag("-q,--quiet", arguments.replay.quiet, "Write only errors")->group(group);
}

/// Returns the option that exports in this format: the format's name, except for recordings.
std::string exportOption(const session::ExportFormat& format)
{
  return format.name == "recording" ? "--to-jsonl" : "--" + format.name;
}

void addExportOptions(CLI::App& command, Arguments& arguments)
{
  const std::string group = "Exports (\"-\" is standard output, which then has nothing else)";
  for (const session::ExportFormat& format : session::exportFormats())
  {
    const auto add = [&replay = arguments.replay, name = format.name](const std::string& target) {
      replay.exports[name] = target;
    };
    command.add_option_function<std::string>(exportOption(format), add, "Write " + format.description)
        ->type_name("FILE")
        ->group(group);
  }
  command
      .add_option(
          besideOption, arguments.coders,
          "File of labels that --eaf and --audacity keep beside the new ones, of any\nformat that \"agree\" reads")
      ->type_name("FILE")
      ->group(group);
  command
      .add_option_function<std::string>(
          reportOption, [&replay = arguments.replay](const std::string& target) { replay.report = target; },
          "Write an HTML report, as \"skeigiot report\" does; not to standard output")
      ->type_name("FILE")
      ->group(group);
  addForceOption(command, arguments.replay.force)->group(group);
}

/// Returns whether all inputs can be read without waiting, unlike a pipe or standard input: a thread that waits cannot
/// be interrupted.
bool areFiles(const std::vector<std::string>& paths)
{
  return std::none_of(paths.begin(), paths.end(), [](const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    return isStandardInput(path) || (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
                                     !std::filesystem::is_directory(status));
  });
}

/// \throws CLI::ValidationError if a file would hold several sessions and its format takes one.
void checkSessionsOfExports(const ReplayOptions& options)
{
  if (options.sessions.size() == 1)
    return;
  for (const auto& [name, target] : options.exports)
  {
    const session::ExportFormat& format = session::exportFormat(name);
    if (!format.oneSession.empty())
      throw CLI::ValidationError(exportOption(format), "needs a single session: " + format.oneSession);
  }
}

/// Reads the file of labels that exports keep.
///
/// \throws Error if the file cannot be read.
/// \throws CLI::ValidationError if no export keeps it.
void keepLabels(Arguments& arguments)
{
  if (arguments.coders.empty())
    return;
  arguments.replay.otherInputs.push_back(arguments.coders);
  for (const auto& [name, target] : arguments.replay.exports)
    if (session::isLabelExport(name))
      arguments.replay.changedFormats.emplace(name, session::labelExport(name, arguments.coders));
  if (arguments.replay.changedFormats.empty())
    throw CLI::ValidationError(besideOption, "needs --eaf or --audacity, whose file keeps these labels");
}

/// \throws CLI::ValidationError if this replay can have no report.
void checkReport(const ReplayOptions& options)
{
  if (!options.report)
    return;
  if (!session::Report::isAvailable())
    throw CLI::ValidationError(reportOption, "this command was built without the HTML report, which needs npm");
  if (*options.report == "-")
    throw CLI::ValidationError(reportOption, "needs a file; standard output shows the replay");
  if (options.sessions.size() != 1)
    throw CLI::ValidationError(reportOption,
                               "writes one session: name the inputs of one recording, or use \"skeigiot report\" to "
                               "write a folder of reports");
}

/// Fills in the sessions, and the options of each that follow from them.
///
/// \throws Error, CLI::ValidationError if these sessions are impossible.
void plan(Arguments& arguments, Messages& messages)
{
  arguments.sessions.format = arguments.reading.format;
  session::SessionPlan plan = planNamedSessions(arguments.sessions);
  arguments.replay.sessions = std::move(plan.sessions);
  for (const std::string& note : plan.notes)
    messages.note(note);
  if (!areFiles(arguments.sessions.paths))
    arguments.replay.jobs = 1;
  checkSessionsOfExports(arguments.replay);
  readScopes(arguments.scopes, messages, arguments.replay.scopes, arguments.replay.otherInputs);
  keepLabels(arguments);
  checkReport(arguments.replay);
}

ExitStatus run(Arguments& arguments)
{
  Messages messages(std::cerr, arguments.replay.quiet);
  try
  {
    plan(arguments, messages);
  }
  catch (const recordings::Error& error)
  {
    messages.error(error.what());
    return BadInput;
  }
  StandardOutput output;
  return replay(arguments.replay,
                {openerOf(arguments.reading), output,
                 std::clamp(terminalWidth(STDOUT_FILENO, widestTable), narrowestTable, widestTable),
                 Style(useColors(arguments.color, STDOUT_FILENO)), std::cerr, isTerminal(STDERR_FILENO)});
}

}  // namespace

void addReplayCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("replay", description);
  arguments->replay.jobs = std::max(1U, std::thread::hardware_concurrency());
  addSessionOptions(command, *arguments);
  addShowingOptions(command, *arguments);
  addExportOptions(command, *arguments);
  addReadingOptions(command, arguments->reading);
  addBoundaryOptions(command);
  command.footer(footer);
  command.callback([arguments, &command, &status] {
    arguments->replay.skipBad = arguments->reading.skipBad;
    arguments->replay.format = arguments->reading.format;
    arguments->replay.givenOptions = givenReadingOptions(command);
    arguments->replay.otherInputs = {arguments->reading.options.mapping};
    status = run(*arguments);
  });
}

}  // namespace KV::tools
