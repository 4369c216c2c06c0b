#include "libsession/entries.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/session/session.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::Session;
using KV::session::Snapshot;

/// Keeps all reports of a session.
struct Log : KV::session::SessionObserver
{
  void personUpdated(const Snapshot& snapshot) override { snapshots.push_back(snapshot); }
  void ambianceUpdated(float agitation, KV::ExcitationState) override { agitations.push_back(agitation); }
  void scopeJudged(const KV::session::ScopeVerdict& verdict) override { verdicts.push_back(verdict); }

  std::vector<Snapshot> snapshots;
  std::vector<float> agitations;
  std::vector<KV::session::ScopeVerdict> verdicts;
};

class SessionTest : public ::testing::Test
{
protected:
  Log log;
};

TEST_F(SessionTest, KeepsTheNameThatAStepGivesThePerson)
{
  Session session({}, {&log});
  KV::recordings::Step named = seenAt(0., 4);
  named.personName = "anna";
  session.play(named);
  session.play(seenAt(0.2, 4));
  session.play(seenAt(0.2, 5));
  session.forget(4);
  session.play(seenAt(0.4, 4));
  std::vector<std::string> names;
  for (const Snapshot& snapshot : log.snapshots)
    names.push_back(snapshot.name);
  EXPECT_EQ((std::vector<std::string>{"anna", "anna", "", ""}), names);
}

TEST_F(SessionTest, ReportsWhatAPersonUpdatedByHandShows)
{
  Session session({}, {&log});
  KV::Person person(4);
  for (int i = 0; i < 20; ++i)
  {
    const KV::recordings::Step entry = seenAt(0.1 * i, 4, 0.05f * static_cast<float>(i));
    session.play(entry);
    person.update(entry.observation);  // the session's clock is that of the thread

    const Snapshot& snapshot = log.snapshots.back();
    const KV::PersonState& state = person.personState;
    EXPECT_EQ(entry.time, snapshot.time);
    EXPECT_EQ(inNanoseconds(0.1 * i), snapshot.sinceStart);
    EXPECT_EQ(4, snapshot.person);
    EXPECT_TRUE(snapshot.seen);
    EXPECT_EQ(state.personValence().value, snapshot.valence.value);
    EXPECT_EQ(state.personValence().confidence, snapshot.valence.confidence);
    EXPECT_EQ(state.personAttention().value, snapshot.attention.value);
    EXPECT_EQ(state.personAttention().confidence, snapshot.attention.confidence);
    EXPECT_EQ(state.personAttentionState(), snapshot.zone);
    EXPECT_EQ(state.personPleasureState(), snapshot.pleasure);
    EXPECT_EQ(state.personValenceBinary().value, snapshot.valenceBinary.value);
    EXPECT_EQ(state.personUnsmoothedValenceBinary().confidence, snapshot.unsmoothedValenceBinary.confidence);
    EXPECT_EQ(state.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription).confidence,
              snapshot.ease.confidence);
  }
  EXPECT_GT(log.snapshots.back().valence.value, 0.2f) << "the smile had no effect: the comparison shows nothing";
}

TEST_F(SessionTest, DoesNotKnowTheValenceOfAFaceWithPointsAndPoseOnly)
{
  KV::recordings::Step entry = entryAt(0.);
  entry.person = 4;
  KV::FacialPoints points;
  for (int i = 0; i < 12; ++i)
    points.setFacialPoint(static_cast<KV::PointDescription>(i), {{1.f, 2.f}, 1.f});
  entry.observation.facialPoints.emplace(entry.time, points);
  entry.observation.headPosture.emplace(entry.time, KV::HeadPosture(0.f, 10.f, 0.f));
  Session session({}, {&log});
  session.play(entry);
  EXPECT_GT(log.snapshots.back().valence.confidence, 0.f);
  EXPECT_NE(0.f, log.snapshots.back().valence.value) << "by the body language";
  EXPECT_FALSE(log.snapshots.back().isValenceKnown());
  EXPECT_TRUE(log.snapshots.back().isAttentionKnown());

  session.play(seenAt(0.1, 4));
  EXPECT_TRUE(log.snapshots.back().isValenceKnown());
}

TEST_F(SessionTest, UpdatesWithEachStepAtTheRecordedRate)
{
  Session session({}, {&log}, KV::session::Cycle::recorded());
  KV::Person person(4);
  for (int i = 0; i < 60; ++i)
  {
    const KV::recordings::Step entry = seenAt(i / 60., 4, 0.01f * static_cast<float>(i));
    session.play(entry);
    person.update(entry.observation);
    ASSERT_EQ(static_cast<std::size_t>(i + 1), log.snapshots.size());
    EXPECT_EQ(person.personState.personValence().value, log.snapshots.back().valence.value);
    EXPECT_EQ(person.personState.personAttention().value, log.snapshots.back().attention.value);
  }
  session.finish();
  EXPECT_EQ(60U, log.snapshots.size());
}

TEST_F(SessionTest, UpdatesWithWhatWaitsAtTheEnd)
{
  Session session({}, {&log});
  session.play(seenAt(0., 1, 0.f));
  session.play(seenAt(0.05, 1, 1.f));
  EXPECT_EQ(1U, log.snapshots.size());
  session.finish();
  ASSERT_EQ(2U, log.snapshots.size());
  EXPECT_EQ(start + milliseconds(50), log.snapshots.back().time);
  EXPECT_GT(log.snapshots.back().valence.value, 0.f);
}

TEST_F(SessionTest, CountsTheUpdateAtTheEndInTheVerdict)
{
  Session session({{"all", inNanoseconds(0.), boost::none}}, {&log});
  session.play(seenAt(0., 1));
  session.play(seenAt(0.05, 1));
  session.finish();
  ASSERT_EQ(1U, log.verdicts.size());
  EXPECT_EQ(2U, log.verdicts[0].of(1).updates);
}

TEST_F(SessionTest, UpdatesAPersonWhoIsGoneWhileTheReadingsAreNew)
{
  Session session({}, {&log});
  session.play(seenAt(0., 1, 0.f));
  session.play(seenAt(0.05, 1, 1.f));
  session.play(seenAt(0.1, 2, 0.f));
  session.play(seenAt(60., 2, 0.f));
  session.finish();
  ASSERT_EQ(4U, log.snapshots.size());
  const Snapshot& last = log.snapshots[2];
  EXPECT_EQ(1, last.person);
  EXPECT_EQ(start + milliseconds(200), last.time) << "due at 100 ms, and a cycle more";
  EXPECT_TRUE(last.seen);
  EXPECT_GT(last.valence.value, 0.f);
  EXPECT_EQ(2, log.snapshots[3].person);
  EXPECT_EQ(start + seconds(60), log.snapshots[3].time);
}

TEST_F(SessionTest, UpdatesAPersonTheSameBesideAnyOthers)
{
  const auto valences = [](bool withOther) {
    Log watched;
    Session session({}, {&watched});
    for (int i = 0; i < 200; ++i)
    {
      const double time = i * 0.0371 + (i > 100 ? 1. : 0.);
      if (withOther)
        session.play(seenAt(time + 0.01, 2, 0.f));
      session.play(seenAt(time + 0.02, 1, 0.005f * static_cast<float>(i)));
    }
    std::vector<std::pair<KV::session::TimePoint, float>> found;
    for (const Snapshot& snapshot : watched.snapshots)
      if (snapshot.person == 1)
        found.emplace_back(snapshot.time, snapshot.valence.value);
    return found;
  };
  EXPECT_EQ(valences(false), valences(true));
}

TEST_F(SessionTest, ForgetsWhatWaitsWithThePerson)
{
  Session session({}, {&log});
  session.play(seenAt(0., 1, 0.f));
  session.play(seenAt(0.05, 1, 1.f));
  session.forget(1);
  session.finish();
  EXPECT_EQ(1U, log.snapshots.size());
}

TEST_F(SessionTest, SetsTheClockToTheTimeOfTheEntry)
{
  Session session({}, {&log});
  session.play(entryAt(3.));
  EXPECT_EQ(start + seconds(3), ko::SystemClock::now());
}

TEST_F(SessionTest, GivesTheClockBackWhenItIsOver)
{
  ko::ManualClock clock(start - seconds(77));
  const ko::ScopedClockSource scope(clock);
  {
    Session session({}, {&log});
    session.play(entryAt(3.));
  }
  EXPECT_EQ(start - seconds(77), ko::SystemClock::now());
}

TEST_F(SessionTest, SaysOfEachUpdateWhetherItHasADate)
{
  Session session({}, {&log});
  session.play(seenAt(0., 4));
  EXPECT_TRUE(log.snapshots.back().isDated);
  session.setDated(false);
  session.play(seenAt(0.1, 4));
  EXPECT_FALSE(log.snapshots.back().isDated);
}

TEST_F(SessionTest, CountsTimeFromItsFirstEntry)
{
  Session session({}, {&log});
  session.play(seenAt(5., 1));
  session.play(seenAt(7.5, 1));
  EXPECT_EQ(inNanoseconds(0.), log.snapshots[0].sinceStart);
  EXPECT_EQ(inNanoseconds(2.5), log.snapshots[1].sinceStart);
  EXPECT_EQ(inNanoseconds(2.5), session.length());
}

TEST_F(SessionTest, AgesAPersonWhoWasNotSeen)
{
  Session session({}, {&log});
  session.play(seenAt(0., 1));
  session.play(notSeenAt(0.1, 1));
  ASSERT_EQ(2U, log.snapshots.size());
  EXPECT_FALSE(log.snapshots[1].seen);
  const float confidence = log.snapshots[0].valence.confidence;
  EXPECT_FLOAT_EQ(confidence * 0.3f, log.snapshots[1].valence.confidence);
}

TEST_F(SessionTest, DoesNotKnowAPersonWhoWasNeverSeen)
{
  Session session({}, {&log});
  session.play(notSeenAt(0., 1));
  EXPECT_TRUE(log.snapshots.empty());
}

TEST_F(SessionTest, KeepsPersonsApart)
{
  Session session({}, {&log});
  session.play(seenAt(0., 1, 1.f));
  session.play(seenAt(0., 2, 0.f));
  EXPECT_NE(log.snapshots[0].valence.value, log.snapshots[1].valence.value);
}

TEST_F(SessionTest, CountsMovementsBeforeItUpdatesTheAmbiance)
{
  Session session({}, {&log});
  KV::recordings::Step entry = entryAt(0.);
  entry.movements = 3;
  entry.ambianceActivity = 0.f;
  session.play(entry);
  ASSERT_EQ(1U, log.agitations.size());
  EXPECT_FLOAT_EQ(0.12f, log.agitations[0]);  // 3 / 5 * 0.2
}

TEST_F(SessionTest, KeepsMovementsForTheNextUpdateOfTheAmbiance)
{
  Session session({}, {&log});
  KV::recordings::Step movements = entryAt(0.);
  movements.movements = 2;
  session.play(movements);
  EXPECT_TRUE(log.agitations.empty());

  KV::recordings::Step activity = entryAt(1.);
  activity.ambianceActivity = 0.05f;
  session.play(activity);
  ASSERT_EQ(1U, log.agitations.size());
  EXPECT_FLOAT_EQ(0.18f, log.agitations[0]);  // 10 * 0.05 * 0.2 + 2 / 5 * 0.2
}

TEST_F(SessionTest, TakesAnAbsurdCountOfMovementsWithoutWaitingForIt)
{
  Session session({}, {&log});
  KV::recordings::Step entry = entryAt(0.);
  entry.movements = std::numeric_limits<int>::max();
  entry.ambianceActivity = 0.f;
  session.play(entry);
  EXPECT_EQ(1.f, log.agitations.at(0));
}

/// The agitation after the step, with the movements counted one by one.
float agitationByHand(const std::vector<int>& movements)
{
  KV::AmbianceState ambiance;
  for (const int count : movements)
    for (int i = 0; i < count; ++i)
      ambiance.incrementMovementDetected();
  ambiance._setAmbientActivityLevel(0.f);
  ambiance.updateAmbiance(-0.4f);  // below 0, so that some movements do not reach the top
  return ambiance.ambientActivityLevel(KV::AmbianceActivity);
}

TEST_F(SessionTest, CountsMovementsToTheBitAsIfOneByOne)
{
  for (const std::vector<int>& movements :
       {std::vector<int>{0}, {1}, {2}, {7}, {3, 0, 4}, {1, 1, 1}, {19, 1}, {24}, {1 << 20}})
  {
    Log watched;
    Session session({}, {&watched});
    for (const int count : movements)
    {
      KV::recordings::Step entry = entryAt(0.);
      entry.movements = count;
      session.play(entry);
    }
    KV::recordings::Step activity = entryAt(1.);
    activity.ambianceActivity = -0.4f;
    session.play(activity);
    ASSERT_EQ(1U, watched.agitations.size());
    EXPECT_EQ(agitationByHand(movements), watched.agitations[0]) << movements.front();
  }
}

TEST_F(SessionTest, TakesManyAbsurdCountsOfMovements)
{
  Session session({}, {&log});
  KV::recordings::Step entry = entryAt(0.);
  entry.movements = std::numeric_limits<int>::max();
  for (int i = 0; i < 1'000'000; ++i)  // one by one this would take a day
    session.play(entry);
  entry.ambianceActivity = 0.f;
  session.play(entry);
  EXPECT_EQ(1.f, log.agitations.at(0));
}

/// Starts that many scopes, "0" and so on.
KV::recordings::Step startingScopes(std::size_t count)
{
  KV::recordings::Step step = entryAt(0.);
  for (std::size_t i = 0; i < count; ++i)
    step.scopeStarts.push_back({std::to_string(i), -1});
  return step;
}

TEST_F(SessionTest, StartsAsManyScopesAsMayBeOpen)
{
  Session session({}, {&log});
  const KV::recordings::Step step = startingScopes(KV::session::Scopes::mostOpen);
  EXPECT_EQ("", session.whyScopesCannotStart(step));
  session.play(step);
  EXPECT_EQ("", session.whyScopesCannotStart(step)) << "all of them start anew";
  EXPECT_EQ("more than 100 scopes would be open: stop scopes that are over first",
            session.whyScopesCannotStart(startingScopes(KV::session::Scopes::mostOpen + 1)));
  EXPECT_EQ("", session.takeNotesOnScopes());
  session.finish();
  EXPECT_EQ(KV::session::Scopes::mostOpen, log.verdicts.size());
}

TEST_F(SessionTest, SaysThatPersonsAreTooManyForTheScopes)
{
  Session session({}, {});
  session.play(startingScopes(KV::session::Scopes::mostOpen + 1));
  KV::recordings::Step step = entryAt(0.);
  for (step.person = 0; *step.person < 5000 && session.hasRoomInScopes(step); ++*step.person)
    session.play(step);
  EXPECT_GE(*step.person, 1000);
  session.play(step);
  session.finish();
  const std::vector<std::string> notes = session.takeNotes();
  ASSERT_EQ(1U, notes.size());
  const std::string& text = notes.front();
  EXPECT_EQ(0U,
            text.find("1 scope was not started, since 100 were open already; the first was '100'; updates were left "
                      "out of scopes "))
      << text;
  EXPECT_EQ(std::vector<std::string>{}, session.takeNotes());
}

TEST_F(SessionTest, SaysWhichScopesItDidNotStart)
{
  Session session({}, {&log});
  session.play(startingScopes(KV::session::Scopes::mostOpen + 1));
  EXPECT_EQ("1 scope was not started, since 100 were open already; the first was '100'", session.takeNotesOnScopes());
  session.play(startingScopes(KV::session::Scopes::mostOpen + 2));
  EXPECT_EQ("2 scopes were not started, since 100 were open already; the first was '100'", session.takeNotesOnScopes());
  EXPECT_EQ("", session.takeNotesOnScopes());
  session.finish();
  EXPECT_EQ(KV::session::Scopes::mostOpen, log.verdicts.size());
}

TEST_F(SessionTest, StartsScopesBeforeTheUpdateAndStopsThemAfterIt)
{
  Session session({}, {&log});
  KV::recordings::Step entry = seenAt(0., 1);
  entry.scopeStarts.push_back({"a", -1});
  entry.scopeStops.push_back("a");
  session.play(entry);
  ASSERT_EQ(1U, log.verdicts.size());
  EXPECT_EQ("a", log.verdicts[0].name);
  EXPECT_EQ(1U, log.verdicts[0].of(1).updates);
}

TEST_F(SessionTest, JudgesEachScopeOnce)
{
  Session session({{"all", inNanoseconds(0.), boost::none}, {"early", inNanoseconds(0.), inNanoseconds(1.)}}, {&log});
  KV::recordings::Step first = seenAt(0., 1);
  first.scopeStarts.push_back({"open", -1});
  session.play(first);
  session.play(seenAt(2., 1));
  session.finish();

  ASSERT_EQ(3U, log.verdicts.size());
  EXPECT_EQ("early", log.verdicts[0].name);
  EXPECT_EQ(1U, log.verdicts[0].of(1).updates);
  EXPECT_EQ("all", log.verdicts[1].name);
  EXPECT_EQ(2U, log.verdicts[1].of(1).updates);
  EXPECT_EQ("open", log.verdicts[2].name);
  EXPECT_EQ(KV::session::ScopeEnd::NotStopped, log.verdicts[2].end);
}

TEST_F(SessionTest, WithoutAnEntryHasNoLength)
{
  Session session({{"all", inNanoseconds(0.), boost::none}}, {&log});
  session.finish();
  EXPECT_EQ(inNanoseconds(0.), session.length());
  EXPECT_TRUE(log.snapshots.empty());
}

TEST_F(SessionTest, ReportsWhoWaitsToObserversThatWatchWaitingOnly)
{
  struct WaitingLog : KV::session::SessionObserver
  {
    explicit WaitingLog(bool watching) : watches(watching) {}
    bool watchesWaiting() const override { return watches; }
    void personWaits(const Snapshot& snapshot) override { waiting.push_back(snapshot); }

    bool watches;
    std::vector<Snapshot> waiting;
  };
  WaitingLog watching(true);
  WaitingLog other(false);
  Session session({}, {&other, &watching});
  session.play(seenAt(0., 4));
  EXPECT_TRUE(watching.waiting.empty()) << "the first step updates at once";
  session.play(seenAt(0.05, 4));
  session.play(notSeenAt(0.06, 4));
  ASSERT_EQ(2U, watching.waiting.size());
  EXPECT_EQ(4, watching.waiting[0].person);
  EXPECT_EQ(start + milliseconds(50), watching.waiting[0].time);
  EXPECT_TRUE(watching.waiting[1].seen);
  EXPECT_TRUE(other.waiting.empty());
}

TEST_F(SessionTest, ReportsForcesToObserversThatWatchThemOnly)
{
  struct ForceLog : KV::session::SessionObserver
  {
    explicit ForceLog(bool watching) : watches(watching) {}
    bool watchesForces() const override { return watches; }
    void forceActed(const KV::Force&) override { ++forces; }
    void zoneChanged(const KV::ZoneChange&) override { ++zoneChanges; }

    bool watches;
    int forces = 0;
    int zoneChanges = 0;
  };
  ForceLog watching(true);
  ForceLog other(false);
  Session session({}, {&other, &watching});
  session.play(seenAt(0., 1));
  EXPECT_LT(0, watching.forces);
  EXPECT_LT(0, watching.zoneChanges);
  EXPECT_EQ(0, other.forces);
  EXPECT_EQ(0, other.zoneChanges);
}

}  // namespace
