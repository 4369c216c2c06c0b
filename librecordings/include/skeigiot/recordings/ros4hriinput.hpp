#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/readingoptions.hpp>
#include <skeigiot/recordings/robothead.hpp>
#include <skeigiot/recordings/step.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Makes steps out of messages of ROS4HRI as they come in, in the same way as from those in a bag.
///
/// Two things differ from a bag, in which the future is known and which ends: a face belongs to a person from the
/// message on that says so, and what nobody mentions for a minute is forgotten.
///
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API Ros4hriInput
{
public:
  using TimePoint = ko::SystemClock::time_point;  ///< time at which a message came in

  /// The topic with the joints of the robot, which is read if RobotHead names joints.
  static constexpr const char* jointStates = "/joint_states";

  /// Begins without a message. The options say how angles and action units are read; `head` says where the angles of
  /// the robot's own head come from.
  ///
  /// \throws Error if the file of the mapping cannot be read.
  explicit Ros4hriInput(const ReadingOptions& options, const RobotHead& head = {});
  ~Ros4hriInput();
  Ros4hriInput(const Ros4hriInput&) = delete;
  Ros4hriInput& operator=(const Ros4hriInput&) = delete;

  /// Returns the type that messages of the topic must have, such as "std_msgs/msg/Bool"; empty: it is not read.
  ///
  /// Any thread may call it at any time.
  static std::string typeOf(const std::string& topic);

  /// Returns the names of all topics that are read, with "*" for the id of a face, voice or person, such as
  /// "/humans/faces/*/facs".
  ///
  /// Any thread may call it at any time.
  static std::vector<std::string> topics();

  /// Returns the names of the topics with lists of the ids of faces, voices and persons, of the type
  /// "hri_msgs/msg/IdsList". They say which topics with ids may be there; not all of them are read by take().
  ///
  /// Any thread may call it at any time.
  static std::vector<std::string> lists();

  /// Returns whether ROS allows the character in the id of a face, voice or person, which is a part of the name of a
  /// topic: ASCII letters, digits and "_".
  ///
  /// Any thread may call it at any time.
  static bool mayBeInId(char character);

  /// Takes a message, as CDR with the four bytes in front that say its byte order; of other topics, nothing.
  ///
  /// A time before that of an earlier message counts as that one's.
  ///
  /// \throws std::runtime_error "a message on the topic <topic> ..." for one that does not hold what its type says. It
  ///   changed nothing, or of several frames in it, those in front of the bad one.
  void take(const std::string& topic, TimePoint time, std::vector<char>& data);

  /// Lets the time go on without a message: ends a step that nothing can be added to any more.
  void advance(TimePoint time);

  /// Says that no message about a face came in for a while up to this time: the persons in view are missing, except
  /// those who are there by voice alone and speak. Call it again, about 10 times a second, as long as this is so.
  void fade(TimePoint time);

  /// Returns when something about a face came in last; if it never did, when a person without a face was heard last;
  /// none if nobody was.
  boost::optional<TimePoint> lastReceived() const;

  /// Ends the last step.
  void finish();

  /// Returns the next step that is complete, or none.
  boost::optional<Step> next();

  /// Says that the person is forgotten: who comes back under the same name gets another number.
  void forget(std::int32_t person);

private:
  struct Record;

  std::unique_ptr<Record> _record;
};

}  // namespace KV::recordings
