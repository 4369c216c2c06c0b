#pragma once

#include <skeigiot/readings.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace support
{

/// All bits of a step, one number after the other: two steps with the same bits are the same.
class Bits
{
public:
  static std::vector<std::uint64_t> of(const KV::recordings::Step& entry)
  {
    Bits bits;
    bits._add(entry.time);
    bits._add(entry.isDated);
    bits._addAll(entry.scopeStarts);
    bits._add(entry.movements);
    bits._add(entry.ambianceActivity);
    bits._add(entry.person);
    bits._add(entry.seen);
    bits._add(entry.observation);
    bits._addAll(entry.scopeStops);
    return bits._bits;
  }

private:
  void _add(bool value) { _bits.push_back(value ? 1 : 0); }
  void _add(std::int32_t value) { _bits.push_back(static_cast<std::uint64_t>(value)); }
  void _add(std::uint32_t value) { _bits.push_back(value); }
  void _add(ko::SystemClock::time_point time)
  {
    _bits.push_back(static_cast<std::uint64_t>(time.time_since_epoch().count()));
  }

  void _add(float value)
  {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    _add(bits);
  }

  void _add(const std::string& text)
  {
    _bits.push_back(text.size());
    for (const char character : text)
      _bits.push_back(static_cast<unsigned char>(character));
  }

  void _add(const KV::recordings::ScopeStart& start)
  {
    _add(start.name);
    _add(start.samples);
  }

  void _add(const KV::Gaze& gaze) { _addAll(std::vector<float>{gaze.yaw, gaze.pitch}); }
  void _add(const KV::RobotHeadPosture& posture) { _addAll(std::vector<float>{posture.yaw, posture.pitch}); }
  void _add(const KV::Smile& smile) { _addAll(std::vector<float>{smile.value, smile.confidence}); }
  void _add(const KV::HeadPosture& posture)
  {
    _addAll(std::vector<float>{posture.yaw(), posture.pitch(), posture.roll()});
  }

  template <typename T>
  void _add(const KV::ValueConfidence<T>& value)
  {
    _add(value.value);
    _add(value.confidence);
  }

  void _add(const KV::Expressions& expressions)
  {
    for (auto score : {&KV::Expressions::calm, &KV::Expressions::anger, &KV::Expressions::joy, &KV::Expressions::sorrow,
                       &KV::Expressions::laughter, &KV::Expressions::excitement, &KV::Expressions::surprise})
      _add(expressions.*score);
  }

  void _add(const KV::ContextEmotion& emotion)
  {
    _add(emotion.valence);
    _add(emotion.lifetime);
  }

  void _add(const KV::FacialPoints& points)
  {
    for (int i = 0; i < 12; ++i)
    {
      const auto point = points.facialPoint(static_cast<KV::PointDescription>(i));
      _addAll(std::vector<float>{point.value.first, point.value.second, point.confidence});
    }
  }

  template <typename T>
  void _add(const KV::Timestamped<T>& reading)
  {
    _add(reading.time);
    _add(reading.value);
  }

  template <typename T>
  void _add(const boost::optional<T>& value)
  {
    _add(value.has_value());
    if (value)
      _add(*value);
  }

  template <typename T>
  void _addAll(const std::vector<T>& values)
  {
    _bits.push_back(values.size());
    for (const auto& value : values)
      _add(value);
  }

  void _add(const KV::PersonObservation& observation)
  {
    KV::forEachReading([&](const auto& known) { _add(known.in(observation)); });
  }

  std::vector<std::uint64_t> _bits;
};

}  // namespace support
