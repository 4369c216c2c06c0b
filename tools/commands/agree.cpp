#include "commands/agree.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/interruption.hpp"
#include "cli/labelarguments.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/standardinput.hpp"
#include "terminal/agreementtext.hpp"
#include "terminal/terminal.hpp"
#include "terminal/terminalstream.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/session/agreementrecorder.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/replacedfile.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace KV::tools
{

namespace
{

const char* const description = "Compares the estimate with labels that coders gave to the recording";

const char* const footer =
    R"(Files of labels: ELAN .eaf, Praat TextGrid, events of BORIS (CSV, TSV), label tracks of Audacity, and CSV. A CSV has the
columns start, end, value (a label) or time, value (a number), and person, coder and tier if there are several. Times
are in seconds since the start of the recording. If a file names no coder, the name of the file is used.

A label is a state: negative, neutral, positive; engaged, not-engaged; or the name of a zone, such as LookingAtRobot.
Use --label to assign a state to any other label. Time without a label is left out, unless --unlabelled assigns a state
to it.

The comparison counts time: an update holds until the next one, for at most one second. States are compared by Cohen's
kappa, accuracy, F1 of each state, and the confusion table; values by Lin's concordance correlation (ccc), Pearson's
correlation, and the root mean squared error. All measures are computed twice: at the times of the labels, and at the
delay with the best agreement, which is positive if the labels come later than the estimate. If there are several
coders, they are also compared with each other. Do not expect better agreement of an estimate.

Intervals contain 95 % of 1000 resamples: of persons if there are at least 5, otherwise of blocks of 10 s. The seed is
fixed.

Exit status: 0 if something was compared, 2 if the recording, the labels or the command line cannot be used.

Examples:
  skeigiot agree face.csv --labels anna.eaf --label "smiling=positive" --unlabelled neutral
  skeigiot agree face.csv --labels anna.csv --labels ben.csv --value valence --scale 1..9 --json)";

constexpr double greatestDelay = 60.;  // [s]

/// All options of the command line.
struct Arguments
{
  session::SessionArguments session;
  ReadingArguments reading;
  std::vector<std::string> labels;
  session::Cycle cycle;
  session::AgreementOptions agreement;
  std::string csv;
  bool force = false;
  bool json = false;
};

void addDelayOption(CLI::App& command, session::AgreementOptions& agreement)
{
  addNumber(
      command, "--max-delay", "Longest delay to try, in both directions (5)", "SECONDS", "a number from 0 to 60",
      [](double seconds) { return seconds >= 0. && seconds <= greatestDelay; },
      [&agreement](double seconds) { agreement.maximalDelay = seconds; })
      ->group(labelGroup);
}

void addOptions(CLI::App& command, Arguments& arguments)
{
  command.add_option("RECORDING", arguments.session.paths, "Inputs of one session; \"-\" is standard input")
      ->required()
      ->type_name("");
  addTexts(command, "--labels", "File of labels. May be given several times, for several coders", "FILE",
           [&arguments](const std::string& text) { arguments.labels.push_back(text); })
      ->required();
  addOffsetOption(command, arguments.session.offsets);
  command.add_flag("--json", arguments.json, "As JSON");
  command
      .add_option("--csv", arguments.csv,
                  "Write all measures and tables to a file, one number in each row; \"-\" is "
                  "standard\noutput, instead of text")
      ->type_name("FILE");
  addForceOption(command, arguments.force);
  addLabelOptions(command, arguments.agreement);
  addDelayOption(command, arguments.agreement);
  addCycleOption(command, arguments.cycle);
  addReadingOptions(command, arguments.reading);
  addBoundaryOptions(command);
}

/// \throws Error, CLI::ValidationError if there is not exactly one session.
session::SessionInputs onlySession(session::SessionArguments arguments, const std::string& format)
{
  arguments.format = format;
  const session::SessionPlan plan = planNamedSessions(arguments);
  if (plan.sessions.size() > 1)
    throw CLI::ValidationError("RECORDING", "there are several in the folder: name one of them");
  return plan.sessions.front();
}

/// \throws Error if the recording cannot be read to its end.
void play(const Arguments& arguments, const session::SessionInputs& inputs, session::AgreementRecorder& recorder,
          Messages& messages)
{
  session::PlayerOptions options;
  options.skipBad = arguments.reading.skipBad;
  options.cycle = arguments.cycle;
  const session::Player player(options, [](const session::Progress&) {
    Interruption::check();
    return true;
  });
  const session::Outcome outcome =
      player.play([&] { return session::openSession(inputs, openerOf(arguments.reading)); }, {&recorder});
  for (const std::string& text : outcome.warningLines())
    messages.note("warning: " + text);
  if (outcome.badLines > 0)
    messages.note(named(inputs).name() + ": " + outcome.skippedText());
  if (outcome.error)
    throw recordings::Error(*outcome.error);
}

/// Makes the file of the table; nothing if it is not wanted.
///
/// \throws OutputRefused if it would overwrite another file.
std::unique_ptr<session::ReplacedFile> makeTable(const Arguments& arguments, const session::SessionInputs& inputs)
{
  session::OutputCheck check(arguments.force);
  check.protect(inputs);
  check.protect(arguments.reading.options.mapping);
  for (const std::string& path : arguments.labels)
    check.protect(path);
  if (arguments.csv != "-")
    check.admit("-");
  if (arguments.csv.empty())
    return nullptr;
  return std::make_unique<session::ReplacedFile>(arguments.csv, check);
}

void write(const Arguments& arguments, const session::Agreement& agreement, session::ReplacedFile* table)
{
  if (table != nullptr)
  {
    session::writeAsCsv(table->stream(), agreement);
    table->commit();
    if (arguments.csv == "-")
      return;
  }
  StandardOutput output;
  if (arguments.json)
    session::writeAsJson(output, agreement);
  else
    output << agreementText(agreement, Style(useColors(ColorChoice::Auto, STDOUT_FILENO)));
  output.flush();
}

ExitStatus run(const Arguments& arguments)
{
  if (arguments.json && arguments.csv == "-")
    throw CLI::ValidationError("--json", "and --csv - both write to standard output: give only one of both");
  Messages messages(std::cerr, false);
  try
  {
    const session::SessionInputs inputs = onlySession(arguments.session, arguments.reading.format);
    const std::unique_ptr<session::ReplacedFile> table = makeTable(arguments, inputs);
    const std::vector<recordings::Labels> labels = readLabelFiles(arguments.labels, messages);
    session::AgreementRecorder recorder;
    play(arguments, inputs, recorder, messages);
    const session::Agreement agreement = recorder.compare(labels, arguments.agreement);
    for (const std::string& warning : agreement.warnings)
      messages.note("warning: " + warning);
    write(arguments, agreement, table.get());
    return Success;
  }
  catch (const recordings::Error& error)
  {
    messages.error(messageOf(error));
  }
  catch (const session::OutputRefused& refused)
  {
    messages.error(messageOf(refused));
  }
  catch (const std::invalid_argument& error)
  {
    messages.error(error.what());
  }
  return BadInput;
}

}  // namespace

void addAgreeCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("agree", description);
  addOptions(command, *arguments);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace KV::tools
