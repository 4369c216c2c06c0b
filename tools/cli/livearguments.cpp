#include "cli/livearguments.hpp"

#include "cli/argumentparsing.hpp"

#include <chrono>

namespace KV::tools
{

CLI::Option* addTimesOption(CLI::App& command, session::StreamTimes& times)
{
  return addChoice<session::StreamTimes>(
      command, "--times",
      "Clock during a line. arrival: the time at which the line arrived (default).\n"
      "lines: the member time of the line, which is then required",
      "WHICH", {{"arrival", session::StreamTimes::Arrival}, {"lines", session::StreamTimes::Lines}}, times);
}

session::TimePoint wallClock()
{
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return session::TimePoint(session::Duration(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
}

}  // namespace KV::tools
