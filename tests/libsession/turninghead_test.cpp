// A person turns the head away at 5 degrees a second, from 0 to 60: attention falls at every rate of observations.

#include "libsession/entries.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/livesession.hpp>
#include <skeigiot/session/pacer.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/stream.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace
{

using namespace replaytests;
using KV::session::Cycle;

constexpr double turnsFrom = 2.;  // [s]
constexpr double degreesPerSecond = 5.;
constexpr double passes40At = turnsFrom + 40. / degreesPerSecond;
constexpr double lookedAt = passes40At + 3.;
constexpr float lookedAway = 0.3f;

KV::recordings::Step turningAt(double sinceStart)
{
  const auto yaw = static_cast<float>(std::clamp(degreesPerSecond * (sinceStart - turnsFrom), 0., 60.));
  KV::recordings::Step step = entryAt(sinceStart);
  step.person = 1;
  step.observation.headPosture.emplace(step.time, KV::HeadPosture(yaw, 0.f, 0.f));
  step.observation.gaze.emplace(step.time, KV::Gaze(-yaw, 0.f));
  return step;
}

KV::recordings::Step facingAt(double sinceStart)
{
  KV::recordings::Step step = entryAt(sinceStart);
  step.observation.headPosture.emplace(step.time, KV::HeadPosture(0.f, 0.f, 0.f));
  step.observation.gaze.emplace(step.time, KV::Gaze(0.f, 0.f));
  return step;
}

/// Keeps the present attention.
struct AttentionLog : KV::session::SessionObserver
{
  void personUpdated(const KV::session::Snapshot& snapshot) override { attention = snapshot.attention.value; }
  float attention = 0.f;
};

class TurningHead : public ::testing::TestWithParam<double>
{
protected:
  template <typename Take>
  static void turn(Take take)
  {
    for (int i = 0; i / GetParam() <= lookedAt; ++i)
      take(turningAt(i / GetParam()));
  }
};

TEST_P(TurningHead, IsNoticedByAPacer)
{
  ko::ManualClock clock(start);
  const ko::ScopedClockSource scope(clock);
  KV::session::Pacer pacer;
  KV::Person person;
  float atFirst = 0.f;
  turn([&](const KV::recordings::Step& step) {
    clock.set(step.time);
    pacer.take(person, step.observation);
    if (step.time <= start + inNanoseconds(turnsFrom))
      atFirst = person.personState.personAttention().value;
  });
  EXPECT_GT(atFirst, 0.8f);
  EXPECT_LT(person.personState.personAttention().value, lookedAway);
}

TEST_P(TurningHead, IsNoticedInAReplay)
{
  std::string lines;
  turn([&lines](const KV::recordings::Step& step) { lines += KV::recordings::stepToJson(step) + '\n'; });
  const TemporaryFolder folder;
  const std::string path = folder.write("turning.jsonl", lines);
  AttentionLog log;
  KV::session::Player({}).play([&path] { return KV::recordings::openRecording(path, "", {}); }, {&log});
  EXPECT_LT(log.attention, lookedAway);
}

TEST_P(TurningHead, IsNoticedInAStream)
{
  KV::session::Stream stream(KV::session::StreamTimes::Lines, [] { return start; });
  nlohmann::json answer;
  turn([&](const KV::recordings::Step& step) {
    answer = nlohmann::json::parse(stream.answer(KV::recordings::stepToJson(step)));
  });
  EXPECT_LT(answer["attention"].get<float>(), lookedAway);
}

TEST_P(TurningHead, IsNoticedLive)
{
  KV::session::TimePoint arrival;
  AttentionLog log;
  KV::session::LiveSession live(KV::session::StreamTimes::Arrival, [&arrival] { return arrival; }, {&log});
  turn([&](const KV::recordings::Step& step) {
    arrival = step.time;
    live.take(KV::recordings::stepToJson(step));
  });
  EXPECT_LT(log.attention, lookedAway);
}

TEST_P(TurningHead, IsNoticedInEachOfSeveralPersons)
{
  constexpr int persons = 5;
  std::map<std::int32_t, float> attention;
  struct Attentions : KV::session::SessionObserver
  {
    explicit Attentions(std::map<std::int32_t, float>& found) : _found(found) {}
    void personUpdated(const KV::session::Snapshot& snapshot) override
    {
      _found[snapshot.person] = snapshot.attention.value;
    }
    std::map<std::int32_t, float>& _found;
  } log(attention);
  KV::session::Session session({}, {&log});
  // The observations have times of their own. The last person continues to face the robot.
  for (int i = 0; i / GetParam() <= lookedAt; ++i)
    for (int person = 1; person <= persons; ++person)
    {
      const double time = i / GetParam() + person * 0.13 / (GetParam() * persons);
      KV::recordings::Step step = person < persons ? turningAt(time) : facingAt(time);
      step.person = person;
      session.play(step);
    }
  session.finish();
  ASSERT_EQ(static_cast<std::size_t>(persons), attention.size());
  EXPECT_GT(attention[persons], 0.8f);
  attention.erase(persons);
  for (const auto& [person, value] : attention)
    EXPECT_LT(value, lookedAway) << "person " << person;
}

INSTANTIATE_TEST_SUITE_P(AtRatesOfCameras, TurningHead,
                         ::testing::Values(5., 6., 7., 7.5, 8., 9., 10., 11., 12., 12.5, 13., 14., 15., 16., 18., 20.,
                                           24., 25., 29.97, 30., 48., 50., 60., 90., 100., 120.));

TEST(TurningHeadAtTheRecordedRate, IsNotNoticedAt30Hz)
{
  AttentionLog log;
  KV::session::Session session({}, {&log}, Cycle::recorded());
  for (int i = 0; i / 30. <= lookedAt; ++i)
    session.play(turningAt(i / 30.));
  EXPECT_GT(log.attention, 0.9f) << "if this is noticed, the cycle is not needed any more";
}

}  // namespace
