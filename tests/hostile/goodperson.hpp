#pragma once

#include "support/clocktest.hpp"

#include <skeigiot/personobservation.hpp>

#include <cstdlib>

namespace hostile
{

constexpr int framesPerSecond = 10;
constexpr support::milliseconds frameTime(100);

/// Swings between -1 and 1, once in `period` frames, along straight lines.
inline float swing(int frame, int period)
{
  const int phase = frame % period;
  return static_cast<float>(std::abs(2 * phase - period)) / static_cast<float>(period) * 2.f - 1.f;
}

/// The readings of well-behaved sensors at `time`, of a person who likes the robot, looks about a little, and is
/// touched now and then.
inline KV::PersonObservation goodObservation(int frame, ko::SystemClock::time_point time)
{
  KV::Expressions expressions;
  expressions.joy = {0.7f + 0.2f * swing(frame, 30), 0.9f};
  expressions.calm = {0.2f - 0.1f * swing(frame, 30), 0.9f};
  KV::FacialPoints points;
  for (int i = KV::FacialPoint0; i <= KV::FacialPoint11; ++i)
    points.setFacialPoint(static_cast<KV::PointDescription>(i), {{100.f, 100.f}, 0.8f});

  KV::PersonObservation observation;
  observation.lookingAtRobot.emplace(time, true);
  observation.headHeight.emplace(time, 1.6f);
  observation.distance.emplace(time, 1.f);
  observation.gaze.emplace(time, KV::Gaze(15.f * swing(frame, 14), 4.f * swing(frame, 10)));
  observation.smile.emplace(time, KV::Smile(0.6f + 0.3f * swing(frame, 40), 0.8f));
  observation.expressions.emplace(time, expressions);
  observation.headPosture.emplace(time, KV::HeadPosture(20.f * swing(frame, 20), 5.f * swing(frame, 16), 0.f));
  observation.faceDetected.emplace(time, true);
  observation.facialPoints.emplace(time, points);
  observation.speaking.emplace(time, false);
  observation.robotHeadPosture.emplace(time, KV::RobotHeadPosture(2.f * swing(frame, 50), 0.f));
  if (frame % 50 == 0)
    observation.touchEmotion.emplace(time, 1);
  return observation;
}

}  // namespace hostile
