#pragma once

#include "commands/livesource.hpp"
#include "ros/simulatedtime.hpp"

#include <skeigiot/recordings/readingoptions.hpp>
#include <skeigiot/recordings/ros4hriinput.hpp>
#include <skeigiot/ros2/bus.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/session.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace KV::tools
{

/// The clock that gives a message its time.
enum class RosTimes
{
  Arrival,   ///< this machine's, when the message came in
  Source,    ///< the writer's, when it wrote the message
  Simulated  ///< that of a simulation, on /clock, when the message came in
};

/// How the messages of ROS are taken.
struct RosSourceOptions
{
  recordings::ReadingOptions reading;
  recordings::RobotHead head;
  session::Cycle cycle;
  RosTimes times = RosTimes::Arrival;
  double silence = 1.;  ///< [s] without a message about a face, after which nobody counts as seen
  double hold = 0.05;   ///< [s] that a message waits for earlier ones of other writers, with the times of the writers
  std::string name;     ///< of the source, in the table
};

/// A live session whose steps come from the topics of ROS.
class RosSource : public LiveSource
{
public:
  /// The topic with the time of a simulation.
  static constexpr const char* clockTopic = "/clock";

  /// The topic that starts and stops scopes: texts with the JSON of carryOutScope().
  static constexpr const char* scopesTopic = "/skeigiot/scopes";

  /// Returns the type that messages of the topic must have; empty: it is not read with these options.
  static std::string typeOf(const std::string& topic, const RosSourceOptions& options);

  /// Returns the names of the topics that are read with these options, with "*" for ids.
  static std::vector<std::string> topics(const RosSourceOptions& options);

  /// A person who was not seen for so long [s] is forgotten, and gets another number on coming back.
  static constexpr int longestAbsence = 60;

  /// Takes messages of the bus, which must outlive it, as must the observers.
  ///
  /// \param clock       that of the bus
  /// \param steadyClock measures how long messages are held, and how long the bus has been silent
  RosSource(ros2::Bus& bus, RosSourceOptions options, LiveListeners listeners,
            std::function<session::TimePoint()> clock, std::function<Clock::time_point()> steadyClock = Clock::now);

  std::vector<pollfd> descriptors() const override { return {{_bus.descriptor(), POLLIN, 0}}; }
  Clock::time_point due() const override { return _nextTick; }
  bool take(bool canBeRead) override;
  std::string takeScopes(recordings::Step step) override;
  session::TimePoint present() const override;
  InputStatus status() const override;
  std::vector<std::string> takeNotes() override;

  /// Returns the stamp [ns] of a message about such a time: that of the simulation, if there is one.
  std::int64_t stampOf(session::TimePoint time) const;

  /// Returns the stamp [ns] of a message that is published now.
  std::int64_t stamp() const;

  /// Takes what waits, and ends the session.
  ///
  /// \throws std::runtime_error of the bus, after the session ended without what the bus could not hand over.
  void finish();

private:
  struct Held
  {
    ros2::BusMessage message;
    Clock::time_point since;
  };

  void _takeScope(ros2::BusMessage& message);
  void _takeClock(ros2::BusMessage& message);
  void _receive(Clock::time_point now);
  void _release(Clock::time_point until);
  void _feed(ros2::BusMessage& message, std::int64_t time);
  session::TimePoint _timeAt(Clock::time_point now) const;
  session::TimePoint _presentAt(Clock::time_point now) const;
  void _tick(Clock::time_point now);
  void _leave(std::int32_t person);
  void _forgetAbsent(session::TimePoint now);
  void _play();
  void _refuse(const std::string& topic, const std::string& why);
  void _note(const std::string& topic, const std::string& text);

  ros2::Bus& _bus;
  RosSourceOptions _options;
  LiveListeners _listeners;
  std::function<session::TimePoint()> _clock;
  std::function<Clock::time_point()> _steadyClock;
  SimulatedTime _simulated;
  recordings::Ros4hriInput _input;
  session::Session _session;

  std::multimap<std::int64_t, Held> _held;  // by the times of their writers
  std::size_t _heldBytes = 0;
  std::map<std::int32_t, session::TimePoint> _seen;
  session::TimePoint _last;      // of the last message or scope
  Clock::time_point _lastAt;     // the time of our clock that belongs to it
  Clock::time_point _lastTaken;  // when the last message was taken
  Clock::time_point _nextTick;
  Clock::time_point _nextFading;
  std::size_t _messages = 0;
  std::size_t _refused = 0;
  std::string _lastError;
  std::set<std::string> _refusedTopics;
  std::vector<std::string> _notes;
};

}  // namespace KV::tools
