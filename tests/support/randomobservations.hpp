#pragma once

#include "clocktest.hpp"

#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

#include <cstdint>
#include <random>

namespace support
{

/// Makes observations at random from a seed: each reading is there or not, a little old or in the future, with finite
/// values inside and outside of its range.
class RandomObservations
{
public:
  explicit RandomObservations(unsigned int seed) : _random(seed) {}

  KV::PersonObservation next()
  {
    KV::PersonObservation observation;
    _maybe(observation.lookingAtRobot, _flag());
    _maybe(observation.headHeight, _between(0.f, 3.f));
    _maybe(observation.distance, _between(0.f, 5.f));
    _maybe(observation.gaze, KV::Gaze(_angle(), _angle()));
    _maybe(observation.smile, KV::Smile(_score(), _score()));
    _maybe(observation.expressions, _expressions());
    _maybe(observation.headPosture, KV::HeadPosture(_angle(), _angle(), _angle()));
    _maybe(observation.faceDetected, _flag());
    _maybe(observation.facialPoints, _facialPoints());
    _maybe(observation.voiceEmotion,
           KV::VoiceEmotion(_scored(), _scored(), _scored(), _scored(), _scored(), _scored()));
    _maybe(observation.asrEmotion, _between(-2.f, 2.f));
    _maybe(observation.touchEmotion, _integer(-2, 2));
    _maybe(observation.contextEmotion, KV::ContextEmotion(_integer(-3, 3), _between(-1.f, 30.f)));
    _maybe(observation.speaking, _flag());
    _maybe(observation.robotHeadPosture, KV::RobotHeadPosture(_angle(), _angle()));
    return observation;
  }

  /// Returns the time until the next cycle: mostly a frame, sometimes longer than the longest memory.
  milliseconds pause() { return milliseconds(_integer(0, 9) == 0 ? _integer(0, 25000) : _integer(0, 300)); }

private:
  template <typename T>
  void _maybe(boost::optional<KV::Timestamped<T>>& reading, const T& value)
  {
    if (_flag())
      reading = KV::Timestamped<T>(ko::SystemClock::now() - milliseconds(_integer(-500, 2000)), value);
  }

  bool _flag() { return _integer(0, 1) == 1; }
  std::int32_t _integer(std::int32_t least, std::int32_t greatest)
  {
    return std::uniform_int_distribution<std::int32_t>(least, greatest)(_random);
  }
  float _between(float least, float greatest)
  {
    return std::uniform_real_distribution<float>(least, greatest)(_random);
  }
  float _angle() { return _between(-60.f, 60.f); }
  float _score() { return _between(-0.5f, 1.5f); }
  KV::ValueConfidence<float> _scored() { return {_score(), _score()}; }

  KV::Expressions _expressions()
  {
    KV::Expressions expressions;
    for (KV::ValueConfidence<float>* score :
         {&expressions.calm, &expressions.anger, &expressions.joy, &expressions.sorrow, &expressions.laughter,
          &expressions.excitement, &expressions.surprise})
      *score = _scored();
    return expressions;
  }

  KV::FacialPoints _facialPoints()
  {
    KV::FacialPoints points;
    for (int i = 0; i < 12; ++i)
      points.setFacialPoint(static_cast<KV::PointDescription>(i), {{0.f, 0.f}, _score()});
    return points;
  }

  std::mt19937 _random;
};

}  // namespace support
