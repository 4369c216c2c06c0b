#include <skeigiot/recordings/ros4hriinput.hpp>

#include "ros4hri/ros4hridispatch.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <stdexcept>

namespace KV::recordings
{
namespace
{

const boost::chrono::seconds betweenForgetting(10);

[[noreturn]] void refuse(const std::string& topic, const std::string& why)
{
  throw std::runtime_error("a message on the topic " + topic + " is left out: " + why);
}

}  // namespace

struct Ros4hriInput::Record
{
  Record(const ReadingOptions& options, const RobotHead& head) : dispatch(options, true, head) {}

  void advance(TimePoint time)
  {
    now = std::max(now, time);
    dispatch.advance(now);
    if (now - forgotten < betweenForgetting)
      return;
    forgotten = now;
    dispatch.forgetOld();
  }

  Ros4hriDispatch dispatch;
  TimePoint now;
  TimePoint forgotten;
};

Ros4hriInput::Ros4hriInput(const ReadingOptions& options, const RobotHead& head)
  : _record(std::make_unique<Record>(options, head))
{}

Ros4hriInput::~Ros4hriInput() = default;

std::string Ros4hriInput::typeOf(const std::string& topic)
{
  if (topic == jointStates)
    return "sensor_msgs/msg/JointState";
  const auto known = rosTopicOf(topic);
  return known ? known->type : std::string();
}

std::vector<std::string> Ros4hriInput::topics()
{
  std::vector<std::string> names = rosTopicPatterns();
  names.emplace_back(jointStates);
  return names;
}

std::vector<std::string> Ros4hriInput::lists()
{
  return rosIdLists();
}

bool Ros4hriInput::mayBeInId(char character)
{
  return mayBeInRosId(character);
}

void Ros4hriInput::take(const std::string& topic, TimePoint time, std::vector<char>& data)
{
  const auto known = rosTopicOf(topic);
  if (!known && topic != jointStates)
    return;
  if (data.size() > static_cast<std::size_t>(limits::largestMessage))
    refuse(topic, "it has more than " + std::to_string(limits::largestMessage) + " bytes");
  try
  {
    _record->advance(time);
    if (!known)
      _record->dispatch.takeJoints(data);
    else if (isAboutPersons(*known))
      _record->dispatch.takePerson(*known, data);
    else
      _record->dispatch.take(*known, data);
  }
  catch (const RosMessageError& error)
  {
    refuse(topic, error.what());
  }
}

void Ros4hriInput::advance(TimePoint time)
{
  _record->advance(time);
}

void Ros4hriInput::fade(TimePoint time)
{
  _record->now = std::max(_record->now, time);
  _record->dispatch.fade(_record->now);
}

boost::optional<Ros4hriInput::TimePoint> Ros4hriInput::lastReceived() const
{
  return _record->dispatch.lastReceived();
}

void Ros4hriInput::finish()
{
  _record->dispatch.finish();
}

boost::optional<Step> Ros4hriInput::next()
{
  return _record->dispatch.next();
}

void Ros4hriInput::forget(std::int32_t person)
{
  _record->dispatch.forget(person);
}

}  // namespace KV::recordings
