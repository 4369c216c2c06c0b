#include "commands/camerasource.hpp"

#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>

namespace KV::tools
{

namespace
{

using Json = nlohmann::ordered_json;
using recordings::MemberError;

constexpr int ok = 200;
constexpr int badRequest = 400;
constexpr int refused = 409;
constexpr std::chrono::seconds longestSilence(3);  // of the page that sends

// 2020-01-01: where recordings begin whose times count from their start [s since 1970].
constexpr std::int64_t beginOfVideo = 1577836800;
constexpr double nanosecondsPerSecond = 1e9;

session::Duration seconds(double count)
{
  return session::Duration(std::llround(count * nanosecondsPerSecond));
}

/// Lowers the confidences of smile and expressions, which the blendshapes made.
void lower(recordings::FaceReadings& readings, float share)
{
  if (readings.smile)
    readings.smile->confidence *= share;
  if (!readings.expressions)
    return;
  for (const auto expression :
       {&KV::Expressions::calm, &KV::Expressions::anger, &KV::Expressions::joy, &KV::Expressions::sorrow,
        &KV::Expressions::laughter, &KV::Expressions::excitement, &KV::Expressions::surprise})
    ((*readings.expressions).*expression).confidence *= share;
}

KV::PersonObservation observationOf(const FoundFace& found, const recordings::FaceAdapter& adapter,
                                    session::TimePoint time, recordings::RestingFace& rest)
{
  recordings::FaceReadings readings = adapter.read(found.face, time, rest);
  lower(readings, found.blendshapeConfidence);
  if (found.emotions)
  {
    recordings::Face face;
    face.frontEnd = found.face.frontEnd;
    face.confidence = found.emotionConfidence;
    face.emotions = found.emotions;
    readings.expressions = adapter.read(face).expressions;
  }
  if (found.smile)
    readings.smile.emplace(found.smile->value, found.smile->confidence);
  return readings.observedAt(time);
}

}  // namespace

CameraSource::CameraSource(const LiveArguments& arguments, const LiveListeners& listeners,
                           std::function<session::TimePoint()> wallClock, std::string name,
                           std::function<Clock::time_point()> steadyClock)
  : _name(std::move(name)),
    _adapter(arguments.reading.options),
    _session(_isVideo() ? session::StreamTimes::Lines : session::StreamTimes::Arrival, std::move(wallClock),
             listeners.observers, arguments.cycle),
    _steadyClock(std::move(steadyClock))
{
  _session.onPersonForgotten(listeners.left);
  _status.name = _isVideo() ? _name : "camera";
}

OrderAnswer CameraSource::takeFrame(const std::string& json)
{
  try
  {
    const Frame frame = readFrame(json);
    const Clock::time_point now = _steadyClock();
    if (!_maySend(frame.page, now))
      return {refused, "Another page sends already. Close it, and wait for three seconds."};
    const session::TimePoint time = _checkedTime(frame);
    _letIn(frame.page, now);
    _status.ended = frame.ended;
    for (recordings::Step& step : _stepsOf(frame, time))
      _takeOrCount(std::move(step));
    for (const std::int32_t track : frame.left)
      _forget(track, time);
    return {ok, _answer()};
  }
  catch (const MemberError& error)
  {
    _countRefused(error);
    return {badRequest, _status.lastError};
  }
}

bool CameraSource::_maySend(const std::string& page, Clock::time_point now) const
{
  return page == _page || _page.empty() || now - _lastFrame >= longestSilence;
}

session::TimePoint CameraSource::_timeOf(const Frame& frame) const
{
  if (frame.time)
    return session::TimePoint(boost::chrono::seconds(beginOfVideo)) + seconds(*frame.time);
  return _isVideo() ? _session.now() : _session.present() - seconds(frame.age);
}

/// \throws MemberError if the frame lacks a time, or cannot have this one.
session::TimePoint CameraSource::_checkedTime(const Frame& frame) const
{
  const bool isEndOfVideo = _isVideo() && frame.ended && frame.faces.empty();
  if (_isVideo() && !frame.time && !isEndOfVideo)
    throw MemberError("time", "is missing");
  if (!_isVideo() && frame.time)
    throw MemberError("time", "is for videos only");
  const session::TimePoint time = _timeOf(frame);
  if (_isVideo() && time < _session.now())
    throw MemberError("time", "lies before the last frame. A session takes a video once: start the command again");
  return time;
}

/// Returns a step for each face, and for each person who is lost; new faces are new persons.
std::vector<recordings::Step> CameraSource::_stepsOf(const Frame& frame, session::TimePoint time)
{
  std::vector<recordings::Step> steps;
  for (const FoundFace& found : frame.faces)
  {
    const auto [place, isNew] = _tracked.try_emplace(found.track);
    if (isNew)
      place->second.person = ++_persons;
    recordings::Step& step = steps.emplace_back();
    step.time = time;
    step.person = place->second.person;
    step.observation = observationOf(found, _adapter, time, place->second.rest);
  }
  for (const std::int32_t track : frame.lost)
    if (const auto place = _tracked.find(track); place != _tracked.end())
    {
      recordings::Step& step = steps.emplace_back();
      step.time = time;
      step.person = place->second.person;
      step.seen = false;
    }
  return steps;
}

/// Lets the page send; if it is another one, the persons of the page before leave.
void CameraSource::_letIn(const std::string& page, Clock::time_point now)
{
  if (page != _page)
    while (!_tracked.empty())
      _forget(_tracked.begin()->first, _session.present());
  _page = page;
  _lastFrame = now;
}

/// Plays the step of one person; if the session refuses it, the others of the frame are played nevertheless.
void CameraSource::_takeOrCount(recordings::Step step)
{
  try
  {
    _take(std::move(step));
  }
  catch (const MemberError& error)
  {
    _countRefused(error);
  }
}

void CameraSource::_countRefused(const MemberError& error)
{
  ++_status.refused;
  _status.lastError = textOf(error);
}

void CameraSource::_take(recordings::Step step)
{
  ++_status.lines;
  step.isDated = !_isVideo() || _first;
  _session.take(recordings::StreamLine{{}, {}, std::move(step)});
  if (!_first)
    _first = _session.now();
}

void CameraSource::_forget(std::int32_t track, session::TimePoint time)
{
  const auto tracked = _tracked.find(track);
  if (tracked == _tracked.end())
    return;
  recordings::StreamLine line;
  line.entry.time = time;
  line.leaving = {tracked->second.person};
  _session.take(std::move(line));
  _tracked.erase(tracked);
}

std::string CameraSource::_answer() const
{
  Json persons = Json::object();
  for (const auto& [track, tracked] : _tracked)
    persons[std::to_string(track)] = tracked.person;
  return Json({{"time", _first ? (_session.now() - *_first).count() : 0}, {"persons", persons}}).dump();
}

std::string CameraSource::takeScopes(recordings::Step step)
{
  return takeScopesInto(_session, std::move(step));
}

InputStatus CameraSource::status() const
{
  return _status;
}

std::vector<std::string> CameraSource::takeNotes()
{
  return _session.takeNotes();
}

}  // namespace KV::tools
