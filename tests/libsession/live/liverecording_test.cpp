#include "libsession/entries.hpp"

#include <skeigiot/session/liverecording.hpp>
#include <skeigiot/session/livesession.hpp>
#include <skeigiot/session/outputstream.hpp>
#include <skeigiot/session/player.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::LiveRecording;
using KV::session::LiveSession;
using KV::session::Snapshot;
using KV::session::StreamTimes;
using ::testing::HasSubstr;

std::string textOf(const LiveRecording::Part& part)
{
  const auto stream = part.open();
  return {std::istreambuf_iterator<char>(*stream), {}};
}

/// The bits of all that is known of a person after an update.
std::string bitsOf(const Snapshot& snapshot)
{
  std::string bits;
  const auto add = [&bits](const auto& value) {
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    bits += bytes;
  };
  add(snapshot.time.time_since_epoch().count());
  add(snapshot.seen);
  add(snapshot.valence.value);
  add(snapshot.valence.confidence);
  add(snapshot.valenceBinary.value);
  add(snapshot.attention.value);
  add(snapshot.attention.confidence);
  add(snapshot.zone);
  add(snapshot.pleasure);
  add(snapshot.ease.level);
  add(snapshot.ease.confidence);
  return bits;
}

struct StateLog : KV::session::SessionObserver
{
  void personUpdated(const Snapshot& snapshot) override { states[snapshot.person].push_back(bitsOf(snapshot)); }
  std::map<std::int32_t, std::vector<std::string>> states;
};

std::map<std::int32_t, std::vector<std::string>> replayed(const LiveRecording::Part& part)
{
  StateLog log;
  const auto stream = part.open();
  const KV::session::Outcome outcome = KV::session::Player({}).play(
      [&] { return KV::recordings::openRecording(*stream, "saved", "jsonl", {}); }, {&log});
  EXPECT_FALSE(outcome.error);
  return log.states;
}

class LiveRecordingTest : public ::testing::Test
{
protected:
  LiveRecordingTest()
  {
    session.onPersonForgotten([this](std::int32_t person) { recording.remove(person); });
  }

  void take(const std::string& line)
  {
    wallClock += milliseconds(29);
    session.take(line);
  }

  static std::string smiles(std::int32_t person, double smile)
  {
    return R"({"person":)" + std::to_string(person) + R"(,"observation":{"smile":{"value":)" + std::to_string(smile) +
           R"(,"confidence":0.9},"gaze":{"yaw":3,"pitch":1},"headPosture":{"yaw":)" + std::to_string(50. * smile) +
           R"(,"pitch":2,"roll":0}}})";
  }

  KV::session::TimePoint wallClock = start;
  StateLog live;
  LiveRecording recording{::testing::TempDir()};
  LiveSession session{StreamTimes::Arrival, [this] { return wallClock; }, {&live, &recording}};
};

TEST_F(LiveRecordingTest, ReplaysToTheSameBits)
{
  constexpr unsigned seed = 18;
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> share(0., 1.);
  for (int i = 0; i < 2000; ++i)
  {
    const double smile = share(random);
    const auto person = static_cast<std::int32_t>(share(random) * 3.);
    take(smiles(person, smile));
    if (i % 100 == 50)
      take(R"({"start":[{"scope":"part"}],"ambiance":{"activity":0.5}})");
    if (i % 100 == 90)
      take(R"({"stop":["part"]})");
    if (i == 500)
    {
      EXPECT_GT(recording.part().size(), 0U);  // a part that is saved early changes nothing
    }
  }

  auto replay = replayed(recording.part());

  ASSERT_EQ(3U, live.states.size());
  for (auto& [person, states] : live.states)
  {
    ASSERT_GE(replay[person].size(), states.size());
    replay[person].resize(states.size());  // the end of the recording updates who waits
    EXPECT_EQ(states, replay[person]) << "seed " << seed << ", person " << person;
    EXPECT_GT(states.size(), 100U);
  }
}

TEST_F(LiveRecordingTest, GivesWhoComesBackAfterLeavingANumberOfTheirOwn)
{
  for (int i = 0; i < 10; ++i)
    take(smiles(7, 1.));
  take(R"({"leave":[7],)" + smiles(7, 0.).substr(1));
  for (int i = 0; i < 10; ++i)
    take(smiles(7, 0.));
  take(smiles(1001, 0.5));

  auto replay = replayed(recording.part());

  const std::vector<std::string>& states = live.states[7];
  std::vector<std::string> both = replay[7];
  both.insert(both.end(), replay[1001].begin(), replay[1001].end());
  ASSERT_EQ(3U, replay.size());
  EXPECT_EQ(1U, replay[1002].size()) << "the number of somebody else is not used twice";
  for (const std::string& state : states)
    EXPECT_NE(both.end(), std::find(both.begin(), both.end(), state));
}

TEST_F(LiveRecordingTest, SavesWholeLinesAsTheyAreAtThatMoment)
{
  EXPECT_EQ(0U, recording.part().size());
  take(smiles(1, 1.));
  const LiveRecording::Part early = recording.part();
  take(smiles(2, 1.));
  EXPECT_THAT(textOf(early), HasSubstr("\"person\":1"));
  EXPECT_EQ('\n', textOf(early).back());
  EXPECT_THAT(textOf(recording.part()), HasSubstr("\"person\":2"));
  EXPECT_EQ(textOf(early), textOf(recording.part()).substr(0, early.size()));
}

TEST_F(LiveRecordingTest, GivesNoBytesBeyondItsEnd)
{
  take(smiles(1, 1.));
  const LiveRecording::Part part = recording.part();
  std::string bytes(10, ' ');
  EXPECT_EQ(10U, part.read(0, bytes.data(), 10));
  EXPECT_EQ('{', bytes.front());
  EXPECT_EQ(1U, part.read(part.size() - 1, bytes.data(), 10));
  EXPECT_EQ(0U, part.read(part.size(), bytes.data(), 10));
  EXPECT_EQ(0U, part.read(part.size() + 1, bytes.data(), 10));
}

TEST(LiveRecording, NeedsAFolder)
{
  EXPECT_THROW(LiveRecording("/nowhere/at/all"), KV::session::WriteError);
}

}  // namespace
