#include "statedigest.hpp"

#include <bodylanguagestateprivate.hpp>
#include <personmemoryprivate.hpp>
#include <personstateprivate.hpp>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace benchmarks
{

namespace
{

template <typename Number, typename = std::enable_if_t<std::is_arithmetic_v<Number>>>
void add(Digest& digest, Number number)
{
  digest.add(number);
}

void add(Digest& digest, ko::SystemClock::time_point time)
{
  digest.add(time.time_since_epoch().count());
}

template <typename T>
void add(Digest& digest, const KV::ValueConfidence<T>& scored)
{
  add(digest, scored.value);
  add(digest, scored.confidence);
}

void add(Digest& digest, const KV::Smile& smile)
{
  add(digest, smile.smile());
}

void add(Digest& digest, const KV::Gaze& gaze)
{
  digest.add(gaze.yaw);
  digest.add(gaze.pitch);
}

void add(Digest& digest, const KV::HeadPosture& posture)
{
  digest.add(posture.yaw());
  digest.add(posture.pitch());
  digest.add(posture.roll());
}

void add(Digest& digest, const KV::RobotHeadPosture& posture)
{
  digest.add(posture.yaw);
  digest.add(posture.pitch);
}

void add(Digest& digest, const KV::ContextEmotion& emotion)
{
  digest.add(emotion.valence);
  digest.add(emotion.lifetime);
}

void add(Digest& digest, const KV::Expressions& expressions)
{
  add(digest, expressions.calm);
  add(digest, expressions.anger);
  add(digest, expressions.joy);
  add(digest, expressions.sorrow);
  add(digest, expressions.laughter);
  add(digest, expressions.excitement);
  add(digest, expressions.surprise);
}

void add(Digest& digest, const KV::FacialPoints& points)
{
  constexpr int count = 12;
  for (int i = 0; i < count; ++i)
  {
    const KV::FacialPoints::Point point = points.facialPoint(static_cast<KV::PointDescription>(i));
    digest.add(point.value.first);
    digest.add(point.value.second);
    digest.add(point.confidence);
  }
}

void add(Digest& digest, const KV::BodyLanguageEase& ease)
{
  digest.add(ease.level);
  digest.add(ease.confidence);
}

void add(Digest& digest, const std::vector<float>& numbers)
{
  digest.add(numbers.size());
  for (const float number : numbers)
    digest.add(number);
}

template <typename T>
void add(Digest& digest, const KV::ShortTermMemory<T>& memory)
{
  digest.add(memory.records().size());
  for (const KV::Timestamped<T>& record : memory.records())
  {
    add(digest, record.time);
    add(digest, record.value);
  }
}

void add(Digest& digest, const KV::PersonStatePrivate& state)
{
  add(digest, state.bodyLanguageState._p->ease);
  add(digest, state.valence);
  add(digest, state.unsmoothedValence);
  add(digest, state.attention);
  digest.add(static_cast<std::int32_t>(state.attentionZone));
  add(digest, state.smile);
  add(digest, state.gaze);
  add(digest, state.expressions);
  digest.add(state.headHeight);
  add(digest, state.headAngles);
  digest.add(state.frequencyGaze);
  digest.add(state.frequencyFace);
  add(digest, state.attentionAngles);
  add(digest, state.attentionEstimates);
  for (const ko::SystemClock::time_point time : state.lastObservationTimes)
    add(digest, time);
}

void add(Digest& digest, const KV::PersonMemoryPrivate& memory)
{
  add(digest, memory.headPostureMemory);
  add(digest, memory.distanceMemory);
  add(digest, memory.lookingAtRobotMemory);
  add(digest, memory.smileMemory);
  add(digest, memory.gazeMemory);
  add(digest, memory.expressionsMemory);
  add(digest, memory.genderMemory);
  add(digest, memory.ageMemory);
  add(digest, memory.faceDetectedMemory);
  add(digest, memory.facialPointsMemory);
  add(digest, memory.touchEmotionMemory);
  add(digest, memory.asrEmotionMemory);
  add(digest, memory.contextEmotionMemory);
  add(digest, memory.speakingMemory);
  add(digest, memory.robotHeadPostureMemory);
}

void addQueries(Digest& digest, const KV::PersonState& state)
{
  for (const KV::PersonDescription description : {KV::Positive, KV::Negative, KV::Attention})
    add(digest, state.personEmotion(description));
  add(digest, state.personValence());
  add(digest, state.personValenceBinary());
  add(digest, state.personUnsmoothedValenceBinary());
  add(digest, state.personAttention());
  digest.add(state.personAttentionZone());
  digest.add(static_cast<std::int32_t>(state.personPleasureState()));
  digest.add(static_cast<std::int32_t>(state.personAttentionState()));
  add(digest, state.smile());
  add(digest, state.expressions());
  add(digest, state.gaze());
  add(digest, state.headAngles());
  digest.add(state.headHeight());
  add(digest, state.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription));
}

/// A text shows the sign of a NaN, which depends on the compiler's order of operands.
std::string withoutSignsOfNan(std::string text)
{
  constexpr std::string_view negative = "-nan";
  for (std::size_t at = text.find(negative); at != std::string::npos; at = text.find(negative, at))
    text.erase(at, 1);
  return text;
}

void addTexts(Digest& digest, const KV::Person& person)
{
  std::ostringstream text;
  text << person << person.personState << person.personState.bodyLanguageState();
  text << person.personState.emotionLogMessage();
  digest.add(withoutSignsOfNan(text.str()));
}

}  // namespace

void add(Digest& digest, const KV::Person& person)
{
  digest.add(person.personID);
  add(digest, *person.personState._p);
  add(digest, *person.personMemory._p);
  addQueries(digest, person.personState);
  const auto [pleasure, zone] = person.personDescriptor();
  digest.add(static_cast<std::int32_t>(pleasure));
  digest.add(static_cast<std::int32_t>(zone));
  addTexts(digest, person);
}

}  // namespace benchmarks
