#pragma once

#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

/// Shared parts of the benchmarks.
namespace benchmarks
{

/// The time at which the clocks of the benchmarks start: 2020-01-01T00:00:00Z.
constexpr ko::SystemClock::time_point epoch{boost::chrono::seconds(1577836800)};

/// Returns an observation in which all thirteen sensors report at `time`, of a person who smiles at the robot; the
/// angles move a little from call to call, so that no estimate stays in its dead band.
inline KV::PersonObservation fullObservation(ko::SystemClock::time_point time)
{
  const auto wobble = static_cast<float>(time.time_since_epoch().count() / 1000000 % 7);

  KV::Expressions expressions;
  expressions.joy = {0.6f, 0.9f};
  expressions.calm = {0.3f, 0.9f};
  KV::FacialPoints points;
  for (int i = 0; i < 12; ++i)
    points.setFacialPoint(static_cast<KV::PointDescription>(i), {{static_cast<float>(i), 10.f}, 0.9f});
  const KV::ValueConfidence<float> quiet(0.1f, 0.8f);

  KV::PersonObservation observation;
  observation.lookingAtRobot = KV::Timestamped<bool>(time, true);
  observation.headHeight = KV::Timestamped<float>(time, 1.6f);
  observation.distance = KV::Timestamped<float>(time, 1.1f);
  observation.gaze = KV::Timestamped<KV::Gaze>(time, {wobble, 1.f});
  observation.smile = KV::Timestamped<KV::Smile>(time, {0.7f, 0.9f});
  observation.expressions = KV::Timestamped<KV::Expressions>(time, expressions);
  observation.headPosture = KV::Timestamped<KV::HeadPosture>(time, {wobble * 3.f, 2.f, 0.f});
  observation.faceDetected = KV::Timestamped<bool>(time, true);
  observation.facialPoints = KV::Timestamped<KV::FacialPoints>(time, points);
  observation.voiceEmotion =
      KV::Timestamped<KV::VoiceEmotion>(time, KV::VoiceEmotion(quiet, quiet, quiet, quiet, quiet, quiet));
  observation.asrEmotion = KV::Timestamped<float>(time, 0.5f);
  observation.touchEmotion = KV::Timestamped<std::int32_t>(time, 1);
  observation.contextEmotion = KV::Timestamped<KV::ContextEmotion>(time, {1, 3.f});
  observation.speaking = KV::Timestamped<bool>(time, false);
  observation.robotHeadPosture = KV::Timestamped<KV::RobotHeadPosture>(time, {wobble, 0.f});
  return observation;
}

/// Returns an observation of a face alone: head, gaze, smile and expressions.
inline KV::PersonObservation faceObservation(ko::SystemClock::time_point time)
{
  const KV::PersonObservation full = fullObservation(time);
  KV::PersonObservation observation;
  observation.gaze = full.gaze;
  observation.smile = full.smile;
  observation.expressions = full.expressions;
  observation.headPosture = full.headPosture;
  observation.faceDetected = full.faceDetected;
  return observation;
}

}  // namespace benchmarks
