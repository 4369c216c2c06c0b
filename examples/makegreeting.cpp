/// Makes a recording of a minute in front of a robot, as a script: two persons come, are greeted, and one leaves.
///
/// usage: makegreeting FILE    writes JSON Lines of skeigiot; the same bytes at every run

#include "curve.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <vector>

namespace
{

using boost::chrono::milliseconds;
using ko::SystemClock;

constexpr SystemClock::time_point beginning{boost::chrono::seconds(1577836800)};  // 2020-01-01T00:00:00Z
constexpr milliseconds cycle(100);
constexpr milliseconds duration(60000);

/// A time span [s]; its start is included, its end is not.
struct Stretch
{
  float from;
  float to;

  bool contains(float time) const { return from <= time && time < to; }
};

/// An event in the life of a person.
template <typename T>
struct Event
{
  float time;  ///< [s]
  T what;
};

/// The script of one person.
struct Role
{
  std::int32_t id;
  std::vector<Stretch> visible;
  std::vector<Stretch> speaking;
  Curve headYaw;    // [deg], positive is the person's own right
  Curve headPitch;  // [deg], positive is up
  Curve distance;   // [m]
  float headHeight;
  Curve smile;
  Curve sorrow;
  Curve surprise;
  Curve voiceJoy;
  std::vector<Event<float>> words;  // valence of the words
  std::vector<Event<std::int32_t>> touches;
  std::vector<Event<KV::ContextEmotion>> contexts;
};

/// The first person comes from the side, is greeted, talks, strokes the robot, and waves goodbye.
Role visitor()
{
  return {1,
          {{2.f, 54.f}},
          {{10.f, 14.f}, {21.f, 25.f}, {49.f, 51.f}},
          {{2.f, 45.f},
           {5.f, 38.f},
           {7.f, 3.f},
           {30.f, -2.f},
           {31.f, -28.f},
           {35.f, -26.f},
           {37.f, 2.f},
           {51.f, 2.f},
           {54.f, 50.f}},
          {{2.f, -8.f}, {7.f, 2.f}, {51.f, 1.f}, {54.f, -10.f}},
          {{2.f, 2.6f}, {7.f, 1.1f}, {50.f, 1.1f}, {54.f, 2.4f}},
          1.68f,
          {{7.f, 0.05f}, {9.f, 0.85f}, {13.f, 0.5f}, {20.f, 0.35f}, {26.f, 0.8f}, {32.f, 0.3f}, {49.f, 0.8f}},
          {{2.f, 0.f}},
          {{8.f, 0.f}, {8.5f, 0.5f}, {9.5f, 0.f}},
          {{10.f, 0.4f}, {25.f, 0.7f}},
          {{13.f, 0.6f}, {24.f, 0.8f}},
          {{28.f, 1}},
          {}};
}

/// The second person keeps away, has had a bad day, says so, and is cheered up by a song.
Role doubter()
{
  return {2,
          {{20.f, 47.f}, {49.f, 60.f}},
          {{33.f, 35.f}},
          {{20.f, 36.f}, {30.f, 28.f}, {32.f, 12.f}, {38.f, 18.f}, {41.f, 4.f}, {60.f, -3.f}},
          {{20.f, -14.f}, {32.f, -6.f}, {41.f, 2.f}},
          {{20.f, 1.9f}, {32.f, 1.45f}, {41.f, 1.2f}},
          1.82f,
          {{40.f, 0.02f}, {46.f, 0.6f}, {60.f, 0.75f}},
          {{20.f, 0.55f}, {38.f, 0.65f}, {42.f, 0.15f}, {46.f, 0.f}},
          {{39.f, 0.f}, {40.f, 0.4f}, {42.f, 0.f}},
          {{33.f, 0.f}},
          {{34.5f, -0.5f}},
          {},
          {{40.f, KV::ContextEmotion(1, 4.f)}}};
}

/// The robot turns from one person to the other.
const Curve robotHeadYaw = {{30.f, -8.f}, {32.f, 22.f}, {36.f, 22.f}, {38.f, 5.f}};
/// How much activity there is in the room.
const Curve roomActivity = {{0.f, 0.005f}, {2.f, 0.05f},  {8.f, 0.02f}, {20.f, 0.06f},
                            {30.f, 0.03f}, {54.f, 0.05f}, {60.f, 0.01f}};

/// The tremor of a tracker, the same at every run.
class Tremor
{
public:
  /// Returns a value in [-amplitude, amplitude].
  float operator()(float amplitude)
  {
    constexpr float half = 2147483648.f;
    return amplitude * (static_cast<float>(_random()) / half - 1.f);
  }

private:
  std::mt19937 _random{20200101U};
};

bool anyContains(const std::vector<Stretch>& stretches, float time)
{
  const auto contains = [time](const Stretch& stretch) { return stretch.contains(time); };
  return std::any_of(stretches.begin(), stretches.end(), contains);
}

/// Sets the reading to the event in the cycle from `time` on, if there is one.
template <typename T>
void setReading(const std::vector<Event<T>>& events, float time, SystemClock::time_point now,
                KV::PersonObservation::Reading<T>& reading)
{
  for (const Event<T>& event : events)
    if (std::fabs(event.time - time) < 0.01f)
      reading = KV::Timestamped<T>(now, event.what);
}

KV::Expressions expressionsOf(const Role& role, float time)
{
  constexpr float confidence = 0.9f;
  const float joy = 0.9f * role.smile(time);
  const float sorrow = role.sorrow(time);
  const float surprise = role.surprise(time);
  KV::Expressions expressions;
  expressions.joy = {joy, confidence};
  expressions.sorrow = {sorrow, confidence};
  expressions.surprise = {surprise, confidence};
  expressions.calm = {1.f - std::max({joy, sorrow, surprise}), confidence};
  return expressions;
}

KV::FacialPoints facialPoints(float confidence)
{
  KV::FacialPoints points;
  for (int i = 0; i < 12; ++i)
  {
    const auto step = static_cast<float>(i);
    points.setFacialPoint(static_cast<KV::PointDescription>(i),
                          {{300.f + 10.f * step, 200.f + 5.f * step}, confidence});
  }
  return points;
}

KV::PersonObservation observe(const Role& role, float time, SystemClock::time_point now, Tremor& tremor)
{
  const float yaw = role.headYaw(time) + tremor(0.8f);
  const float pitch = role.headPitch(time) + tremor(0.8f);
  const float roll = tremor(1.f);
  // Not inside the argument list: compilers choose its order of evaluation.
  const float gazePitch = 0.9f * pitch + tremor(1.5f);
  const float gazeYaw = -0.9f * yaw + tremor(1.5f);

  KV::PersonObservation observation;
  observation.faceDetected = KV::Timestamped(now, true);
  observation.headPosture = KV::Timestamped(now, KV::HeadPosture(yaw, pitch, roll));
  observation.gaze = KV::Timestamped(now, KV::Gaze(gazeYaw, gazePitch));
  observation.smile = KV::Timestamped(now, KV::Smile(role.smile(time), 0.9f));
  observation.expressions = KV::Timestamped(now, expressionsOf(role, time));
  observation.facialPoints = KV::Timestamped(now, facialPoints(0.92f + tremor(0.05f)));
  observation.distance = KV::Timestamped(now, role.distance(time));
  observation.headHeight = KV::Timestamped(now, role.headHeight);
  observation.robotHeadPosture = KV::Timestamped(now, KV::RobotHeadPosture(robotHeadYaw(time), 0.f));

  const bool speaking = anyContains(role.speaking, time);
  observation.speaking = KV::Timestamped(now, speaking);
  if (speaking)
  {
    KV::VoiceEmotion voice;
    voice.KV::Expressions::joy = {role.voiceJoy(time), 0.7f};
    observation.voiceEmotion = KV::Timestamped(now, voice);
  }
  setReading(role.words, time, now, observation.asrEmotion);
  setReading(role.touches, time, now, observation.touchEmotion);
  setReading(role.contexts, time, now, observation.contextEmotion);
  return observation;
}

KV::recordings::Step stepOf(const Role& role, float time, SystemClock::time_point now, Tremor& tremor)
{
  KV::recordings::Step entry;
  entry.time = now;
  entry.person = role.id;
  entry.seen = anyContains(role.visible, time);
  if (entry.seen)
    entry.observation = observe(role, time, now, tremor);
  return entry;
}

/// The readings of the room, and the scopes that begin and end, in the cycle from `time` on.
KV::recordings::Step roomStep(milliseconds sinceStart, SystemClock::time_point now)
{
  const auto ms = sinceStart.count();
  KV::recordings::Step entry;
  entry.time = now;
  entry.ambianceActivity = roomActivity(static_cast<float>(ms) / 1000.f);
  entry.movements = ms == 2000 || ms == 20000 || ms == 53000 ? 2 : 0;
  if (ms == 0)
    entry.scopeStarts = {{"arrival"}};
  else if (ms == 12000)
  {
    entry.scopeStarts = {{"conversation"}};
    entry.scopeStops = {"arrival"};
  }
  else if (ms == 45000)
  {
    entry.scopeStarts = {{"farewell"}};
    entry.scopeStops = {"conversation"};
  }
  return entry;
}

void writeGreeting(std::ostream& stream)
{
  KV::recordings::JsonLinesWriter writer(stream);
  Tremor tremor;
  const std::vector<Role> roles = {visitor(), doubter()};
  for (milliseconds sinceStart(0); sinceStart < duration; sinceStart += cycle)
  {
    const SystemClock::time_point now = beginning + sinceStart;
    const float time = static_cast<float>(sinceStart.count()) / 1000.f;
    writer.write(roomStep(sinceStart, now));
    for (const Role& role : roles)
      if (time >= role.visible.front().from)
        writer.write(stepOf(role, time, now, tremor));
  }

  KV::recordings::Step ending;
  ending.time = beginning + duration;
  ending.scopeStops = {"farewell"};
  writer.write(ending);
}

}  // namespace

int main(int argc, char** argv)
{
  if (argc != 2)
  {
    std::cerr << "usage: makegreeting FILE\n";
    return 2;
  }
  std::ofstream file(argv[1]);
  writeGreeting(file);
  file.close();
  if (!file)
  {
    std::cerr << "makegreeting: cannot write " << argv[1] << '\n';
    return 1;
  }
  return 0;
}
