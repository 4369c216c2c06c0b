#pragma once

#include <skeigiot/ros2/bus.hpp>
#include <skeigiot/session/engagement.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>

namespace KV::tools
{

/// Publishes the estimate of each person with each update: engagement, affect, and the gaze while it is at the robot.
///
/// The id of a person in the topics is that of idInTopics(), with "_" and the number behind it if another person has
/// that id. If the name of a person changes, the topics of the former id are withdrawn, and the engagement goes on
/// under the new one. If the bus cannot publish an answer, the session goes on without answers.
class RosAnswers : public session::SessionObserver
{
public:
  static constexpr std::size_t mostPersons = 1000;  ///< of whom anything is published at a time

  /// Returns the stamp [ns] of a message about such a time.
  using StampOf = std::function<std::int64_t(session::TimePoint)>;

  /// Publishes on the bus, which must outlive it. Without a function, stamps are the times of updates.
  explicit RosAnswers(ros2::Bus& bus, StampOf stampOf = {}) : _bus(bus), _stampOf(std::move(stampOf)) {}

  void personUpdated(const session::Snapshot& snapshot) override;

  /// Says that the person left: their topics are withdrawn.
  void remove(std::int32_t person);

  /// Returns of how many persons anything is published.
  std::size_t persons() const { return _persons.size(); }

  /// Returns the error of the bus, after which nothing is published any more; empty if there was no error.
  const std::string& error() const { return _error; }

private:
  struct Person
  {
    std::string source;  // the name in the session
    std::string name;    // in topics
    std::string engagementTopic;
    std::string affectTopic;
    session::Engagement engagement;
  };

  void _publish(const session::Snapshot& snapshot);
  Person* _personOf(const session::Snapshot& snapshot);
  std::string _newName(const session::Snapshot& snapshot) const;

  ros2::Bus& _bus;
  StampOf _stampOf;
  std::map<std::int32_t, Person> _persons;
  std::string _error;
};

/// Returns the id of the person in names of topics: the first 120 characters of the name, with other characters than
/// letters, digits and "_" replaced by "_". A name that begins with a digit gets "person_" in front. A person without a
/// name has the id "person_" and the number. Two names may have the same id.
std::string idInTopics(const std::string& name, std::int32_t person);

/// Returns the word of hri_msgs/msg/Expression whose valence is nearest: sad (-1), neutral (0) or happy (1).
const char* wordOfValence(float valence);

}  // namespace KV::tools
