#pragma once

#include "fullobservation.hpp"

#include <cstdint>
#include <random>
#include <vector>

namespace benchmarks
{

/// Frames of a camera, ten a second.
constexpr boost::chrono::milliseconds frameTime(100);
constexpr int framesPerSecond = 10;

/// People who come to a robot, stay for half a minute to ten minutes, and leave; others take their places.
///
/// Nobody comes twice: each visitor has a number of their own.
class Visitors
{
public:
  struct Visitor
  {
    std::int32_t id = 0;
    int framesLeft = 0;  ///< until they go
  };

  Visitors(unsigned int seed, int places) : _random(seed), _places(static_cast<std::size_t>(places)) {}

  /// Returns the present visitors; a visitor without a frame left leaves after this one.
  const std::vector<Visitor>& present() const { return _present; }

  /// Begins the next frame: fills empty places, sometimes.
  void beginFrame()
  {
    constexpr int shortestStay = 30 * framesPerSecond;
    constexpr int longestStay = 600 * framesPerSecond;
    constexpr double arrivals = 1. / (20 * framesPerSecond);  // one in twenty seconds
    if (_present.size() < _places && _happens(arrivals))
      _present.push_back({++_lastId, std::uniform_int_distribution<int>(shortestStay, longestStay)(_random)});
    for (Visitor& visitor : _present)
      --visitor.framesLeft;
  }

  /// Removes leaving visitors from the list, and calls `leave` with each.
  template <typename Leave>
  void endFrame(Leave leave)
  {
    for (std::size_t i = 0; i < _present.size();)
    {
      if (_present[i].framesLeft > 0)
      {
        ++i;
        continue;
      }
      leave(_present[i]);
      _present.erase(_present.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }

  /// Makes all visitors leave with this frame.
  void closeTheDoors()
  {
    for (Visitor& visitor : _present)
      visitor.framesLeft = 0;
  }

  /// Whether the camera sees a visitor in this frame: nearly always.
  bool isSeen() { return !_happens(0.1); }

  /// Returns the sensor readings of a visitor at `time`: the face in each frame, and now and then another reading.
  KV::PersonObservation observation(ko::SystemClock::time_point time)
  {
    const KV::PersonObservation full = fullObservation(time);
    KV::PersonObservation observation = faceObservation(time);
    observation.headHeight = full.headHeight;
    observation.distance = full.distance;
    observation.facialPoints = full.facialPoints;
    observation.speaking = full.speaking;
    observation.robotHeadPosture = full.robotHeadPosture;
    observation.gaze->value.yaw += _random() % 40U < 20U ? 5.f : -5.f;
    observation.smile->value.value = std::uniform_real_distribution<float>(0.f, 1.f)(_random);
    observation.speaking->value = _happens(0.2);
    if (_happens(0.02))
      observation.voiceEmotion = full.voiceEmotion;
    if (_happens(0.02))
      observation.asrEmotion = full.asrEmotion;
    if (_happens(0.01))
      observation.touchEmotion = full.touchEmotion;
    if (_happens(0.005))
      observation.contextEmotion = full.contextEmotion;
    return observation;
  }

private:
  bool _happens(double probability) { return std::bernoulli_distribution(probability)(_random); }

  std::mt19937 _random;
  const std::size_t _places;
  std::vector<Visitor> _present;
  std::int32_t _lastId = 0;
};

}  // namespace benchmarks
