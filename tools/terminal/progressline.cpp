#include "terminal/progressline.hpp"

#include "terminal/bar.hpp"
#include "terminal/text.hpp"

#include <skeigiot/session/wording.hpp>

namespace KV::tools
{

ProgressLine::ProgressLine(std::ostream& stream, bool shown, Clock::duration interval)
  : _stream(stream), _shown(shown), _interval(interval), _begin(Clock::now()), _next(_begin + interval)
{}

void ProgressLine::show(double share, session::Duration reached)
{
  _show(share, session::clockText(reached, 0) + " of the recording");
}

void ProgressLine::showCount(std::size_t done, std::size_t all)
{
  _show(static_cast<double>(done) / static_cast<double>(all),
        std::to_string(done) + " of " + session::counted(all, "recording"));
}

void ProgressLine::showSessions(std::size_t done, std::size_t all, double share)
{
  std::string text = std::to_string(done) + " of " + session::counted(all, "session");
  constexpr double leastShare = 1e-3;  // from here on the time is no mere guess
  if (share >= leastShare)
  {
    const std::chrono::duration<double> spent = Clock::now() - _begin;
    const double left = spent.count() * (1. - share) / share;
    constexpr double longest = 1e7;  // [s]
    if (left < longest)
      text +=
          ", " + session::clockText(session::Duration(static_cast<session::Duration::rep>(left * 1e9)), 0) + " left";
  }
  _show(share, text);
}

void ProgressLine::_show(double share, const std::string& text)
{
  constexpr int barWidth = 24;
  erase();
  _stream << bar(share, barWidth) << ' ' << padLeft(session::percentage(share), 5) << ", " << text << std::flush;
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

}  // namespace KV::tools
