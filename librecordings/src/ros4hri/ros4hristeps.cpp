#include "ros4hri/ros4hristeps.hpp"

#include "face/viewingangles.hpp"
#include "ros4hri/rosangles.hpp"

#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/rosreadings.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>

namespace KV::recordings
{
namespace
{
using boost::chrono::milliseconds;

const milliseconds longestCycle(15);     // from the first frame of a cycle to the last
const milliseconds shortestPeriod(25);   // between two cycles that report missing persons
const milliseconds longestBreak(500);    // between frames of a face; its other readings wait up to so long
const milliseconds longestUnknown(250);  // without a frame, if no message lists the tracked faces
const boost::chrono::seconds longestKept(60);
const boost::chrono::seconds longestPause(1);  // of a person without a face, between messages of the voice

constexpr double stillGaze = 0.0017;  // [rad] a tenth of a degree: a gaze that moves less is constant

const std::string facePrefix = "face_";
const std::string gazePrefix = "gaze_";

bool startsWith(const std::string& text, const std::string& prefix)
{
  return text.compare(0, prefix.size(), prefix) == 0;
}

// ROS 1 wrote frames with a slash before their names.
std::string frameName(const std::string& name)
{
  return startsWith(name, "/") ? name.substr(1) : name;
}

Transform transformOf(const RosTransform& received)
{
  const auto rotation = Rotation::fromQuaternion(received.rotation);
  const Vector3& translation = received.translation;
  if (!rotation || !std::isfinite(translation[0] + translation[1] + translation[2]))
    throw RosMessageError("the frame " + quote(received.child) +
                          " has no position: a number is not finite, or its rotation is 0");
  return {*rotation, translation};
}

}  // namespace

RosbagCycles::RosbagCycles(const ReadingOptions& options, RosbagPersons& persons, bool keepsFaces, RobotHead head)
  : _adapter(options), _persons(persons), _head(std::move(head)), _keepsFaces(keepsFaces)
{}

void RosbagCycles::advance(TimePoint time)
{
  _openForVoices(time);
  if (_cycle && time - _cycle->begin > longestCycle)
    _close();
  _now = std::max(_now, time);
}

void RosbagCycles::transform(const std::vector<RosTransform>& transforms)
{
  for (const RosTransform& received : transforms)
  {
    const std::string child = frameName(received.child);
    const Transform transform = transformOf(received);
    const bool isFace = startsWith(child, facePrefix);
    const std::string face = child.substr(std::min(child.size(), facePrefix.size()));
    if (isFace && _cycle && _cycle->posed.count(face) > 0)
      _close();  // with the frame as it was
    if (!_tree.set(frameName(received.parent), child, transform))
      throw RosMessageError("there are more than " + std::to_string(TransformTree::mostFrames) + " frames");
    if (isFace)
      _pose(face);
    else if (startsWith(child, gazePrefix))
      _noteGaze(face);
  }
}

void RosbagCycles::trackedFaces(const RosIdsList& list)
{
  _lastReceived = _now;
  _tracked = std::set<std::string>(list.ids.begin(), list.ids.end());
  _trackingFrame = frameName(list.header.frame);
  // If nobody is left, there are no frames of faces, either, which would begin a cycle.
  if (!_cycle && (!_lastCycle || _now - *_lastCycle >= shortestPeriod))
    _open();
}

void RosbagCycles::expression(const std::string& face, const RosExpression& expression)
{
  const FaceReadings readings = readingsOf(expression);
  if (readings.expressions)
    _readingOf(face).pending.expressions.emplace(_now, *readings.expressions);
}

void RosbagCycles::actionUnits(const std::string& face, const RosActionUnits& units)
{
  const auto person = _persons.ofFace(face);
  const FaceReadings readings =
      person ? readingsOf(units, _adapter, _now, _resting.of(*person, _now)) : readingsOf(units, _adapter);
  KV::PersonObservation& pending = _readingOf(face).pending;
  if (readings.smile)
    pending.smile.emplace(_now, *readings.smile);
  if (readings.expressions && !pending.expressions)  // a classifier of expressions is more reliable
    pending.expressions.emplace(_now, *readings.expressions);
}

void RosbagCycles::landmarks(const std::string& face, const RosLandmarks& landmarks)
{
  _readingOf(face).pending.facialPoints.emplace(_now, *readingsOf(landmarks).facialPoints);
}

// A guess without any confidence is left out.
void RosbagCycles::softBiometrics(const std::string& face, const RosSoftBiometrics& found)
{
  const bool isAgeKnown = found.ageConfidence > 0.f;
  const bool isGenderKnown = found.genderConfidence > 0.f &&
                             (found.gender == RosSoftBiometrics::female || found.gender == RosSoftBiometrics::male);
  if (!isAgeKnown && !isGenderKnown)
    return;
  KV::PersonObservation& pending = _readingOf(face).pending;
  if (isAgeKnown)
    pending.age.emplace(_now, KV::ValueConfidence<unsigned int>(found.age, found.ageConfidence));
  if (isGenderKnown)
    pending.gender.emplace(
        _now, KV::ValueConfidence<bool>(found.gender == RosSoftBiometrics::female, found.genderConfidence));
}

void RosbagCycles::speaking(const std::string& voice, bool speaks)
{
  const auto person = _persons.ofVoice(voice);
  if (!person)
    return;
  _speaking[*person].emplace(_now, speaks);
  if (_endOfFace(*person) <= _now)
    _open();
}

// A message may have some of the joints only.
void RosbagCycles::joints(const RosJointStates& states)
{
  KV::RobotHeadPosture posture = _headPosture ? _headPosture->value : KV::RobotHeadPosture();
  bool isKnown = false;
  for (std::size_t i = 0; i < states.names.size() && i < states.positions.size(); ++i)
    for (std::size_t joint = 0; joint < _head.joints.size() && joint < 2; ++joint)
    {
      if (states.names[i] != _head.joints[joint] || states.names[i].empty() || !std::isfinite(states.positions[i]))
        continue;
      (joint == 0 ? posture.yaw : posture.pitch) = degrees(states.positions[i]);
      isKnown = true;
    }
  if (isKnown)
    _headPosture.emplace(_now, posture);
}

void RosbagCycles::finish()
{
  if (_cycle)
    _close();
}

void RosbagCycles::fade(TimePoint now)
{
  advance(now);
  _tracked = boost::none;  // the writer of the list may be gone, too
  if (_inView.empty())
    return;
  _open();
  _close();
}

void RosbagCycles::forgetOld()
{
  for (auto face = _faces.begin(); face != _faces.end();)
  {
    if (_now - face->second.lastReceived <= longestKept)
    {
      ++face;
      continue;
    }
    _tree.remove(gazePrefix + face->first);
    _tree.remove(facePrefix + face->first);
    _persons.forgetFace(face->first);
    face = _faces.erase(face);
  }
  _persons.forgetFormer(_reported);
  const auto forgetUnknown = [this](auto& byPerson) {
    for (auto entry = byPerson.begin(); entry != byPerson.end();)
      entry = _persons.isKnown(entry->first) ? std::next(entry) : byPerson.erase(entry);
  };
  forgetUnknown(_speaking);
  forgetUnknown(_withFace);
  forgetUnknown(_byVoice);
  forgetUnknown(_withHead);
}

void RosbagCycles::forget(std::int32_t person)
{
  _reported.erase(person);
  _inView.forget(person);
  _speaking.erase(person);
  _withFace.erase(person);
  _byVoice.erase(person);
  _withHead.erase(person);
}

boost::optional<Step> RosbagCycles::take()
{
  if (_entries.empty())
    return {};
  Step entry = std::move(_entries.front());
  _entries.pop_front();
  return entry;
}

RosbagCycles::Face& RosbagCycles::_face(const std::string& name)
{
  const auto found = _faces.find(name);
  if (found != _faces.end())
  {
    found->second.lastReceived = _now;
    return found->second;
  }
  if (_faces.size() >= RosbagPersons::mostFaces)
    throw RosMessageError("there are more than " + std::to_string(RosbagPersons::mostFaces) + " faces");
  Face& face = _faces[name];
  face.lastReceived = _now;
  return face;
}

void RosbagCycles::_open()
{
  if (_cycle)
    return;
  _cycle = Cycle{_now, {}, {}};
  if (_headPosture)
    _headOfCycle = _headPosture;
}

// A reading of a voice waited for a face that did not come.
void RosbagCycles::_openForVoices(TimePoint time)
{
  if (_cycle)
    return;
  TimePoint first = time;
  for (const auto& spoken : _speaking)
    first = std::min(first, _endOfFace(spoken.first));
  if (first == time)
    return;
  _now = std::max(_now, first);
  _open();
}

// Returns when the person's voice waits for the face no longer.
RosbagCycles::TimePoint RosbagCycles::_endOfFace(std::int32_t person) const
{
  const auto found = _withFace.find(person);
  return found == _withFace.end() ? TimePoint::min() : found->second + longestBreak;
}

// Adds steps for those who spoke and have no face.
void RosbagCycles::_addVoices(std::set<std::int32_t>& seen, std::vector<Step>& entries)
{
  for (auto spoken = _speaking.begin(); spoken != _speaking.end();)
  {
    const auto& [person, reading] = *spoken;
    if (_endOfFace(person) > _now)
    {
      ++spoken;
      continue;
    }
    Step entry;
    entry.person = person;
    entry.personName = _persons.nameOf(person);
    entry.time = std::max(_cycle->begin, reading->time);
    entry.observation.speaking = reading;
    _addHead(person, entry.observation);
    _byVoice[person] = {entry.time, reading->value};
    _lastHeard = entry.time;
    seen.insert(person);
    entries.push_back(std::move(entry));
    spoken = _speaking.erase(spoken);
  }
}

// The camera is in the robot's head: it looks along its z.
void RosbagCycles::_noteHead()
{
  if (_head.base.empty() || _cycle->posed.empty())
    return;
  const auto camera = _cameraOf(_cycle->posed.begin()->first);
  const auto inBase = camera ? _tree.find(_head.base, *camera) : std::nullopt;
  if (!inBase)
    return;
  const auto& [forward, left, up] = inBase->rotation.axis(2);
  _headOfCycle.emplace(_cycle->begin, KV::RobotHeadPosture(degrees(std::atan2(left, forward)),
                                                           degrees(std::atan2(up, std::hypot(forward, left)))));
}

// Each person gets the same angles once.
void RosbagCycles::_addHead(std::int32_t person, KV::PersonObservation& observation)
{
  if (!_headOfCycle)
    return;
  const auto given = _withHead.find(person);
  if (given != _withHead.end() && given->second == _headOfCycle->time)
    return;
  _withHead[person] = _headOfCycle->time;
  observation.robotHeadPosture = _headOfCycle;
}

void RosbagCycles::_pose(const std::string& face)
{
  _face(face).posedAt = _now;  // it comes first: there may be too many faces
  _open();
  _lastReceived = _now;
  _cycle->posed[face] = _now;
  _cycle->faces.insert(face);
}

void RosbagCycles::_noteGaze(const std::string& name)
{
  const auto gaze = _tree.find(facePrefix + name, gazePrefix + name);
  if (!gaze)
    return;
  Face& face = _face(name);
  face.gazeIsNew = true;
  if (!face.firstGaze)
    face.firstGaze = gaze->rotation;
  if ((face.firstGaze->inverse() * gaze->rotation).angle() > stillGaze)
    _gaze = Gaze::Free;
  else if (_gaze == Gaze::None)
    _gaze = Gaze::FollowsFace;
}

// Readings of a face wait for its next frame, unless it has no frames.
RosbagCycles::Face& RosbagCycles::_readingOf(const std::string& name)
{
  Face& face = _face(name);
  face.pendingSince = _now;
  _lastReceived = _now;
  if (!face.posedAt || _now - *face.posedAt > longestBreak)
  {
    _open();
    _cycle->faces.insert(name);
  }
  return face;
}

void RosbagCycles::_close()
{
  std::set<std::int32_t> seen;
  std::vector<Step> entries;
  _noteHead();
  for (const std::string& name : _cycle->faces)
  {
    const auto person = _persons.ofFace(name);
    if (!person)
      throw RosMessageError("there are more than " + std::to_string(RosbagPersons::mostFaces) + " faces");
    const bool isFirst = seen.insert(*person).second;
    if (!isFirst)
      continue;  // the face of a person was found again, under another name
    if (auto entry = _entryOf(name, _face(name), *person))
      entries.push_back(std::move(*entry));
    _withFace[*person] = _now;
    _byVoice.erase(*person);
  }
  _addVoices(seen, entries);
  std::stable_sort(entries.begin(), entries.end(),
                   [](const Step& left, const Step& right) { return left.time < right.time; });
  _entries.insert(_entries.end(), entries.begin(), entries.end());
  _reported.insert(seen.begin(), seen.end());
  _reportMissing(seen);
  _lastCycle = _cycle->begin;
  _cycle = boost::none;
}

boost::optional<Step> RosbagCycles::_entryOf(const std::string& name, Face& face, std::int32_t person)
{
  Step entry;
  entry.person = person;
  entry.personName = _persons.nameOf(person);
  entry.time = _cycle->begin;
  entry.observation = std::exchange(face.pending, {});
  if (face.pendingSince)
    entry.time = std::max(entry.time, *face.pendingSince);
  face.pendingSince = boost::none;
  _addPose(name, face, person, entry.observation);
  if (entry.observation.faceDetected)
    entry.time = std::max(entry.time, entry.observation.faceDetected->time);
  else
    entry.observation.faceDetected.emplace(entry.time, true);

  _addHead(person, entry.observation);
  const auto spoken = _speaking.find(person);
  if (spoken != _speaking.end())
  {
    entry.observation.speaking = spoken->second;
    _speaking.erase(spoken);
  }
  return entry;
}

void RosbagCycles::_addPose(const std::string& name, Face& face, std::int32_t person,
                            KV::PersonObservation& observation)
{
  const auto posed = _cycle->posed.find(name);
  const auto camera = _cameraOf(name);
  if (posed == _cycle->posed.end() || !camera)
    return;
  recordings::Face detected;
  detected.frontEnd = FrontEnd::Ros4Hri;
  detected.pose = poseOf(*_tree.find(*camera, facePrefix + name));
  const auto gaze = _tree.find(*camera, gazePrefix + name);
  if (gaze && std::exchange(face.gazeIsNew, false))
    detected.pose.gaze = gazeOf(*gaze);
  RestingFace& rest = _resting.of(person, posed->second);
  const KV::PersonObservation posedObservation = _adapter.read(detected, posed->second, rest).observedAt(posed->second);
  observation.faceDetected = posedObservation.faceDetected;
  observation.headPosture = posedObservation.headPosture;
  observation.gaze = posedObservation.gaze;
  observation.distance = posedObservation.distance;
  observation.headHeight = posedObservation.headHeight;
}

// The frame of the camera that sees the face: the frame_id of the tracked faces; else a parent that is called optical,
// or the direct parent of the face.
boost::optional<std::string> RosbagCycles::_cameraOf(const std::string& face) const
{
  const std::string frame = facePrefix + face;
  if (!_trackingFrame.empty() && _trackingFrame != frame && _tree.find(_trackingFrame, frame))
    return _trackingFrame;
  const auto ancestors = _tree.ancestors(frame);
  if (ancestors.empty())
    return {};
  const auto optical = std::find_if(ancestors.begin(), ancestors.end(),
                                    [](const std::string& name) { return name.find("optical") != std::string::npos; });
  return optical != ancestors.end() ? *optical : ancestors.front();
}

// Persons who are there by voice alone are not missing.
void RosbagCycles::_seeHeard()
{
  for (auto entry = _byVoice.begin(); entry != _byVoice.end();)
  {
    const auto& [person, voice] = *entry;
    if (_now - voice.heard > (voice.speaks ? longestKept : longestPause))
    {
      entry = _byVoice.erase(entry);
      continue;
    }
    _inView.see(person);
    ++entry;
  }
}

void RosbagCycles::_reportMissing(const std::set<std::int32_t>& seen)
{
  for (const std::int32_t person : seen)
    _inView.see(person);
  _seeHeard();
  for (auto face = _faces.begin(); face != _faces.end();)
  {
    const auto person = _persons.ofFace(face->first);
    const auto& posedAt = face->second.posedAt;
    if (person && _reported.count(*person) > 0 && _isAround(face->first, face->second))
      _inView.see(*person);
    const bool isOld = posedAt && _now - *posedAt > longestKept && !face->second.pendingSince;
    face = isOld && !_keepsFaces ? _faces.erase(face) : std::next(face);
  }

  if (_lastMissing && _cycle->begin - *_lastMissing < shortestPeriod)
    return;
  _lastMissing = _cycle->begin;
  for (const std::int32_t person : _inView.endCycle())
  {
    Step entry;
    entry.time = _now;
    entry.person = person;
    entry.personName = _persons.nameOf(person);
    entry.seen = false;
    _entries.push_back(std::move(entry));
  }
}

bool RosbagCycles::_isAround(const std::string& name, const Face& face) const
{
  if (_tracked)
    return _tracked->count(name) > 0;
  return face.posedAt && _now - *face.posedAt <= longestUnknown;
}

}  // namespace KV::recordings
