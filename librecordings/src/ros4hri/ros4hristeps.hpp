#pragma once

#include "face/personsinview.hpp"
#include "face/restingfaces.hpp"
#include "ros4hri/ros4hripersons.hpp"
#include "ros4hri/rosmessages.hpp"
#include "ros4hri/transformtree.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/robothead.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Makes steps of a recording from the messages of a robot's nodes, one by one.
///
/// The frames of faces that arrive within a few milliseconds are one cycle, as the camera saw them at once; other
/// messages about a face go with its next frame. A person who was in an earlier cycle, and is neither in this one nor
/// among the tracked faces, gets a step that says so.
///
/// A reading of a voice goes with the next step of the person's face. A person without a face in the last half second
/// is there by voice alone: each message of the voice is a step, and the person counts as seen while speaking, and for
/// a second after the last message.
///
/// The angles of the robot's own head go with the next step of each person who is there.
class RosbagCycles
{
public:
  using TimePoint = ko::SystemClock::time_point;

  /// \param keepsFaces  faces are forgotten by forgetOld() only, together with all that is kept of them
  /// \param head        where the angles of the robot's own head come from
  RosbagCycles(const ReadingOptions& options, RosbagPersons& persons, bool keepsFaces = false, RobotHead head = {});

  /// Advances the time; it must be called before the messages of that time.
  void advance(TimePoint time);

  /// \throws RosMessageError for a transform with impossible numbers.
  void transform(const std::vector<RosTransform>& transforms);
  void trackedFaces(const RosIdsList& list);
  void expression(const std::string& face, const RosExpression& expression);
  void actionUnits(const std::string& face, const RosActionUnits& units);
  void landmarks(const std::string& face, const RosLandmarks& landmarks);
  void softBiometrics(const std::string& face, const RosSoftBiometrics& found);
  void speaking(const std::string& voice, bool speaks);
  void joints(const RosJointStates& states);

  /// Ends the last cycle.
  void finish();

  /// \name Live sessions, which last for days
  /// @{
  /// Says that nothing about faces came in for a while, so that nobody is seen: who was in view is missing from now on.
  void fade(TimePoint now);

  /// Returns when something about a face came in last; if it never did, when a person without a face was heard last.
  const boost::optional<TimePoint>& lastReceived() const { return _lastReceived ? _lastReceived : _lastHeard; }

  /// Forgets faces of which nothing came in for a minute, and their frames. One that comes back gets another number.
  void forgetOld();

  /// Forgets what waits for a person.
  void forget(std::int32_t person);
  /// @}

  /// Takes the next step that is complete, if there is one.
  boost::optional<Step> take();

  /// The result of comparing the frames of gazes with those of faces.
  enum class Gaze
  {
    None,
    FollowsFace,  ///< no gaze moved against its face: the eyes were not tracked
    Free
  };
  Gaze gaze() const { return _gaze; }

  /// Describes the learned faces at rest, a line each.
  std::vector<std::string> describeLearned() const { return _resting.describe(); }

private:
  struct Face
  {
    boost::optional<TimePoint> posedAt;
    bool gazeIsNew = false;
    boost::optional<Rotation> firstGaze;  // in the frame of the face
    KV::PersonObservation pending;        // readings besides the frame
    boost::optional<TimePoint> pendingSince;
    TimePoint lastReceived;
  };

  struct Voice
  {
    TimePoint heard;
    bool speaks = false;
  };

  struct Cycle
  {
    TimePoint begin;
    std::map<std::string, TimePoint> posed;  // when, by face
    std::set<std::string> faces;             // with at least one message
  };

  Face& _face(const std::string& name);
  void _open();
  void _openForVoices(TimePoint time);
  TimePoint _endOfFace(std::int32_t person) const;
  void _addVoices(std::set<std::int32_t>& seen, std::vector<Step>& entries);
  void _noteHead();
  void _addHead(std::int32_t person, KV::PersonObservation& observation);
  void _pose(const std::string& face);
  void _noteGaze(const std::string& name);
  Face& _readingOf(const std::string& name);
  void _close();
  boost::optional<Step> _entryOf(const std::string& name, Face& face, std::int32_t person);
  void _addPose(const std::string& name, Face& face, std::int32_t person, KV::PersonObservation& observation);
  boost::optional<std::string> _cameraOf(const std::string& face) const;
  void _seeHeard();
  void _reportMissing(const std::set<std::int32_t>& seen);
  bool _isAround(const std::string& name, const Face& face) const;

  FaceAdapter _adapter;
  RestingFaces _resting;
  RosbagPersons& _persons;
  TransformTree _tree;
  TimePoint _now;
  boost::optional<Cycle> _cycle;
  boost::optional<TimePoint> _lastCycle;
  boost::optional<TimePoint> _lastMissing;
  boost::optional<TimePoint> _lastReceived;
  std::map<std::string, Face> _faces;
  boost::optional<std::set<std::string>> _tracked;
  std::string _trackingFrame;                                              // of the tracked faces
  std::map<std::int32_t, KV::PersonObservation::Reading<bool>> _speaking;  // waits for a step
  std::map<std::int32_t, TimePoint> _withFace;  // when each person had a step with a face last
  std::map<std::int32_t, Voice> _byVoice;       // of persons who are there by voice alone
  boost::optional<TimePoint> _lastHeard;        // of them
  RobotHead _head;
  using HeadReading = KV::PersonObservation::Reading<KV::RobotHeadPosture>;
  HeadReading _headPosture;                     // of the last joints
  HeadReading _headOfCycle;                     // when the cycle began
  std::map<std::int32_t, TimePoint> _withHead;  // the time of the last angles of the head that each person got
  PersonsInView _inView;
  std::set<std::int32_t> _reported;  // persons with a step
  std::deque<Step> _entries;
  Gaze _gaze = Gaze::None;
  bool _keepsFaces;
};

}  // namespace KV::recordings
