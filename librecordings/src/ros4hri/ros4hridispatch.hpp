#pragma once

#include "ros4hri/ros4hripersons.hpp"
#include "ros4hri/ros4hristeps.hpp"
#include "ros4hri/ros4hritopics.hpp"
#include "ros4hri/rosmessages.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/robothead.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Makes steps from messages, each with its topic: from a bag, or from the wire.
///
/// Not synchronised.
class Ros4hriDispatch
{
public:
  /// \param isLive  who has which face is learned as it comes in, and faces are forgotten by forgetOld()
  /// \param head    where the angles of the robot's own head come from
  explicit Ros4hriDispatch(const ReadingOptions& options, bool isLive = false, const RobotHead& head = {});
  Ros4hriDispatch(const Ros4hriDispatch&) = delete;
  Ros4hriDispatch& operator=(const Ros4hriDispatch&) = delete;

  /// Advances the time; it must be called before the messages of that time.
  void advance(RosbagCycles::TimePoint time);

  /// Takes a message that says who a person is; messages of other topics are ignored.
  ///
  /// Where all messages are at hand, as in a bag, these are taken first: a person whose face is found again stays the
  /// same. \throws RosMessageError for a message whose data do not fit its type.
  void takePerson(const RosTopic& topic, RosData& data);

  /// Takes a message of any other topic. One that takePerson() takes is only checked.
  ///
  /// \throws RosMessageError for a message whose data do not fit its type.
  void take(const RosTopic& topic, RosData& data);

  /// Takes a message with the joints of the robot, sensor_msgs/msg/JointState.
  ///
  /// \throws RosMessageError as above.
  void takeJoints(RosData& data);

  /// As in RosbagCycles, for live sessions.
  void fade(RosbagCycles::TimePoint now) { _cycles.fade(now); }
  const boost::optional<RosbagCycles::TimePoint>& lastReceived() const { return _cycles.lastReceived(); }
  void forgetOld() { _cycles.forgetOld(); }
  void forget(std::int32_t person)
  {
    _cycles.forget(person);
    _persons.renumber(person);
  }

  /// Ends the last step.
  void finish();

  /// Returns the next step that is complete, or nothing.
  boost::optional<Step> next();

  /// Returns a warning for each kind of missing frames. The answer is final after finish().
  std::vector<std::string> warnings() const;

  /// Describes which person has which number.
  std::string describePersons() const;

  /// Describes the learned faces at rest, a line each.
  std::vector<std::string> describeLearned() const { return _cycles.describeLearned(); }

private:
  void _takeSpeech(const std::string& voice, RosData& data);

  RosbagPersons _persons;
  RosbagCycles _cycles;  // refers to _persons
};

}  // namespace KV::recordings
