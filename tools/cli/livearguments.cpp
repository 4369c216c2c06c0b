#include "cli/livearguments.hpp"

#include "cli/argumentparsing.hpp"

#include <chrono>

namespace KV::tools
{

CLI::Option* addTimesOption(CLI::App& command, session::StreamTimes& times)
{
  return addChoice<session::StreamTimes>(
      command, "--times",
      "What the clock shows during a line: the time of its arrival (default), or\n"
      "its own member time, which it then must have",
      "WHICH", {{"arrival", session::StreamTimes::Arrival}, {"lines", session::StreamTimes::Lines}}, times);
}

session::TimePoint wallClock()
{
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return session::TimePoint(session::Duration(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
}

}  // namespace KV::tools
