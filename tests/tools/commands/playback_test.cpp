#include "commands/playback.hpp"
#include "libsession/entries.hpp"
#include "libsession/scriptedreader.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using KV::tools::Playback;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using MachineClock = Playback::Clock;
using MachineTime = MachineClock::time_point;

constexpr MachineTime morning{std::chrono::hours(5)};

MachineTime after(double seconds)
{
  return morning + std::chrono::duration_cast<MachineClock::duration>(std::chrono::duration<double>(seconds));
}

struct StepLog : KV::session::SessionObserver
{
  void stepBegins(const KV::recordings::Step& step) override { times.push_back(step.time); }
  std::vector<KV::session::TimePoint> times;
};

class PlaybackTest : public ::testing::Test
{
protected:
  Playback playback(std::vector<ScriptedReader::Step> steps, double speed = 1., std::vector<std::string> warnings = {})
  {
    return Playback(std::make_unique<ScriptedReader>(std::move(steps), std::move(warnings)), speed, {&log},
                    KV::session::Cycle(), morning);
  }

  static std::vector<ScriptedReader::Step> stepsAt(const std::vector<double>& times)
  {
    std::vector<ScriptedReader::Step> steps;
    for (const double time : times)
      steps.push_back(ScriptedReader::entry(seenAt(time, 1)));
    return steps;
  }

  StepLog log;
};

TEST_F(PlaybackTest, PlaysEachStepWhenItsTimeHasCome)
{
  Playback played = playback(stepsAt({100., 100.5, 102.}));
  EXPECT_LE(played.due(), morning);
  played.play(morning);
  EXPECT_THAT(log.times, ElementsAre(start + seconds(100)));
  EXPECT_EQ(after(0.5), played.due());
  played.play(after(0.4));
  EXPECT_EQ(1U, log.times.size());
  played.play(after(0.5));
  EXPECT_EQ(2U, log.times.size());
  EXPECT_FALSE(played.ended());
  played.play(after(9.));
  EXPECT_EQ(3U, log.times.size());
  EXPECT_TRUE(played.ended());
  EXPECT_EQ(3U, played.steps());
  EXPECT_LT(after(1e6), played.due());
}

TEST_F(PlaybackTest, PlaysFasterAndSlower)
{
  Playback fast = playback(stepsAt({0., 8.}), 4.);
  fast.play(morning);
  EXPECT_EQ(after(2.), fast.due());
  EXPECT_EQ(start + seconds(4), fast.at(after(1.)));
  Playback slow = playback(stepsAt({0., 8.}), 0.5);
  slow.play(morning);
  EXPECT_EQ(after(16.), slow.due());
}

TEST_F(PlaybackTest, ShowsTheTimeThatPasses)
{
  Playback played = playback(stepsAt({10., 20.}));
  played.play(morning);
  EXPECT_EQ(start + seconds(10), played.at(morning));
  EXPECT_EQ(start + seconds(13), played.at(after(3.)));
  EXPECT_EQ(inNanoseconds(3.), played.reached(after(3.)));
  EXPECT_EQ(start + seconds(20), played.at(after(30.))) << "the next step is late, and time waits for it";
  played.play(after(30.));
  EXPECT_EQ(start + seconds(20), played.at(after(99.))) << "it stands still at the end";
}

TEST_F(PlaybackTest, DoesNotAdvanceWhileItPauses)
{
  Playback played = playback(stepsAt({0., 10.}));
  played.play(morning);
  played.pause(after(4.));
  EXPECT_LT(after(1e6), played.due());
  played.play(after(50.));
  EXPECT_EQ(1U, log.times.size());
  EXPECT_EQ(start + seconds(4), played.at(after(50.)));
  played.resume(after(60.));
  EXPECT_EQ(start + seconds(4), played.at(after(60.)));
  EXPECT_EQ(after(66.), played.due());
  played.play(after(66.));
  EXPECT_EQ(2U, log.times.size());
}

TEST_F(PlaybackTest, ContinuesAfterBadLines)
{
  Playback played = playback({ScriptedReader::badLine(2), ScriptedReader::entry(seenAt(0., 1)),
                              ScriptedReader::badLine(4), ScriptedReader::entry(seenAt(1., 1))});
  played.play(after(0.));
  played.play(after(5.));
  EXPECT_EQ(2U, played.steps());
  EXPECT_EQ(2U, played.badLines());
  EXPECT_THAT(played.lastError(), HasSubstr("face.csv:4: pose_Rx"));
}

TEST_F(PlaybackTest, EndsWhereTheRecordingIsDamaged)
{
  Playback played = playback({ScriptedReader::entry(seenAt(0., 1)), ScriptedReader::damage(3)});
  played.play(after(1.));
  EXPECT_TRUE(played.ended());
  EXPECT_EQ("face.csv:3: damaged", played.lastError());
}

TEST_F(PlaybackTest, LooksAfterItsCallerInBetween)
{
  Playback played = playback(std::vector<ScriptedReader::Step>(5000, ScriptedReader::badLine(7)));
  played.play(morning);
  EXPECT_FALSE(played.ended());
  EXPECT_GT(5000U, played.badLines());
  EXPECT_LE(played.due(), morning);
  for (int i = 0; i < 10; ++i)
    played.play(morning);
  EXPECT_TRUE(played.ended());
  EXPECT_EQ(5000U, played.badLines());
}

TEST_F(PlaybackTest, EndsAtOnceWithoutSteps)
{
  Playback played = playback({});
  played.play(morning);
  EXPECT_TRUE(played.ended());
  EXPECT_EQ(inNanoseconds(0.), played.reached(after(3.)));
}

TEST_F(PlaybackTest, HasNotes)
{
  KV::recordings::Step step = seenAt(0., 1);
  step.observation.smile->value.value = std::numeric_limits<float>::quiet_NaN();
  Playback played = playback({ScriptedReader::entry(step)}, 1., {"columns that are not read: mood"});
  played.play(morning);
  EXPECT_THAT(played.takeNotes(), ElementsAre("columns that are not read: mood", HasSubstr("left out 1 reading")));
  EXPECT_THAT(played.takeNotes(), IsEmpty());
}

KV::recordings::Step startOf(const std::string& scope)
{
  KV::recordings::Step step;
  step.scopeStarts.push_back({scope, -1});
  return step;
}

TEST_F(PlaybackTest, TakesScopesAtTheTimeThatIsShown)
{
  Playback played = playback(stepsAt({100., 102.}));
  EXPECT_EQ("the recording has not begun", played.takeScopes(startOf("early"), after(0.)));
  played.play(after(0.));
  EXPECT_EQ("", played.takeScopes(startOf("greeting"), after(0.5)));
  played.play(after(2.));
  EXPECT_EQ("the recording has ended", played.takeScopes(startOf("late"), after(3.)));
  EXPECT_THAT(log.times,
              ElementsAre(start + inNanoseconds(100.), start + inNanoseconds(100.5), start + inNanoseconds(102.)));
}

TEST_F(PlaybackTest, RefusesScopesThatAreTooMany)
{
  Playback played = playback(stepsAt({100., 102.}));
  played.play(after(0.));
  for (std::size_t i = 0; i < KV::session::Scopes::mostOpen; ++i)
    EXPECT_EQ("", played.takeScopes(startOf(std::to_string(i)), after(0.5)));
  EXPECT_EQ("more than 100 scopes would be open: stop scopes that are over first",
            played.takeScopes(startOf("one more"), after(0.5)));
}

}  // namespace
