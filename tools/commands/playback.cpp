#include "commands/playback.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t mostStepsAtOnce = 1000;
constexpr std::size_t mostNotes = 10;
constexpr double farAway = 1e9;  // [s]

double secondsOf(session::Duration duration)
{
  return static_cast<double>(duration.count()) * 1e-9;
}

}  // namespace

Playback::Playback(std::unique_ptr<recordings::Reader> reader, double speed,
                   std::vector<session::SessionObserver*> observers, session::Cycle cycle, Clock::time_point now)
  : _reader(std::move(reader)), _speed(speed), _session({}, std::move(observers), cycle), _start(now)
{}

void Playback::play(Clock::time_point now)
{
  if (_pausedAt)
    return;
  for (std::size_t i = 0; i < mostStepsAtOnce && !_ended && due() <= now; ++i)
  {
    if (_next)
      _take(*_next);
    _read();
  }
  if (_ended && !std::exchange(_isFinished, true))
    _session.finish();
}

Playback::Clock::time_point Playback::due() const
{
  double wait = _ended || _pausedAt ? farAway : 0.;
  if (_next && _first && !_pausedAt)
    wait = std::min(secondsOf(_next->time - *_first) / _speed, farAway);
  return _start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(wait));
}

std::string Playback::takeScopes(recordings::Step step, Clock::time_point now)
{
  if (_isFinished)
    return "the recording has ended";
  if (!_first)
    return "the recording has not begun";
  step.time = at(now);
  if (std::string refusal = _session.whyScopesCannotStart(step); !refusal.empty())
    return refusal;
  _session.play(step);
  _last = step.time;
  return {};
}

void Playback::pause(Clock::time_point now)
{
  if (!_pausedAt)
    _pausedAt = now;
}

void Playback::resume(Clock::time_point now)
{
  if (_pausedAt)
    _start += now - *_pausedAt;
  _pausedAt = boost::none;
}

session::TimePoint Playback::at(Clock::time_point now) const
{
  if (!_first)
    return session::TimePoint();
  if (!_next)
    return _last;
  const double passed = std::chrono::duration<double>(_pausedAt.value_or(now) - _start).count() * _speed;
  const double most = secondsOf(_next->time - *_first);
  const double reached = std::clamp(passed, 0., std::max(0., most));
  return std::max(_last, *_first + session::Duration(static_cast<std::int64_t>(std::llround(reached * 1e9))));
}

session::Duration Playback::reached(Clock::time_point now) const
{
  return _first ? at(now) - *_first : session::Duration(0);
}

std::vector<std::string> Playback::takeNotes()
{
  for (std::string& note : _session.takeNotes())
    _notes.push_back(std::move(note));
  return std::exchange(_notes, {});
}

void Playback::_take(const recordings::Step& step)
{
  _session.play(step);
  ++_steps;
  if (!_first)
  {
    _first = step.time;
    _last = step.time;
  }
  _last = std::max(_last, step.time);
}

/// Reads the next step, which is empty for a line that cannot be used.
void Playback::_read()
{
  _next = boost::none;
  try
  {
    _next = _reader->next();
    _ended = !_next;
  }
  catch (const recordings::BadLine& error)
  {
    ++_badLines;
    _lastError = error.what();
  }
  catch (const recordings::Error& error)
  {
    ++_badLines;
    _lastError = error.what();
    _ended = true;
  }
  for (std::string& warning : _reader->takeWarnings())
    if (_notes.size() < mostNotes)
      _notes.push_back(std::move(warning));
}

}  // namespace KV::tools
