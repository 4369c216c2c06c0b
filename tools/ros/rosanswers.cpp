#include "ros/rosanswers.hpp"

#include <skeigiot/recordings/ros4hriinput.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace KV::tools
{

namespace
{

const std::string ofPersons = "/humans/persons/";
const std::string engagementTopic = "/engagement_status";
const std::string affectTopic = "/affect";
const std::string gazingTopic = "/humans/interactions/gazing";
const std::string prefix = "person_";  // a part of a name in ROS does not begin with a digit

// The name of a topic has at most 247 characters in ROS. The rest of the name and a number need up to 119, since
// "/humans" may be replaced by 80 characters.
constexpr std::size_t longestId = 120;

}  // namespace

void RosAnswers::personUpdated(const session::Snapshot& snapshot)
{
  if (!_error.empty())
    return;
  try
  {
    _publish(snapshot);
  }
  catch (const std::runtime_error& error)
  {
    _error = error.what();
  }
}

void RosAnswers::_publish(const session::Snapshot& snapshot)
{
  Person* const known = _personOf(snapshot);
  if (known == nullptr)
    return;
  Person& person = *known;
  const std::int64_t stamp = _stampOf ? _stampOf(snapshot.time) : snapshot.time.time_since_epoch().count();

  ros2::EngagementMessage engagement;
  engagement.stamp = stamp;
  engagement.level = static_cast<std::uint8_t>(person.engagement.update(snapshot));
  _bus.publish(person.engagementTopic, engagement);

  if (snapshot.isValenceKnown())
  {
    ros2::ExpressionMessage affect;
    affect.stamp = stamp;
    affect.expression = wordOfValence(snapshot.valence.value);
    affect.valence = snapshot.valence.value;
    affect.confidence = std::min(snapshot.valence.confidence, 1.f);
    _bus.publish(person.affectTopic, affect);
  }

  if (snapshot.seen && snapshot.zone == ko::human::AttentionState::LookingAtRobot)
    _bus.publish(gazingTopic, ros2::GazeMessage{stamp, person.name, ""});
}

// Returns nothing if there are too many.
RosAnswers::Person* RosAnswers::_personOf(const session::Snapshot& snapshot)
{
  session::Engagement engagement;
  if (const auto found = _persons.find(snapshot.person); found != _persons.end())
  {
    if (found->second.source == snapshot.name)
      return &found->second;
    engagement = found->second.engagement;
    remove(snapshot.person);
  }
  if (_persons.size() >= mostPersons)
    return nullptr;
  const std::string name = _newName(snapshot);
  const std::string topics = ofPersons + name;
  Person made{snapshot.name, name, topics + engagementTopic, topics + affectTopic, std::move(engagement)};
  return &_persons.emplace(snapshot.person, std::move(made)).first->second;
}

void RosAnswers::remove(std::int32_t person)
{
  const auto found = _persons.find(person);
  if (found == _persons.end())
    return;
  _bus.withdraw(found->second.engagementTopic);
  _bus.withdraw(found->second.affectTopic);
  _persons.erase(found);
}

// Two ids may be the same in topics.
std::string RosAnswers::_newName(const session::Snapshot& snapshot) const
{
  std::string name = idInTopics(snapshot.name, snapshot.person);
  const auto isTaken = [this, &name] {
    return std::any_of(_persons.begin(), _persons.end(),
                       [&name](const auto& other) { return other.second.name == name; });
  };
  while (isTaken())
    name += "_" + std::to_string(snapshot.person);
  return name;
}

std::string idInTopics(const std::string& name, std::int32_t person)
{
  if (name.empty())
    return prefix + std::to_string(person);
  const bool beginsWithDigit = name.front() >= '0' && name.front() <= '9';
  std::string id = (beginsWithDigit ? prefix + name : name).substr(0, longestId);
  std::replace_if(
      id.begin(), id.end(), [](char character) { return !recordings::Ros4hriInput::mayBeInId(character); }, '_');
  return id;
}

const char* wordOfValence(float valence)
{
  constexpr float middle = 0.5f;  // between two words
  if (valence > middle)
    return "happy";
  return valence < -middle ? "sad" : "neutral";
}

}  // namespace KV::tools
