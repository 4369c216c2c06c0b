#include "commands/stream.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/session/outputstream.hpp>
#include <skeigiot/session/stream.hpp>
#include "cli/interruption.hpp"
#include "cli/lineinput.hpp"
#include "cli/livearguments.hpp"
#include "cli/messages.hpp"
#include "cli/sessionoptions.hpp"
#include "cli/waiting.hpp"
#include "terminal/terminal.hpp"
#include "terminal/terminalstream.hpp"

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <iostream>
#include <memory>
#include <string_view>

namespace KV::tools
{

namespace
{

const char* const description = "Answers live observations with the estimate of the person";

const char* const footer =
    R"(Reads JSON Lines from standard input. Each line is a step, as in a recording, and is answered at once with a line of
JSON on standard output. The time of a line is optional. A line may have two members that recordings do not have:
  boundaries  boundaries of the library to set, such as {"positive":0.3,"lookingAtRobot":0.7}
  leave       list of the numbers of persons to forget

An answer has these members:
  line, time                         number of the line that it answers, and nanoseconds since 1970
  updated                            true if the line updated the person; false if it waits for the next update
  person, seen, valence, ...         the present state of the person, as in 'skeigiot replay --jsonl'
  agitation, excited                 ambiance of the room, if the line has the room's activity
  verdicts                           verdicts on the scopes that the line stops
  warnings                           warnings of the library
  error                              the line was refused and changed nothing; besides, only line is there

The command ends at the end of the input, when it is interrupted or terminated, and when the reader of its answers has
gone.

Example, in which the valence of a person rises with joy and falls with sorrow:
  for score in joy joy sorrow sorrow; do
    echo '{"person":1,"observation":{"expressions":{"'$score'":{"value":1,"confidence":1}}}}'; sleep 0.2
  done | skeigiot stream)";

constexpr std::size_t longestLine = recordings::InputFile::longestLine;

void waitUntilWritable(int fileDescriptor)
{
  std::vector<pollfd> descriptors{{fileDescriptor, POLLOUT, 0}};
  while (!waitFor(descriptors))
  {}
}

void waitUntilReadable(int fileDescriptor)
{
  std::vector<pollfd> descriptors{{fileDescriptor, POLLIN, 0}};
  while (!waitFor(descriptors))
  {}
}

void answerWhatIsThere(LineInput& input, session::Stream& stream, std::ostream& output)
{
  std::string_view line;
  for (;;)
  {
    const LineInput::Line kind = input.take(line);
    if (kind == LineInput::Line::NotYetHere)
      return;
    output << (kind == LineInput::Line::TooLong ? stream.answerToLongLine(longestLine) : stream.answer(line));
    waitUntilWritable(STDOUT_FILENO);
    output.flush();
  }
}

struct Arguments
{
  session::StreamTimes times = session::StreamTimes::Arrival;
  session::Cycle cycle;
};

void answerAll(const Arguments& arguments)
{
  StandardOutput output;
  session::Stream stream(arguments.times, wallClock, arguments.cycle);
  LineInput input(longestLine);
  bool more = true;
  while (more)
  {
    waitUntilReadable(STDIN_FILENO);
    more = input.readFrom(STDIN_FILENO);
    answerWhatIsThere(input, stream, output);
  }
}

/// Explains to a person who started it without an input what it waits for.
void greet()
{
  if (isTerminal(STDIN_FILENO))
    Messages(std::cerr, false)
        .note(
            "waiting for lines of JSON with observations of persons, such as\n"
            R"(  {"person":1,"observation":{"expressions":{"joy":{"value":1,"confidence":1}}}})"
            "\n  Ctrl-D ends the input; 'skeigiot stream --help' describes the lines");
}

/// Ends when the input ends or when the answers have no reader any more; neither is a failure.
ExitStatus run(const Arguments& arguments)
{
  greet();
  try
  {
    answerAll(arguments);
  }
  catch (const Interrupted&)
  {}
  catch (const session::WriteError& error)
  {
    if (!error.pipeClosed())
      throw;
  }
  return Success;
}

}  // namespace

void addStreamCommand(CLI::App& app, ExitStatus& status)
{
  const auto arguments = std::make_shared<Arguments>();
  CLI::App& command = *app.add_subcommand("stream", description);
  addTimesOption(command, arguments->times);
  addCycleOption(command, arguments->cycle);
  command.footer(footer);
  command.callback([arguments, &status] { status = run(*arguments); });
}

}  // namespace KV::tools
