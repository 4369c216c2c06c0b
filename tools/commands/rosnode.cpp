#include "commands/rosnode.hpp"

#include "cli/interruption.hpp"
#include "cli/waiting.hpp"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>
#include <vector>

namespace KV::tools
{

namespace
{

constexpr std::chrono::seconds betweenDiagnostics(1);

/// Says in words how many messages came in since the last diagnostics.
std::string describe(std::uint64_t received, std::uint64_t dropped)
{
  if (dropped > 0)
    return std::to_string(dropped) + " messages were dropped in the last second: too many came in";
  return received > 0 ? "messages come in" : "no messages in the last second";
}

}  // namespace

RosNode::RosNode(std::unique_ptr<ros2::Bus> bus, Clock clock, const RosNodeOptions& options, Messages& messages,
                 const LiveListeners& listeners, SteadyClock steadyClock)
  : _messages(messages),
    _clock(std::move(clock)),
    _steadyClock(std::move(steadyClock)),
    _bus(std::move(bus)),
    _answers(*_bus, [this](session::TimePoint time) { return _source->stampOf(time); }),
    _verdicts(*_bus),
    _isQuiet(options.isQuiet)
{
  std::vector<session::SessionObserver*> observers{&_answers, &_verdicts};
  observers.insert(observers.end(), listeners.observers.begin(), listeners.observers.end());
  if (!options.recording.empty())
    observers.push_back(&_recording.emplace(options.recording, options.force));
  if (!options.updates.empty())
    observers.push_back(&_updates.emplace(options.updates, options.source.name, options.force));
  _source.emplace(*_bus, options.source,
                  LiveListeners{observers,
                                [this, left = listeners.left](std::int32_t person) {
                                  _answers.remove(person);
                                  if (left)
                                    left(person);
                                }},
                  _clock, _steadyClock);
}

bool RosNode::run()
{
  return run([this](LiveSource&) { _runOn(); });
}

bool RosNode::run(const View& view)
{
  try
  {
    _reportFailure([this, &view] { view(*this); });
  }
  catch (const Interrupted&)  // the end that is wanted
  {}
  _finish();
  return _failure.empty() && !_hasRecordingFailed();
}

void RosNode::_runOn()
{
  for (;;)
  {
    std::vector<pollfd> waited = descriptors();
    const auto pause = std::chrono::ceil<std::chrono::milliseconds>(due() - _steadyClock());
    waitFor(waited, static_cast<int>(std::max(pause, std::chrono::milliseconds(0)).count()));
    take(true);
  }
}

bool RosNode::take(bool canBeRead)
{
  const bool isAnyTaken = _source->take(canBeRead);
  _throwIfOutputFailed();
  if (_steadyClock() >= _nextDiagnostics)
    _publishDiagnostics();
  return isAnyTaken;
}

void RosNode::_finish()
{
  if (std::exchange(_isQuiet, false))
    _sayKept();
  _reportFailure([this] { _source->finish(); });
  _reportFailure([this] { _throwIfOutputFailed(); });
  if (_recording)
    _recording->flush();
  _saidThatRecordingFailed = false;  // it is said at the end as well
  _takeNotes();
  if (_updates && _updates->error().empty())
    _reportFailure([this] { _updates->complete(); });
}

void RosNode::_publishDiagnostics()
{
  _nextDiagnostics = _steadyClock() + betweenDiagnostics;
  _takeNotes();
  if (_recording)
    _recording->flush();
  const ros2::BusCounts counts = _bus->counts();
  const InputStatus status = _source->status();
  const std::uint64_t received = counts.received - std::exchange(_received, counts.received);
  const std::uint64_t dropped = counts.dropped - std::exchange(_dropped, counts.dropped);

  ros2::DiagnosticMessage message;
  message.stamp = _source->stamp();
  message.name = "skeigiot: persons";
  message.level = dropped > 0 || _hasRecordingFailed() ? 1 : 0;
  message.message =
      _hasRecordingFailed() ? "the recording cannot be written: " + _recording->error() : describe(received, dropped);
  message.values = {{"persons", std::to_string(_answers.persons())},
                    {"messages", std::to_string(counts.received)},
                    {"messages a second", std::to_string(received)},
                    {"messages dropped", std::to_string(counts.dropped)},
                    {"messages refused", std::to_string(counts.refused + status.refused)},
                    {"topics read", std::to_string(counts.readers)},
                    {"topics written", std::to_string(counts.writers)}};
  _bus->publish("/diagnostics", message);
}

void RosNode::_takeNotes()
{
  for (const std::string& note : _source->takeNotes())
  {
    _keep(note);
    _say(note);
  }
  for (const std::string& warning : _log.take())
  {
    if (_isQuiet)
      _keep(warning);
    _say(warning);
  }
  if (_isQuiet || !_hasRecordingFailed() || std::exchange(_saidThatRecordingFailed, true))
    return;  // while it is quiet, this waits for the end
  const std::string failure = "the recording cannot be written any more: " + _recording->error();
  _keep(failure);
  _messages.error(failure);
}

std::vector<std::string> RosNode::takeNotes()
{
  std::vector<std::string> notes(_notes.begin(), _notes.end());
  _notes.clear();
  return notes;
}

void RosNode::_keep(const std::string& note)
{
  if (_notes.size() >= mostNotes)
  {
    _notes.pop_front();
    ++_forgotten;
  }
  _notes.push_back(note);
}

void RosNode::_sayKept()
{
  if (_forgotten > 0)
    _say(std::to_string(_forgotten) + " earlier warnings were forgotten");
  for (const std::string& note : takeNotes())
    _say(note);
}

void RosNode::_say(const std::string& warning)
{
  if (!_isQuiet)
    _messages.note("warning: " + warning);
}

void RosNode::_throwIfOutputFailed() const
{
  for (const std::string& error : {_answers.error(), _verdicts.error()})
    if (!error.empty())
      throw std::runtime_error(error);
  if (_updates && !_updates->error().empty())
    throw std::runtime_error(_updates->error());
}

// The node ends in order whatever fails. Of the errors, the first one is reported.
template <typename Function>
void RosNode::_reportFailure(Function function)
{
  try
  {
    function();
  }
  catch (const std::exception& error)
  {
    if (!_failure.empty())
      return;
    _failure = error.what();
    _messages.error(_failure);
  }
}

}  // namespace KV::tools
