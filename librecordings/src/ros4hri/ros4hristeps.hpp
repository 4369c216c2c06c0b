#pragma once

#include "face/personsinview.hpp"
#include "face/restingfaces.hpp"
#include "ros4hri/ros4hripersons.hpp"
#include "ros4hri/rosmessages.hpp"
#include "ros4hri/transformtree.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Makes steps of a recording out of what the nodes of a robot tell one by one.
///
/// The frames of faces that are told within a few milliseconds are one cycle, as the camera saw them at once; other
/// messages about a face go with its next frame. A person who was in an earlier cycle, and is neither in this one nor
/// among the tracked faces, gets a step that says so.
class RosbagCycles
{
public:
  using TimePoint = ko::SystemClock::time_point;

  RosbagCycles(const ReadingOptions& options, RosbagPersons& persons);

  /// Lets the time go on; it must be called before what happens at that time.
  void advance(TimePoint time);

  /// \throws RosMessageError for a transform that is none.
  void transform(const std::vector<RosTransform>& transforms);
  void trackedFaces(const RosIdsList& list);
  void expression(const std::string& face, const RosExpression& expression);
  void actionUnits(const std::string& face, const RosActionUnits& units);
  void landmarks(const std::string& face, const RosLandmarks& landmarks);
  void speaking(const std::string& voice, bool speaks);

  /// Ends the last cycle.
  void finish();

  /// Takes the next step that is complete, if there is one.
  boost::optional<Step> take();

  /// What the frames of gazes tell.
  enum class Gaze
  {
    None,
    FollowsFace,  ///< none moved against its face: the eyes were not tracked
    Free
  };
  Gaze gaze() const { return _gaze; }

  /// Says what was learned of the faces at rest, a line each.
  std::vector<std::string> describeLearned() const { return _resting.describe(); }

private:
  struct Face
  {
    boost::optional<TimePoint> posedAt;
    bool gazeIsNew = false;
    boost::optional<Rotation> firstGaze;  // in the frame of the face
    KV::PersonObservation pending;        // what was told besides the frame
    boost::optional<TimePoint> pendingSince;
  };

  struct Cycle
  {
    TimePoint begin;
    std::map<std::string, TimePoint> posed;  // when, by face
    std::set<std::string> faces;             // of which anything was told
  };

  Face& _face(const std::string& name);
  void _open();
  void _pose(const std::string& face);
  void _noteGaze(const std::string& name);
  Face& _readingOf(const std::string& name);
  void _close();
  boost::optional<Step> _entryOf(const std::string& name, Face& face, std::int32_t person);
  void _addPose(const std::string& name, Face& face, std::int32_t person, KV::PersonObservation& observation);
  boost::optional<std::string> _cameraOf(const std::string& face) const;
  void _tellMissing(const std::set<std::int32_t>& seen);
  bool _isAround(const std::string& name, const Face& face) const;

  FaceAdapter _adapter;
  RestingFaces _resting;
  RosbagPersons& _persons;
  TransformTree _tree;
  TimePoint _now;
  boost::optional<Cycle> _cycle;
  boost::optional<TimePoint> _lastCycle;
  boost::optional<TimePoint> _lastMissing;
  std::map<std::string, Face> _faces;
  boost::optional<std::set<std::string>> _tracked;
  std::string _trackingFrame;  // which the tracked faces are in
  std::map<std::int32_t, KV::PersonObservation::Reading<bool>> _speaking;
  PersonsInView _inView;
  std::set<std::int32_t> _told;  // persons with a step
  std::deque<Step> _entries;
  Gaze _gaze = Gaze::None;
};

}  // namespace KV::recordings
