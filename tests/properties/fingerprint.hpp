#pragma once

#include "bodylanguagestateprivate.hpp"
#include "personmemoryprivate.hpp"
#include "personstateprivate.hpp"

#include <skeigiot/person.hpp>

#include <boost/thread/lock_guard.hpp>

#include <cstring>
#include <string>
#include <type_traits>

namespace properties
{

/// Every bit of a person's records, including memories, except addresses.
///
/// Two persons with the same fingerprint behave equally, now and later.
class Fingerprint
{
public:
  static std::string of(const KV::Person& person)
  {
    Fingerprint print;
    print._add(person.personID);
    print._add(*person.personState._p);
    print._add(*person.personMemory._p);
    return print._bytes;
  }

private:
  template <typename T>
  std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>> _add(const T& number)
  {
    char bytes[sizeof(T)];  // NOLINT(modernize-avoid-c-arrays): of the size of the number
    std::memcpy(bytes, &number, sizeof(T));
    _bytes.append(bytes, sizeof(T));
  }

  template <typename... Ts>
  void _addAll(const Ts&... parts)
  {
    (_add(parts), ...);
  }

  template <typename T>
  void _add(const KV::ValueConfidence<T>& value)
  {
    _addAll(value.value, value.confidence);
  }

  void _add(ko::SystemClock::time_point time) { _add(time.time_since_epoch().count()); }
  void _add(const KV::Gaze& gaze) { _addAll(gaze.yaw, gaze.pitch); }
  void _add(const KV::RobotHeadPosture& posture) { _addAll(posture.yaw, posture.pitch); }
  void _add(const KV::HeadPosture& posture) { _addAll(posture.yaw(), posture.pitch(), posture.roll()); }
  void _add(const KV::Smile& smile) { _addAll(smile.value, smile.confidence); }
  void _add(const KV::ContextEmotion& emotion) { _addAll(emotion.valence, emotion.lifetime); }
  void _add(const KV::BodyLanguageEase& ease) { _addAll(ease.level, ease.confidence); }

  void _add(const KV::Expressions& scores)
  {
    _addAll(scores.calm, scores.anger, scores.joy, scores.sorrow, scores.laughter, scores.excitement, scores.surprise);
  }

  void _add(const KV::FacialPoints& points)
  {
    for (int i = KV::FacialPoint0; i <= KV::FacialPoint11; ++i)
    {
      const KV::FacialPoints::Point point = points.facialPoint(static_cast<KV::PointDescription>(i));
      _addAll(point.value.first, point.value.second, point.confidence);
    }
  }

  template <typename T>
  void _add(const KV::ShortTermMemory<T>& memory)
  {
    const boost::lock_guard<boost::mutex> lock(memory.mutex());
    _add(memory.records().size());
    for (const KV::Timestamped<T>& record : memory.records())
      _addAll(record.time, record.value);
  }

  void _add(const KV::PersonMemoryPrivate& memory)
  {
    _addAll(memory.headPostureMemory, memory.distanceMemory, memory.lookingAtRobotMemory, memory.smileMemory,
            memory.gazeMemory, memory.expressionsMemory, memory.genderMemory, memory.ageMemory,
            memory.faceDetectedMemory, memory.facialPointsMemory, memory.touchEmotionMemory, memory.asrEmotionMemory,
            memory.contextEmotionMemory, memory.speakingMemory, memory.robotHeadPostureMemory);
  }

  void _add(const KV::PersonStatePrivate& state)
  {
    _addAll(state.bodyLanguageState._p->ease, state.valence, state.unsmoothedValence, state.attention,
            state.attentionZone, state.smile, state.gaze, state.expressions, state.headHeight, state.headAngles,
            state.frequencyGaze, state.frequencyFace);
    for (const float angle : state.attentionAngles)
      _add(angle);
    for (const float estimate : state.attentionEstimates)
      _add(estimate);
    for (const ko::SystemClock::time_point time : state.lastObservationTimes)
      _add(time);
  }

  std::string _bytes;
};

}  // namespace properties
