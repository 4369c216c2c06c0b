#pragma once

#include "camera/frame.hpp"
#include "commands/livesource.hpp"
#include "serve/orders.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/restingface.hpp>
#include <skeigiot/session/livesession.hpp>

#include <boost/optional/optional.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace KV::tools
{

/// The faces that a page finds in the pictures of a camera, or of a video.
///
/// FaceAdapter makes readings of them, by the options for recordings. A frame of a camera takes effect at its arrival;
/// its readings are as old as the frame says. The frames of a video have the times of the video.
class CameraSource : public LiveSource
{
public:
  /// \param name      of the video; empty: a camera
  /// \param wallClock returns the time of arrival
  /// \param steadyClock measures for how long the page that sends has been silent
  CameraSource(const LiveArguments& arguments, const LiveListeners& listeners,
               std::function<session::TimePoint()> wallClock, std::string name,
               std::function<Clock::time_point()> steadyClock = Clock::now);

  /// Takes a frame, as the page writes it in JSON.
  ///
  /// \return with status 200 and a JSON object: `time` of the session [ns], and `persons`, the numbers of the persons
  ///   by their tracks. A frame that cannot be read changes nothing. A face that the session refuses is left out, and
  ///   counted in status(). Only one page sends at a time: the frames of a second one are refused until the first one
  ///   has been silent for three seconds.
  OrderAnswer takeFrame(const std::string& json);

  std::vector<pollfd> descriptors() const override { return {}; }
  Clock::time_point due() const override { return Clock::time_point::max(); }
  bool take(bool) override { return false; }
  std::string takeScopes(recordings::Step step) override;
  session::TimePoint present() const override { return _session.present(); }
  InputStatus status() const override;
  std::vector<std::string> takeNotes() override;

private:
  /// Somebody whose face was found.
  struct Tracked
  {
    std::int32_t person = 0;
    recordings::RestingFace rest;
  };

  using Tracks = std::map<std::int32_t, Tracked>;

  bool _isVideo() const { return !_name.empty(); }
  bool _maySend(const std::string& page, Clock::time_point now) const;
  session::TimePoint _timeOf(const Frame& frame) const;
  session::TimePoint _checkedTime(const Frame& frame) const;
  std::vector<recordings::Step> _stepsOf(const Frame& frame, session::TimePoint time);
  void _letIn(const std::string& page, Clock::time_point now);
  void _takeOrCount(recordings::Step step);
  void _countRefused(const recordings::MemberError& error);
  void _take(recordings::Step step);
  void _forget(std::int32_t track, session::TimePoint time);
  std::string _answer() const;

  std::string _name;
  recordings::FaceAdapter _adapter;
  session::LiveSession _session;
  InputStatus _status;
  Tracks _tracked;            // by the track
  std::int32_t _persons = 0;  // so many were numbered
  boost::optional<session::TimePoint> _first;
  std::string _page;  // the one that sends
  std::function<Clock::time_point()> _steadyClock;
  Clock::time_point _lastFrame;
};

}  // namespace KV::tools
