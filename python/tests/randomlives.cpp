/// Runs random observations and writes, a line each, every event and the library's result, so that another language can
/// repeat the same run.

#include <model/randomobservations.hpp>
#include <model/translation.hpp>

#include <skeigiot/facialpoints.hpp>
#include <skeigiot/person.hpp>

#include <ko/log.hpp>
#include <ko/systemclock.hpp>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <cstring>
#include <iostream>
#include <string>

namespace
{

using nlohmann::json;

constexpr std::uint64_t seed = 20261121;
constexpr int cyclesOfALife = 200;

/// A float as its bits: JSON has no NaN.
json written(float number)
{
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

json written(bool truth)
{
  return truth;
}

json written(std::int32_t number)
{
  return number;
}

json written(unsigned int number)
{
  return number;
}

json written(const std::pair<float, float>& point)
{
  return json::array({written(point.first), written(point.second)});
}

template <typename T>
json written(const KV::ValueConfidence<T>& scored)
{
  return json::array({written(scored.value), written(scored.confidence)});
}

json written(const KV::Gaze& gaze)
{
  return json::array({written(gaze.yaw), written(gaze.pitch)});
}

json written(const KV::HeadPosture& head)
{
  return json::array({written(head.yaw()), written(head.pitch()), written(head.roll())});
}

json written(const KV::RobotHeadPosture& head)
{
  return json::array({written(head.yaw), written(head.pitch)});
}

json written(const KV::Smile& smile)
{
  return json::array({written(smile.value), written(smile.confidence)});
}

json written(const KV::Expressions& scores)
{
  return json::array({written(scores.calm), written(scores.anger), written(scores.joy), written(scores.sorrow),
                      written(scores.laughter), written(scores.excitement), written(scores.surprise)});
}

json written(const KV::VoiceEmotion& scores)
{
  return json::array({written(scores.calm()), written(scores.anger()), written(scores.joy()), written(scores.sorrow()),
                      written(scores.laughter()), written(scores.excitement())});
}

json written(const KV::FacialPoints& points)
{
  json list = json::array();
  for (int point = 0; point < 12; ++point)
    list.push_back(written(points.facialPoint(static_cast<KV::PointDescription>(point))));
  return list;
}

json written(const KV::ContextEmotion& emotion)
{
  return json::array({written(emotion.valence), written(emotion.lifetime)});
}

template <typename T>
void add(json& readings, const char* name, const boost::optional<KV::Timestamped<T>>& reading)
{
  if (reading)
    readings[name] = {model::toNanoseconds(reading->time), written(reading->value)};
}

json written(const KV::PersonObservation& observation)
{
  json readings = json::object();
  add(readings, "lookingAtRobot", observation.lookingAtRobot);
  add(readings, "headHeight", observation.headHeight);
  add(readings, "distance", observation.distance);
  add(readings, "gaze", observation.gaze);
  add(readings, "smile", observation.smile);
  add(readings, "expressions", observation.expressions);
  add(readings, "headPosture", observation.headPosture);
  add(readings, "gender", observation.gender);
  add(readings, "age", observation.age);
  add(readings, "faceDetected", observation.faceDetected);
  add(readings, "facialPoints", observation.facialPoints);
  add(readings, "voiceEmotion", observation.voiceEmotion);
  add(readings, "asrEmotion", observation.asrEmotion);
  add(readings, "touchEmotion", observation.touchEmotion);
  add(readings, "contextEmotion", observation.contextEmotion);
  add(readings, "speaking", observation.speaking);
  add(readings, "robotHeadPosture", observation.robotHeadPosture);
  return readings;
}

json written(const KV::PersonState& state)
{
  const KV::BodyLanguageEase ease = state.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription);
  return {{"valence", written(state.personValence())},
          {"attention", written(state.personAttention())},
          {"valenceBinary", state.personValenceBinary().value},
          {"unsmoothedValenceBinary", written(state.personUnsmoothedValenceBinary())},
          {"pleasureState", static_cast<int>(state.personPleasureState())},
          {"attentionState", static_cast<int>(state.personAttentionState())},
          {"lastSmile", written(state.smile())},
          {"lastExpressions", written(state.expressions())},
          {"lastGaze", written(state.gaze())},
          {"lastHeadAngles", written(state.headAngles())},
          {"lastHeadHeight", written(state.headHeight())},
          {"ease", json::array({written(ease.level), written(ease.confidence)})}};
}

/// Runs cycles of one character; a line without an observation is a cycle in which the person is not seen.
template <typename Life>
void write(const std::string& name)
{
  Life life(seed);
  ko::ManualClock clock(model::toTimePoint(0));
  const ko::ScopedClockSource scope(clock);
  model::Nanoseconds now = 1577836800000 * model::millisecond;  // 2020-01-01T00:00:00Z
  KV::Person person;
  for (int cycle = 0; cycle < cyclesOfALife; ++cycle)
  {
    json line = {{"life", name}, {"now", now += life.step()}, {"isSomebodyElse", cycle == 0 || life.isSomebodyElse()}};
    clock.set(model::toTimePoint(now));
    if (line["isSomebodyElse"])
      person = KV::Person();
    if (life.isUnseen())
      person.decreaseSinceNotSeen();
    else
    {
      const KV::PersonObservation observation = model::toLibrary(life.next(now));
      line["observation"] = written(observation);
      person.update(observation);
    }
    line["state"] = written(person.personState);
    std::cout << line << '\n';
  }
}

}  // namespace

int main()
{
  ko::log::addHandler([](const ko::log::Record&) {});  // many observations are old here, so warnings are expected
  write<model::SparseReadings>("sparse readings");
  write<model::ThirtyHertz>("thirty hertz");
  write<model::AllSensors>("all sensors");
  write<model::DisorderedTimes>("disordered times");
  write<model::SteppedClock>("stepped clock");
  write<model::FewSenses>("few senses");
  write<model::Boundaries>("boundaries");
  write<model::TiedScores>("tied scores");
  write<model::BrokenNumbers>("broken numbers");
  write<model::UnseenCycles>("unseen cycles");
}
