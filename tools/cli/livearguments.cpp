#include "livearguments.hpp"

#include "argumentparsing.hpp"

#include <chrono>

namespace tools
{

void addTimesOption(CLI::App& command, StreamTimes& times)
{
  addChoice<StreamTimes>(command, "--times",
                         "What the clock shows during a line: the time of its arrival (default), or\n"
                         "its own member time, which it then must have",
                         "WHICH", {{"arrival", StreamTimes::Arrival}, {"lines", StreamTimes::Lines}}, times);
}

TimePoint wallClock()
{
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return TimePoint(Duration(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
}

}  // namespace tools
