#include "commands/why.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/interruption.hpp"
#include "cli/messages.hpp"
#include "cli/readingarguments.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/standardinput.hpp"
#include "terminal/explanationtext.hpp"
#include "terminal/terminal.hpp"
#include "terminal/terminalstream.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/explanationjson.hpp>
#include <skeigiot/session/inquiry.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <boost/optional/optional.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

#include <unistd.h>

namespace KV::tools
{

namespace
{

const char* const description = "Explains an estimate of a person by the forces that moved it";

const char* const footer =
    R"(Only forces change an estimate. In each force, a source pulls a quantity towards a target; the weight is the share of
the way that the quantity moves.

With --at, the command shows the forces of one update, in their order: the last update of the person at or before that
time. Without a time, it is the update that changed valence or attention most. Forces of one source that follow each
other, such as those of all remembered touches, are one row with their number. A force that moves the unsmoothed
valence exactly as it moves the valence has no row; --all shows every force. If the zone changes, a row has the new
zone and the reading that decided it.

With --from, --to, or both, the command shows the share of each source in the changes of each quantity during that
span, both ends included. "moved" is the sum of all moves, up and down; "net" is their sum with signs.

The sentences below the table have shares of the total change, too.

Exit status: 0 if there is an answer, 2 if the recording or the command line cannot be used, or if it has no such
person or time.

Examples:
  skeigiot why face.csv
  skeigiot why face.csv --person 1 --at 12.5
  skeigiot why face.csv touch.csv --person 1 --from 10 --to 20 --json)";

constexpr double greatestTime = 4e9;  // [s]
constexpr std::int64_t greatestPerson = 2147483647;

/// All options of the command line.
struct Arguments
{
  session::SessionArguments session;
  ReadingArguments reading;
  session::Cycle cycle;
  boost::optional<std::int32_t> person;
  boost::optional<session::Duration> at;
  boost::optional<session::Duration> from;
  boost::optional<session::Duration> to;
  bool showsEach = false;
  bool json = false;

  bool asksForSpan() const { return from || to; }
};

void addTime(CLI::App& command, const std::string& name, const std::string& help,
             boost::optional<session::Duration>& target)
{
  addNumber(
      command, name, help, "SECONDS", "a time in seconds since the start of the recording",
      [](double seconds) { return seconds >= 0. && seconds <= greatestTime; },
      [&target](double seconds) {
        target = session::Duration(static_cast<session::Duration::rep>(std::llround(seconds * 1e9)));
      });
}

void addPerson(CLI::App& command, boost::optional<std::int32_t>& target)
{
  addNumber(
      command, "--person", "Person to explain (default: the only person)", "ID", "a whole number",
      [](double number) {
        return number == std::floor(number) && std::abs(number) <= static_cast<double>(greatestPerson);
      },
      [&target](double number) { target = static_cast<std::int32_t>(number); });
}

void addOptions(CLI::App& command, Arguments& arguments)
{
  command.add_option("RECORDING", arguments.session.paths, "Inputs of one session; \"-\" is standard input")
      ->required()
      ->type_name("");
  addOffsetOption(command, arguments.session.offsets);
  addPerson(command, arguments.person);
  addTime(command, "--at", "Explain the last update at or before that time since the start", arguments.at);
  addTime(command, "--from", "Explain all updates from that time on (default: the start)", arguments.from);
  addTime(command, "--to", "Explain all updates up to that time (default: the end)", arguments.to);
  command.add_flag("--all", arguments.showsEach, "Show every force in a row of its own, and the unsmoothed valence");
  command.add_flag("--json", arguments.json, "As JSON, with every force of the update");
  addCycleOption(command, arguments.cycle);
  addReadingOptions(command, arguments.reading);
}

/// \throws CLI::ValidationError for times that contradict each other.
void checkTimes(const Arguments& arguments)
{
  if (arguments.at && arguments.asksForSpan())
    throw CLI::ValidationError("--at", "is one moment, --from and --to are a span: give only one of both");
  if (arguments.from && arguments.to && *arguments.to < *arguments.from)
    throw CLI::ValidationError("--to", "the span ends before it begins");
}

/// \throws Error, CLI::ValidationError if there is not exactly one session.
session::SessionInputs onlySession(const session::SessionArguments& arguments)
{
  const session::SessionPlan plan = planNamedSessions(arguments);
  if (plan.sessions.size() > 1)
    throw CLI::ValidationError("RECORDING", "there are several in the folder: name one of them");
  return plan.sessions.front();
}

template <typename Explained>
void write(std::ostream& output, const Explained& explained, const std::string& name, const Arguments& arguments)
{
  if (arguments.json)
  {
    output << session::explanationJson(explained, name) << '\n';
    return;
  }
  constexpr int narrowest = 60;
  constexpr int widest = 100;
  const ExplanationLayout layout{std::clamp(terminalWidth(STDOUT_FILENO, widest), narrowest, widest),
                                 Style(useColors(ColorChoice::Auto, STDOUT_FILENO)),
                                 arguments.at ? "" : "the greatest change", arguments.showsEach};
  output << explanationText(explained, layout);
}

void answer(const Arguments& arguments)
{
  const session::SessionInputs session = onlySession(arguments.session);
  checkStandardOutput(session);
  Messages messages(std::cerr, false);
  session::Inquiry inquiry;
  inquiry.open = [&] { return session::openSession(session, openerOf(arguments.reading)); };
  inquiry.name = named(session).name();
  inquiry.person = arguments.person;
  inquiry.personName = "--person";
  inquiry.cycle = arguments.cycle;
  inquiry.skipBad = arguments.reading.skipBad;
  inquiry.note = [&messages](const std::string& text) { messages.note(text); };
  inquiry.goOn = [](const session::Progress&) {
    Interruption::check();
    return true;
  };

  StandardOutput output;
  if (arguments.at)
    write(output, session::explainMoment(inquiry, *arguments.at), inquiry.name, arguments);
  else if (!arguments.asksForSpan())
    write(output, session::explainGreatestChange(inquiry), inquiry.name, arguments);
  else
    write(output, session::explainSpan(inquiry, arguments.from.value_or(session::Duration(0)), arguments.to),
          inquiry.name, arguments);
  output.flush();
}

ExitStatus run(Arguments& arguments)
{
  checkTimes(arguments);
  arguments.session.format = arguments.reading.format;
  try
  {
    answer(arguments);
    return Success;
  }
  catch (const recordings::Error& error)
  {
    Messages(std::cerr, false).error(messageOf(error));
    return BadInput;
  }
}

}  // namespace

void addWhyCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("why", description);
  addOptions(command, *arguments);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace KV::tools
