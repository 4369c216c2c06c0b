#pragma once

#include "librecordings/support.hpp"

#include <skeigiot/recordings/implausible.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace support
{

/// Steps of a recording with everything that the format can hold, in the order of their times.
class RandomEntries
{
public:
  explicit RandomEntries(std::uint32_t seed) : _random(seed) {}

  KV::recordings::Step next()
  {
    KV::recordings::Step entry;
    _nanoseconds += _upTo(100000000);
    entry.time = timeOf(_nanoseconds);
    if (_perhaps())
      entry.scopeStarts.push_back({_text(), _integer()});
    if (_perhaps())
      entry.scopeStarts.push_back({_text(), -1});
    entry.movements = _perhaps() ? static_cast<int>(_upTo(std::numeric_limits<int>::max())) : 0;
    if (_perhaps())
      entry.ambianceActivity = _float();
    if (_perhaps())
    {
      entry.person = _integer();
      entry.seen = _perhaps();
      if (entry.seen)
        _fill(entry.observation);
    }
    if (_perhaps())
      entry.scopeStops = {_text(), _text()};
    return entry;
  }

private:
  bool _perhaps() { return (_random() & 1U) != 0; }
  std::int64_t _upTo(std::int64_t most) { return static_cast<std::int64_t>(_random()) % (most + 1); }
  std::int32_t _integer() { return static_cast<std::int32_t>(_random()); }

  std::string _text()
  {
    static const std::array<const char*, 5> texts = {"greeting", "", "with \"quotes\"\n", "\xC3\xA4\xE2\x82\xAC",
                                                     "a\\b/c\t"};
    return texts.at(_random() % texts.size());
  }

  // Any finite float by its bits, and often one at the ends of the range.
  float _float()
  {
    using Limits = std::numeric_limits<float>;
    static const std::array<float, 12> special = {0.f,
                                                  -0.f,
                                                  1.f,
                                                  0.1f,
                                                  Limits::quiet_NaN(),
                                                  Limits::infinity(),
                                                  -Limits::infinity(),
                                                  Limits::denorm_min(),
                                                  -Limits::denorm_min(),
                                                  Limits::min(),
                                                  Limits::max(),
                                                  7.038531e-26f};  // wrong if it is converted by double
    if ((_random() & 7U) == 0)
      return special.at(_random() % special.size());
    while (true)
    {
      const auto bits = static_cast<std::uint32_t>(_random());
      float value = 0.f;
      std::memcpy(&value, &bits, sizeof value);
      const bool looksLikePercent = value > 2.f && value <= 100.f;  // the reader refuses such a score
      if (value == value && !looksLikePercent)
        return value;
    }
  }

  KV::ValueConfidence<float> _score() { return {_float(), _float()}; }

  KV::Expressions _expressions()
  {
    KV::Expressions expressions;
    for (auto score : {&KV::Expressions::calm, &KV::Expressions::anger, &KV::Expressions::joy, &KV::Expressions::sorrow,
                       &KV::Expressions::laughter, &KV::Expressions::excitement, &KV::Expressions::surprise})
      if (_perhaps())
        expressions.*score = _score();
    return expressions;
  }

  KV::FacialPoints _facialPoints()
  {
    KV::FacialPoints points;
    for (int i = 0; i < 12; ++i)
      points.setFacialPoint(static_cast<KV::PointDescription>(i), {{_float(), _float()}, _float()});
    return points;
  }

  // Any time except those that look like a present-day date in another unit, which a reader refuses.
  std::int64_t _otherTime()
  {
    while (true)
    {
      const auto high = std::uint64_t{_random()} << 32U;
      const auto nanoseconds = static_cast<std::int64_t>(high | _random());
      if (!KV::recordings::implausibleTime(timeOf(nanoseconds)))
        return nanoseconds;
    }
  }

  template <typename T>
  void _put(KV::PersonObservation::Reading<T>& reading, const T& value)
  {
    const auto time = timeOf(_perhaps() ? _nanoseconds : _otherTime());
    if (_perhaps())
      reading.emplace(time, value);
  }

  void _fill(KV::PersonObservation& observation)
  {
    _put(observation.lookingAtRobot, _perhaps());
    _put(observation.headHeight, _float());
    _put(observation.distance, _float());
    _put(observation.gaze, KV::Gaze(_float(), _float()));
    _put(observation.smile, KV::Smile(_float(), _float()));
    _put(observation.expressions, _expressions());
    _put(observation.headPosture, KV::HeadPosture(_float(), _float(), _float()));
    _put(observation.gender, KV::ValueConfidence<bool>(_perhaps(), _float()));
    _put(observation.age, KV::ValueConfidence<unsigned int>(static_cast<unsigned int>(_random()), _float()));
    _put(observation.faceDetected, _perhaps());
    _put(observation.facialPoints, _facialPoints());
    _put(observation.voiceEmotion, KV::VoiceEmotion(_score(), _score(), _score(), _score(), _score(), _score()));
    _put(observation.asrEmotion, _float());
    _put(observation.touchEmotion, _integer());
    _put(observation.contextEmotion, KV::ContextEmotion(_integer(), _float()));
    _put(observation.speaking, _perhaps());
    _put(observation.robotHeadPosture, KV::RobotHeadPosture(_float(), _float()));
  }

  std::mt19937 _random;
  std::int64_t _nanoseconds = recordingEpoch;
};

}  // namespace support
