#include "commands/livesource.hpp"

#include "cli/lineinput.hpp"
#include "cli/sessionoptions.hpp"
#include "commands/playback.hpp"

#include <skeigiot/recordings/inputfile.hpp>

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <string_view>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t mostLinesAtOnce = 1000;  // the caller does other work in between

/// Lines of standard input. They are read also while the page is paused, so that their sender need not wait.
class Lines : public LiveSource
{
public:
  Lines(const LiveArguments& arguments, const LiveListeners& listeners, std::function<session::TimePoint()> wallClock)
    : _session(arguments.times, std::move(wallClock), listeners.observers, arguments.cycle)
  {
    _session.onPersonForgotten(listeners.left);
  }

  std::vector<pollfd> descriptors() const override
  {
    return _status.ended ? std::vector<pollfd>() : std::vector<pollfd>{{STDIN_FILENO, POLLIN, 0}};
  }
  Clock::time_point due() const override { return _hasMore ? Clock::time_point() : Clock::time_point::max(); }

  bool take(bool canBeRead) override
  {
    if (canBeRead && !_hasMore)
      _status.ended = !_input.readFrom(STDIN_FILENO);
    const bool hasEnded = canBeRead && _status.ended;
    std::string_view line;
    for (std::size_t i = 0; i < mostLinesAtOnce; ++i)
    {
      const auto kind = _input.take(line);
      _hasMore = kind != LineInput::Line::NotYetHere;
      if (!_hasMore)
        return i > 0 || hasEnded;
      ++_status.lines;
      if (kind == LineInput::Line::TooLong)
        _refuse("is too long");
      else
        _take(line);
    }
    return true;
  }

  std::string takeScopes(recordings::Step step) override { return takeScopesInto(_session, std::move(step)); }

  session::TimePoint present() const override { return _session.present(); }
  InputStatus status() const override { return _status; }
  std::vector<std::string> takeNotes() override { return _session.takeNotes(); }

private:
  void _take(std::string_view line)
  {
    try
    {
      _session.take(line);
    }
    catch (const recordings::MemberError& error)
    {
      _refuse(textOf(error));
    }
  }

  void _refuse(const std::string& message)
  {
    ++_status.refused;
    _status.lastError = "line " + std::to_string(_status.lines) + ": " + message;
  }

  session::LiveSession _session;
  LineInput _input{recordings::InputFile::longestLine};
  InputStatus _status;
  bool _hasMore = false;
};

/// A recording that is played.
class Recording : public LiveSource
{
public:
  Recording(std::unique_ptr<recordings::Reader> reader, std::string name, const LiveArguments& arguments,
            const LiveListeners& listeners)
    : _name(std::move(name)),
      _speed(arguments.speed),
      _playback(std::move(reader), arguments.speed, listeners.observers, arguments.cycle, Clock::now())
  {}

  std::vector<pollfd> descriptors() const override { return {}; }
  Clock::time_point due() const override { return _playback.due(); }
  bool take(bool) override
  {
    const bool isDue = due() <= Clock::now();
    _playback.play(Clock::now());
    return isDue;
  }
  std::string takeScopes(recordings::Step step) override { return _playback.takeScopes(std::move(step), Clock::now()); }
  void pause(bool paused) override
  {
    if (paused)
      _playback.pause(Clock::now());
    else
      _playback.resume(Clock::now());
  }
  session::TimePoint present() const override { return _playback.at(Clock::now()); }
  InputStatus status() const override
  {
    InputStatus status;
    status.name = _name;
    status.speed = _speed;
    status.reached = _playback.reached(Clock::now());
    status.lines = _playback.steps();
    status.refused = _playback.badLines();
    status.lastError = _playback.lastError();
    status.ended = _playback.ended();
    return status;
  }
  std::vector<std::string> takeNotes() override { return _playback.takeNotes(); }

private:
  std::string _name;
  double _speed;
  Playback _playback;
};

}  // namespace

std::string takeScopesInto(session::LiveSession& session, recordings::Step step)
{
  step.time = session.present();
  if (step.time == session::TimePoint())
    return "no line has come in yet, so there is no time at which a scope could start";
  try
  {
    session.take(recordings::StreamLine{{}, {}, std::move(step)});
    return {};
  }
  catch (const recordings::MemberError& error)
  {
    return error.what();
  }
}

std::string textOf(const recordings::MemberError& error)
{
  return (error.member().empty() ? "" : error.member() + ": ") + error.what();
}

std::unique_ptr<LiveSource> openLiveSource(const LiveArguments& arguments, const LiveListeners& listeners,
                                           std::function<session::TimePoint()> wallClock)
{
  if (arguments.recording.paths.empty())
    return std::make_unique<Lines>(arguments, listeners, std::move(wallClock));
  const session::SessionPlan plan = planNamedSessions(arguments.recording);
  if (plan.sessions.size() > 1)
    throw CLI::ValidationError("RECORDING", "there are several in the folder: name one of them");
  const session::SessionInputs& inputs = plan.sessions.front();
  return std::make_unique<Recording>(session::openSession(inputs, openerOf(arguments.reading)), inputs.name(),
                                     arguments, listeners);
}

}  // namespace KV::tools
