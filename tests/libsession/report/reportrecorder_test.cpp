#include "report/reportrecorder.hpp"
#include <skeigiot/session/session.hpp>

#include <boost/chrono/duration.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace
{

using boost::chrono::milliseconds;
using KV::recordings::Step;
using KV::session::Moment;
using KV::session::ReportRecorder;

constexpr KV::session::TimePoint beginning{boost::chrono::seconds(1577836800)};

/// A person who smiles more and less, and looks aside more and less.
Step stepAt(int number)
{
  Step entry;
  entry.time = beginning + milliseconds(100 * number);
  entry.person = 1;
  const auto phase = static_cast<float>(number);
  entry.observation.smile = KV::Timestamped(entry.time, KV::Smile(0.5f + 0.5f * std::sin(phase), 0.9f));
  KV::Expressions expressions;
  expressions.joy = {0.5f + 0.5f * std::sin(phase), 0.9f};
  expressions.sorrow = {0.5f - 0.5f * std::sin(phase), 0.9f};
  entry.observation.expressions = KV::Timestamped(entry.time, expressions);
  entry.observation.headPosture = KV::Timestamped(entry.time, KV::HeadPosture(20.f * std::cos(phase / 7.f), 2.f, 0.f));
  return entry;
}

void play(ReportRecorder& recorder, int steps)
{
  KV::session::Session session({}, {&recorder});
  for (int i = 0; i < steps; ++i)
    session.play(stepAt(i));
  session.finish();
  recorder.finish();
}

TEST(ReportRecorder, KeepsTheForcesOfEachUpdate)
{
  ReportRecorder recorder{ReportRecorder::Limits()};
  play(recorder, 30);
  const auto& moments = recorder.moments().at(1);
  ASSERT_EQ(30U, moments.size());
  EXPECT_EQ(KV::session::Duration(0), recorder.stretch());

  float valence = 0.f;
  std::size_t forces = 0;
  for (const Moment& moment : moments)
  {
    for (const KV::session::MomentForce& force : moment.forces)
    {
      if (force.quantity != KV::ValenceQuantity)
        continue;
      EXPECT_EQ(valence, force.before);
      valence = force.after;
      ++forces;
    }
    EXPECT_EQ(valence, moment.snapshot.valence.value);
  }
  EXPECT_LT(30U, forces);
}

TEST(ReportRecorder, SumsUpHowFarEachSourceMovedTheValence)
{
  ReportRecorder recorder{ReportRecorder::Limits()};
  play(recorder, 30);
  double sum = 0.;
  for (const Moment& moment : recorder.moments().at(1))
    for (const KV::session::MomentChange& change : moment.changes)
      sum += change.quantity == KV::ValenceQuantity ? change.distance : 0.;
  const double last = static_cast<double>(recorder.moments().at(1).back().snapshot.valence.value);
  EXPECT_NEAR(last, sum, 1e-9);  // sums of doubles; it began at 0
}

TEST(ReportRecorder, ThinsALongRecordingAndKeepsItsExtremes)
{
  constexpr int steps = 3000;
  ReportRecorder whole{ReportRecorder::Limits()};
  play(whole, steps);
  ReportRecorder thinned{ReportRecorder::Limits{600, 1'000'000}};
  play(thinned, steps);

  const auto& all = whole.moments().at(1);
  const auto& kept = thinned.moments().at(1);
  ASSERT_EQ(static_cast<std::size_t>(steps), all.size());
  EXPECT_LE(kept.size(), 600U);
  EXPECT_GT(thinned.stretch(), KV::session::Duration(0));
  const auto byValence = [](const Moment& left, const Moment& right) {
    return left.snapshot.valence.value < right.snapshot.valence.value;
  };
  const auto [least, greatest] = std::minmax_element(all.begin(), all.end(), byValence);
  const auto [leastKept, greatestKept] = std::minmax_element(kept.begin(), kept.end(), byValence);
  EXPECT_EQ(least->snapshot.valence.value, leastKept->snapshot.valence.value);
  EXPECT_EQ(greatest->snapshot.valence.value, greatestKept->snapshot.valence.value);
  EXPECT_EQ(all.back().snapshot.sinceStart, kept.back().snapshot.sinceStart);
}

TEST(ReportRecorder, ThinsARecordingWithManyForces)
{
  ReportRecorder recorder{ReportRecorder::Limits{1'000'000, 3000}};
  play(recorder, 1000);
  std::size_t forces = 0;
  for (const Moment& moment : recorder.moments().at(1))
    forces += moment.forces.size();
  EXPECT_LE(forces, 3000U);
  EXPECT_GT(forces, 0U);
}

TEST(ReportRecorder, LooksAtEachMomentOfManyPersonsAFewTimesOnly)
{
  constexpr std::size_t persons = 20'000;
  ReportRecorder recorder{ReportRecorder::Limits{100, 1000}};
  for (std::size_t i = 0; i < persons; ++i)
  {
    Step step = stepAt(static_cast<int>(i));
    step.person = static_cast<std::int32_t>(i);
    recorder.stepBegins(step);
    KV::session::Snapshot snapshot;
    snapshot.time = step.time;
    snapshot.sinceStart = step.time - beginning;
    snapshot.person = *step.person;
    recorder.personUpdated(snapshot);
  }
  recorder.finish();
  EXPECT_EQ(persons, recorder.moments().size()) << "of each person the only moment stays";
  EXPECT_LE(recorder.thinningCost(), 8 * persons);
}

TEST(ReportRecorder, LooksAtEachMomentOfALongRecordingAFewTimesOnly)
{
  constexpr int steps = 20'000;
  ReportRecorder recorder{ReportRecorder::Limits{500, 100'000}};
  play(recorder, steps);
  EXPECT_LE(recorder.moments().at(1).size(), 500U);
  EXPECT_LE(recorder.thinningCost(), 8U * steps);
}

TEST(ReportRecorder, KnowsTheRoomAndTheScopes)
{
  ReportRecorder recorder{ReportRecorder::Limits()};
  KV::session::Session session({{"all", KV::session::Duration(0), boost::none}}, {&recorder});
  for (int i = 0; i < 10; ++i)
  {
    Step entry = stepAt(i);
    entry.ambianceActivity = 0.1f;
    session.play(entry);
  }
  session.finish();
  recorder.finish();
  ASSERT_EQ(10U, recorder.ambiance().size());
  EXPECT_EQ(milliseconds(900), recorder.ambiance().back().time);
  ASSERT_EQ(1U, recorder.scopes().size());
  EXPECT_EQ(10U, recorder.scopes().front().of(1).updates);
}

TEST(ReportRecorder, ListsScopesByTheirBeginningAndLongerOnesFirst)
{
  ReportRecorder recorder{ReportRecorder::Limits()};
  KV::session::Session session({{"late", milliseconds(500), KV::session::Duration(milliseconds(600))},
                                {"short", KV::session::Duration(0), KV::session::Duration(milliseconds(200))},
                                {"all", KV::session::Duration(0), boost::none}},
                               {&recorder});
  for (int i = 0; i < 10; ++i)
    session.play(stepAt(i));
  session.finish();
  recorder.finish();
  ASSERT_EQ(3U, recorder.scopes().size());
  EXPECT_EQ("all", recorder.scopes()[0].name);
  EXPECT_EQ("short", recorder.scopes()[1].name);
  EXPECT_EQ("late", recorder.scopes()[2].name);
}

TEST(ReportRecorder, ThinsTheRoomAndKeepsItsExtremes)
{
  ReportRecorder::Limits limits;
  limits.moments = 30;
  ReportRecorder recorder{limits};
  constexpr int steps = 1000;
  KV::session::Session session({}, {&recorder});
  for (int i = 0; i < steps; ++i)
  {
    Step entry = stepAt(i);
    entry.ambianceActivity = i == 500 ? 1.f : 0.f;
    session.play(entry);
  }
  session.finish();
  const auto isCalmer = [](const auto& left, const auto& right) { return left.agitation < right.agitation; };
  const std::vector<ReportRecorder::Ambiance> all = recorder.ambiance();
  ASSERT_EQ(std::size_t{steps}, all.size());
  recorder.finish();
  const std::vector<ReportRecorder::Ambiance>& kept = recorder.ambiance();
  EXPECT_LE(kept.size(), 3U * 11U) << "the first, the least and the greatest of each of 10 stretches and a rest";
  ASSERT_GT(recorder.stretch(), KV::session::Duration(0));
  EXPECT_GT(static_cast<std::int64_t>(kept.size()), all.back().time / recorder.stretch())
      << "the first of each stretch";
  EXPECT_EQ(all.front().time, kept.front().time);
  const auto greatest = std::max_element(all.begin(), all.end(), isCalmer);
  const auto keptGreatest = std::max_element(kept.begin(), kept.end(), isCalmer);
  EXPECT_EQ(greatest->agitation, keptGreatest->agitation);
  EXPECT_EQ(greatest->time, keptGreatest->time);
  EXPECT_TRUE(std::is_sorted(kept.begin(), kept.end(),
                             [](const auto& left, const auto& right) { return left.time < right.time; }));
}

}  // namespace
