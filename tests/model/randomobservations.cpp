#include "model/randomobservations.hpp"

#include <cmath>
#include <limits>

namespace model
{

template <typename T, typename Value>
void RandomObservations::_read(std::optional<Reading<T>>& reading, Sensor sensor, Value value)
{
  if (!random.chance(presence(sensor)))
    return;
  const Nanoseconds time = timeOfReading(_now);
  reading = Reading<T>{time, value()};
}

Observation RandomObservations::next(Nanoseconds now)
{
  _now = now;
  const auto flag = [this] { return random.chance(0.5); };
  const auto length = [this] { return metres(); };

  Observation observation;
  _read(observation.lookingAtRobot, Sensor::Face, flag);
  _read(observation.headHeight, Sensor::Face, length);
  _read(observation.distance, Sensor::Face, length);
  _read(observation.gaze, Sensor::Face, [this] { return _nextGaze(); });
  _read(observation.smile, Sensor::Face, [this] { return _scored(); });
  _read(observation.expressions, Sensor::Face, [this] { return _expressions(); });
  _read(observation.headPosture, Sensor::Face, [this] { return _nextHead(); });
  _read(observation.gender, Sensor::Face, flag);
  _read(observation.age, Sensor::Face, [this] { return static_cast<unsigned int>(random.between(0, 99)); });
  _read(observation.faceDetected, Sensor::Face, flag);
  _read(observation.facialPoints, Sensor::Face, [this] { return _facialPoints(); });
  _read(observation.voiceEmotion, Sensor::Microphone, [this] { return _expressions(); });
  _read(observation.asrEmotion, Sensor::Microphone, [this] { return speechValence(); });
  _read(observation.speaking, Sensor::Microphone, [this] { return random.chance(0.05); });
  _read(observation.touchEmotion, Sensor::Touch, [this] { return emotion(); });
  _read(observation.contextEmotion, Sensor::Context, [this] { return ContextEmotion{emotion(), lifetimeInSeconds()}; });
  _read(observation.robotHeadPosture, Sensor::RobotHead, [this] { return _nextRobotHead(); });
  return observation;
}

/// Wanders, and now and then turns elsewhere or straight to the robot.
float RandomObservations::angle(float last)
{
  if (random.chance(0.03))
    return random.uniform(-50.f, 50.f);
  if (random.chance(0.03) || !std::isfinite(last))
    return 0.f;
  return last + random.uniform(-1.f, 1.f);
}

Expressions RandomObservations::_expressions()
{
  Expressions expressions;
  for (Scored* scored : {&expressions.calm, &expressions.anger, &expressions.joy, &expressions.sorrow,
                         &expressions.laughter, &expressions.excitement, &expressions.surprise})
    *scored = _scored();
  return expressions;
}

FacialPoints RandomObservations::_facialPoints()
{
  FacialPoints points;
  for (float& confidence : points.confidences)
    confidence = score();
  return points;
}

Gaze RandomObservations::_nextGaze()
{
  _gaze = {angle(_gaze.yaw), angle(_gaze.pitch)};
  return _gaze;
}

HeadPosture RandomObservations::_nextHead()
{
  _head = {angle(_head.yaw), angle(_head.pitch), angle(_head.roll)};
  return _head;
}

RobotHeadPosture RandomObservations::_nextRobotHead()
{
  _robotHead = {angle(_robotHead.yaw), angle(_robotHead.pitch)};
  return _robotHead;
}

double ThirtyHertz::presence(Sensor sensor)
{
  switch (sensor)
  {
    case Sensor::Face:
      return 0.98;
    case Sensor::RobotHead:
      return 1.0;
    case Sensor::Microphone:
      return 0.05;
    case Sensor::Touch:
    case Sensor::Context:
      return 0.01;
  }
  return 0.0;
}

/// Changes less per frame than a camera of ten frames a second would show; often too little for an estimate to react.
float ThirtyHertz::angle(float last)
{
  return random.chance(0.01) ? random.uniform(-50.f, 50.f) : last + random.uniform(-0.3f, 0.3f);
}

Nanoseconds DisorderedTimes::timeOfReading(Nanoseconds now)
{
  if (random.chance(0.3))
    return _usedTime;
  _usedTime = random.chance(0.1) ? now + random.between(0, 2000 * millisecond)
                                 : now - random.between(0, random.oneOf({100, 1000, 8000, 22000}) * millisecond);
  return _usedTime;
}

Nanoseconds SteppedClock::step()
{
  if (random.chance(0.03))
    return random.between(-30000 * millisecond, 30000 * millisecond);
  return random.chance(0.1) ? 0 : random.between(-20 * millisecond, 200 * millisecond);
}

bool FewSenses::isSomebodyElse()
{
  if (!random.chance(1.0 / 50.0))
    return false;
  for (double& presence : _presences)
    presence = random.oneOf({0.0, 0.0, 0.02, 0.3});
  return true;
}

namespace
{

/// The angle between the two at which the function, which is monotone there, has this value.
template <typename Function>
float angleWhere(Function function, float value, float below, float above)
{
  const bool rises = function(below) < function(above);
  while (std::nextafter(below, above) < above)
  {
    const float middle = below + (above - below) / 2.f;
    const float found = function(middle);
    if (found == value)
      return middle;
    ((found < value) == rises ? below : above) = middle;
  }
  return above;
}

}  // namespace

Boundaries::Boundaries(std::uint64_t seed)
  : RandomObservations(seed),
    _attentiveGaze(angleWhere([](float angle) { return smoothedWeight(angle, 20.f); }, 0.9f, 0.f, 40.f)),
    _decidingHeadYaw(angleWhere(headFactor, 0.35f, 10.f, 35.f)),
    _robotYawAtRest(angleWhere([](float change) { return weight(change, 7.f); }, 0.95f, 0.f, 14.f)),
    _robotPitchAtRest(angleWhere([](float change) { return weight(change, 3.5f); }, 0.95f, 0.f, 7.f))
{}

Nanoseconds Boundaries::step()
{
  return random.oneOf({0, 1, 499, 500, 999, 1000, 1001, 3000, 4000, 7000, 7001, 20000, 20001}) * millisecond;
}

Nanoseconds Boundaries::timeOfReading(Nanoseconds now)
{
  const int ageInMs = random.oneOf(
      {0, 0, 0, 0, 999, 1000, 1001, 2000, 3000, 3999, 4000, 4001, 6999, 7000, 7001, 20000, 20001, -1, -1000});
  const int more = random.oneOf({0, 0, 1, -1, 999999, -999999});
  return now - ageInMs * millisecond - more;
}

float Boundaries::angle(float last)
{
  if (random.chance(0.2))
    return last;
  if (random.chance(0.3))
  {
    const float change = random.oneOf({0.3f, 0.45f, 0.9f, _robotYawAtRest, _robotPitchAtRest, 3.5f, 7.f});
    return random.chance(0.5) ? last + change : last - change;
  }
  const float bound = beside(random.oneOf({0.f, 0.f, 6.f, 10.f, 12.f, 15.f, 20.f, 30.f, 35.f, 40.f, _attentiveGaze,
                                           _attentiveGaze, _decidingHeadYaw, 10000.f, 15000.f}));
  return random.chance(0.5) ? -bound : bound;
}

float Boundaries::lifetimeInSeconds()
{
  return random.oneOf({-1.f, -0.f, 0.f, 0.5f, beside(1.f), 2.f, beside(20.f), 1999.f, 2000.f, 2001.f, 1e6f});
}

int Boundaries::emotion()
{
  return random.oneOf({-1, 0, 1, 2, -2, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()});
}

float Boundaries::beside(float bound)
{
  const float inf = std::numeric_limits<float>::infinity();
  return random.oneOf({bound, bound, bound, std::nextafter(bound, inf), std::nextafter(bound, -inf)});
}

float BrokenNumbers::broken(float value)
{
  using limits = std::numeric_limits<float>;
  if (!random.chance(0.02))
    return value;
  return random.oneOf({limits::quiet_NaN(), -limits::quiet_NaN(), limits::infinity(), -limits::infinity(),
                       limits::max(), limits::lowest(), limits::min(), limits::denorm_min(), -0.f, 1e30f});
}

}  // namespace model
