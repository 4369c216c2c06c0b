#include "progressline.hpp"

#include "bar.hpp"
#include "text.hpp"

namespace tools
{

ProgressLine::ProgressLine(std::ostream& stream, bool shown, Clock::duration interval)
  : _stream(stream), _shown(shown), _interval(interval), _next(Clock::now() + interval)
{}

void ProgressLine::show(double share, Duration reached)
{
  constexpr int barWidth = 24;
  erase();
  _stream << bar(share, barWidth) << ' ' << padLeft(percentage(share), 5) << ", " << clockText(reached, 0)
          << " of the recording" << std::flush;
  _onScreen = true;
  _next = Clock::now() + _interval;
}

void ProgressLine::erase()
{
  if (!_onScreen)
    return;
  _stream << "\r\033[K" << std::flush;
  _onScreen = false;
}

}  // namespace tools
