#include "commands/rossource.hpp"

#include "serve/liveorders.hpp"

#include <skeigiot/recordings/roscontent.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::chrono::milliseconds tick(20);
constexpr std::chrono::milliseconds betweenFading(100);  // as often as persons are updated
constexpr std::size_t mostHeld = 10'000;
constexpr std::size_t mostHeldBytes = std::size_t{64} << 20U;
constexpr std::size_t mostRefusedTopics = 1000;  // that are remembered
constexpr double nanosecondsPerSecond = 1e9;

session::TimePoint timeOf(std::int64_t nanoseconds)
{
  return session::TimePoint(session::Duration(nanoseconds));
}

std::size_t bytesOf(const ros2::BusMessage& message)
{
  return sizeof(message) + message.topic.size() + message.data.size();
}

}  // namespace

RosSource::RosSource(ros2::Bus& bus, RosSourceOptions options, LiveListeners listeners,
                     std::function<session::TimePoint()> clock, std::function<Clock::time_point()> steadyClock)
  : _bus(bus),
    _options(std::move(options)),
    _listeners(std::move(listeners)),
    _clock(std::move(clock)),
    _steadyClock(std::move(steadyClock)),
    _input(_options.reading, _options.head),
    _session({}, _listeners.observers, _options.cycle)
{}

std::string RosSource::typeOf(const std::string& topic, const RosSourceOptions& options)
{
  if (topic == clockTopic)
    return options.times == RosTimes::Simulated ? "rosgraph_msgs/msg/Clock" : std::string();
  if (topic == scopesTopic)
    return "std_msgs/msg/String";
  if (topic == recordings::Ros4hriInput::jointStates && options.head.joints.empty())
    return {};
  return recordings::Ros4hriInput::typeOf(topic);
}

std::vector<std::string> RosSource::topics(const RosSourceOptions& options)
{
  std::vector<std::string> names;
  for (const std::string& topic : recordings::Ros4hriInput::topics())
    if (topic.find('*') != std::string::npos || !typeOf(topic, options).empty())
      names.push_back(topic);
  names.emplace_back(scopesTopic);
  if (options.times == RosTimes::Simulated)
    names.emplace_back(clockTopic);
  return names;
}

bool RosSource::take(bool)
{
  const Clock::time_point now = _steadyClock();
  const std::size_t before = _messages;
  _receive(now);
  if (now >= _nextTick)
    _tick(now);
  return _messages > before;
}

std::string RosSource::takeScopes(recordings::Step step)
{
  if (_options.times != RosTimes::Arrival && _messages == 0)
    return "no message has come in yet, so there is no time at which a scope could start";
  if (std::string refusal = _session.whyScopesCannotStart(step); !refusal.empty())
    return refusal;
  // Nothing that comes later has an earlier time: neither what waits for the end of its cycle, nor a message that came
  // in meanwhile.
  const Clock::time_point now = _steadyClock();
  if (const session::TimePoint time = _timeAt(now); time > _last)
  {
    _last = time;
    _lastAt = now;
  }
  step.time = _last;
  _input.advance(_last);
  _input.finish();
  _play();
  _session.play(step);
  return {};
}

session::TimePoint RosSource::present() const
{
  return _presentAt(_steadyClock());
}

InputStatus RosSource::status() const
{
  InputStatus status;
  status.name = _options.name;
  status.isBus = true;
  status.lines = _messages;
  status.refused = _refused;
  status.lastError = _lastError;
  return status;
}

std::int64_t RosSource::stampOf(session::TimePoint time) const
{
  const auto nanoseconds = static_cast<std::int64_t>(time.time_since_epoch().count());
  return _options.times == RosTimes::Simulated ? _simulated.stampOf(nanoseconds) : nanoseconds;
}

std::int64_t RosSource::stamp() const
{
  return stampOf(_options.times == RosTimes::Simulated ? timeOf(_simulated.now()) : _clock());
}

std::vector<std::string> RosSource::takeNotes()
{
  for (std::string& note : _bus.takeNotes())
    _notes.push_back(std::move(note));
  for (std::string& note : _session.takeNotes())
    _notes.push_back(std::move(note));
  return std::exchange(_notes, {});
}

void RosSource::finish()
{
  std::exception_ptr failure;
  try
  {
    _receive(_steadyClock());
  }
  catch (const std::runtime_error&)
  {
    failure = std::current_exception();
  }
  _release(Clock::time_point::max());
  _input.finish();
  _play();
  _session.finish();
  if (failure)
    std::rethrow_exception(failure);
}

void RosSource::_receive(Clock::time_point now)
{
  for (ros2::BusMessage& message : _bus.take())
  {
    if (_options.times == RosTimes::Simulated)
    {
      if (message.topic == clockTopic)
        _takeClock(message);
      else if (_simulated.isKnown())
        _feed(message, _simulated.now());
      else
        _refuse(clockTopic, "messages are left out until the first time comes in on /clock");
    }
    else if (_options.times == RosTimes::Arrival || message.written == 0)
      _feed(message, message.received);
    else
    {
      const auto written = message.written;
      _heldBytes += bytesOf(message);
      _held.emplace(written, Held{std::move(message), now});
    }
  }
  _release(now - std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(_options.hold)));
}

// Those that nothing which was written earlier can overtake any more; of too many, the earliest.
void RosSource::_release(Clock::time_point until)
{
  const auto areTooMany = [this] { return _held.size() > mostHeld || _heldBytes > mostHeldBytes; };
  while (!_held.empty() && (_held.begin()->second.since <= until || areTooMany()))
  {
    auto held = _held.extract(_held.begin());
    _heldBytes -= bytesOf(held.mapped().message);
    _feed(held.mapped().message, held.key());
  }
}

void RosSource::_takeScope(ros2::BusMessage& message)
{
  const auto takeStep = [this](recordings::Step step) { return takeScopes(std::move(step)); };
  const OrderAnswer answer = carryOutScope(recordings::rosTextIn(message.data), takeStep);
  if (!answer.isDone())
    throw std::runtime_error("a message on the topic " + message.topic + " is left out: " + answer.text);
}

// The simulation may begin anew: its persons are others then.
void RosSource::_takeClock(ros2::BusMessage& message)
{
  try
  {
    const std::int64_t back = _simulated.take(recordings::rosClockIn(message.data));
    _last = std::max(_last, timeOf(_simulated.now()));
    _input.advance(_last);
    if (back > 0)
    {
      _input.finish();
      _note("a jump of " + message.topic, "the time on /clock was set back by " +
                                              std::to_string(back / static_cast<std::int64_t>(nanosecondsPerSecond)) +
                                              " s: the persons are forgotten, also when it happens again");
    }
    _play();
    while (back > 0 && !_seen.empty())
      _leave(_seen.begin()->first);
    _forgetAbsent(_last);
  }
  catch (const std::runtime_error& error)
  {
    _refuse("a message of " + message.topic, std::string("a message on the topic /clock is left out: ") + error.what());
  }
}

void RosSource::_feed(ros2::BusMessage& message, std::int64_t time)
{
  ++_messages;
  _last = std::max(_last, timeOf(time));
  _lastTaken = _lastAt = _steadyClock();
  try
  {
    if (message.topic == scopesTopic)
      _takeScope(message);
    else
      _input.take(message.topic, _last, message.data);
  }
  catch (const std::runtime_error& error)
  {
    _refuse(message.topic, error.what());
  }
  _play();
}

// With the times of the writers, the time goes on with the messages as long as there are any.
session::TimePoint RosSource::_timeAt(Clock::time_point now) const
{
  if (_options.times == RosTimes::Simulated)
    return _last;
  const bool areThere = std::chrono::duration<double>(now - _lastTaken).count() < _options.silence;
  return _options.times == RosTimes::Source && areThere ? _last : _presentAt(now);
}

session::TimePoint RosSource::_presentAt(Clock::time_point now) const
{
  if (_options.times == RosTimes::Arrival)
    return std::max(_last, _clock());
  if (_options.times == RosTimes::Simulated)
    return _last;
  const auto passed = std::chrono::duration_cast<std::chrono::nanoseconds>(now - _lastAt);
  return _messages == 0 ? _last : _last + session::Duration(passed.count());
}

void RosSource::_tick(Clock::time_point now)
{
  _nextTick = now + tick;
  const session::TimePoint time = _timeAt(now);
  _input.advance(time);
  const auto lastReceived = _input.lastReceived();
  const double quiet = lastReceived ? static_cast<double>((time - *lastReceived).count()) / nanosecondsPerSecond : 0.;
  if (quiet >= _options.silence && now >= _nextFading)
  {
    _nextFading = now + betweenFading;
    _input.fade(time);
  }
  _play();
  _forgetAbsent(time);
}

void RosSource::_forgetAbsent(session::TimePoint now)
{
  for (auto entry = _seen.begin(); entry != _seen.end();)
  {
    const std::int32_t person = entry->first;
    if (now - entry->second <= boost::chrono::seconds(longestAbsence))
    {
      ++entry;
      continue;
    }
    ++entry;
    _leave(person);
  }
}

void RosSource::_leave(std::int32_t person)
{
  _seen.erase(person);
  _session.forget(person);
  _input.forget(person);
  if (_listeners.left)
    _listeners.left(person);
}

void RosSource::_play()
{
  while (const auto step = _input.next())
  {
    if (step->person && step->seen)
      _seen[*step->person] = step->time;
    _session.play(*step);
  }
}

void RosSource::_refuse(const std::string& topic, const std::string& why)
{
  ++_refused;
  _lastError = why;
  _note(topic, why);
}

void RosSource::_note(const std::string& topic, const std::string& text)
{
  if (_refusedTopics.size() < mostRefusedTopics && _refusedTopics.insert(topic).second)
    _notes.push_back(text);
}

}  // namespace KV::tools
