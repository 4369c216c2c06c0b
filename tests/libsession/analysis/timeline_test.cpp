#include "libsession/entries.hpp"
#include "support/tablename.hpp"

#include <skeigiot/session/session.hpp>
#include <skeigiot/session/timeline.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <limits>
#include <random>
#include <vector>

namespace
{

using namespace replaytests;
using KV::session::Duration;
using KV::session::Timeline;
using KV::session::TimelineRow;

struct StepCase
{
  const char* name;
  double length;
  double step;
};

class TimelineStep : public ::testing::TestWithParam<StepCase>
{};

TEST_P(TimelineStep, FitsTheLengthOfTheRecording)
{
  Timeline timeline(boost::none);
  timeline.personUpdated(snapshotAt(0.));
  timeline.personUpdated(snapshotAt(GetParam().length));
  EXPECT_EQ(inNanoseconds(GetParam().step), timeline.step());
}

INSTANTIATE_TEST_SUITE_P(Lengths, TimelineStep,
                         ::testing::Values(StepCase{"OneMoment", 0., 0.1},
                                           StepCase{"LastMomentOfFortyRows", 39.999999999, 1.},
                                           StepCase{"FirstMomentOfAFortyFirst", 40., 2.}, StepCase{"AMinute", 60., 2.},
                                           StepCase{"FiveMinutes", 300., 10.}, StepCase{"AQuarterOfAnHour", 900., 30.},
                                           StepCase{"AnHour", 3600., 120.}, StepCase{"ADay", 86400., 3600.},
                                           StepCase{"AMonth", 30. * 86400., 32. * 3600.}),
                         support::RowName());

TEST(TimelineOfManyPersons, TakesTimeInProportion)
{
  constexpr std::int32_t persons = 30000;
  Timeline timeline(boost::none);
  for (std::int32_t person = 0; person < persons; ++person)
  {
    KV::session::Snapshot snapshot = snapshotAt(1e-6 * person);
    snapshot.person = person;
    timeline.personUpdated(snapshot);
  }
  const std::clock_t begin = std::clock();
  EXPECT_EQ(static_cast<std::size_t>(persons), timeline.rows().size());
  EXPECT_LT(std::clock() - begin, 10 * CLOCKS_PER_SEC)
      << "0.1 s or so on an idle machine; each with each takes a minute";
}

/// Updates ten times a second.
void updateUntil(double length, Timeline& timeline, double period = 0.1)
{
  for (int i = 0; i * period <= length; ++i)
    timeline.personUpdated(snapshotAt(i * period));
}

class TimelineStepOfAClip : public ::testing::TestWithParam<StepCase>
{};

TEST_P(TimelineStepOfAClip, IsFineEnoughToSeeSomething)
{
  Timeline timeline(boost::none);
  updateUntil(GetParam().length, timeline);
  EXPECT_EQ(inNanoseconds(GetParam().step), timeline.step());
}

INSTANTIATE_TEST_SUITE_P(Lengths, TimelineStepOfAClip,
                         ::testing::Values(StepCase{"TwoSeconds", 2., 0.1}, StepCase{"FourSeconds", 3.9, 0.1},
                                           StepCase{"MoreThanFourSeconds", 4., 0.2}, StepCase{"EightSeconds", 7.9, 0.2},
                                           StepCase{"TenSeconds", 10., 0.5}, StepCase{"TwentySeconds", 19.9, 0.5},
                                           StepCase{"MoreThanTwentySeconds", 20., 1.}),
                         support::RowName());

TEST(Timeline, HasRowsOfASecondWhereUpdatesAreSeldom)
{
  Timeline seldom(boost::none);
  updateUntil(3., seldom, 1.);
  EXPECT_EQ(inNanoseconds(1.), seldom.step());
  EXPECT_EQ(4U, seldom.rows().at(0).size());

  Timeline twicePerSecond(boost::none);
  updateUntil(3., twicePerSecond, 0.5);
  EXPECT_EQ(inNanoseconds(0.5), twicePerSecond.step());

  Timeline withAGap(boost::none);
  updateUntil(1., withAGap);
  withAGap.personUpdated(snapshotAt(2.));
  EXPECT_EQ(inNanoseconds(1.), withAGap.step());
}

KV::recordings::Step turnedAt(double sinceStart, std::int32_t person, float yaw, float pitch)
{
  KV::recordings::Step step = entryAt(sinceStart);
  step.person = person;
  step.observation.headPosture.emplace(step.time, KV::HeadPosture(yaw, pitch, 0.f));
  return step;
}

TEST(Timeline, KnowsWhatTheBodyLanguageSawMostInEachRow)
{
  using KV::session::HeadDirection;
  Timeline timeline(inNanoseconds(1.));
  timeline.stepBegins(turnedAt(0., 0, 0.f, 0.f));
  timeline.stepBegins(turnedAt(0.01, 0, 0.f, 10.f));
  timeline.stepBegins(turnedAt(0.02, 0, 0.f, 10.f));
  timeline.stepBegins(turnedAt(0.02, 8, 20.f, 0.f));
  timeline.personUpdated(snapshotAt(0.1));
  timeline.stepBegins(turnedAt(1.1, 0, -20.f, 0.f));
  timeline.personUpdated(snapshotAt(1.2));
  timeline.personUpdated(snapshotAt(2.2));
  const std::vector<TimelineRow> rows = timeline.rows().at(0);
  ASSERT_EQ(3U, rows.size());
  EXPECT_TRUE(rows[0].headDirection() == HeadDirection::Up);
  EXPECT_TRUE(rows[1].headDirection() == HeadDirection::Left);
  EXPECT_FALSE(rows[2].headDirection()) << "no posture was reported";
}

struct DirectionCase
{
  const char* name;
  float yaw;
  float pitch;
  const char* text;
  float ease;
};

class EaseSeen : public KV::session::SessionObserver
{
public:
  void personUpdated(const KV::session::Snapshot& snapshot) override { ease = snapshot.ease.level; }

  float ease = 0.f;
};

class HeadDirectionOf : public ::testing::TestWithParam<DirectionCase>
{};

TEST_P(HeadDirectionOf, IsWhatTheBodyLanguageCounts)
{
  const KV::HeadPosture posture(GetParam().yaw, GetParam().pitch, 0.f);
  EXPECT_EQ(GetParam().text, KV::session::headDirectionName(KV::session::directionOf(posture)));

  EaseSeen seen;
  KV::session::Session session({}, {&seen});
  session.play(turnedAt(0., 0, GetParam().yaw, GetParam().pitch));
  EXPECT_EQ(GetParam().ease, seen.ease);
}

INSTANTIATE_TEST_SUITE_P(Postures, HeadDirectionOf,
                         ::testing::Values(DirectionCase{"Up", 0.f, 6.f, "head up", -0.5f},
                                           DirectionCase{"UpAndRight", 20.f, 6.f, "head up", -0.5f},
                                           DirectionCase{"Down", 0.f, -6.f, "head down", 0.5f},
                                           DirectionCase{"DownAndLeft", -20.f, -6.f, "head down", 0.5f},
                                           DirectionCase{"Left", -6.f, 0.f, "head left", -0.5f},
                                           DirectionCase{"Right", 6.f, 0.f, "head right", 0.5f},
                                           DirectionCase{"Straight", 5.9f, 5.9f, "straight", 0.f}),
                         support::RowName());

TEST(Timeline, MergesRowsIntoTheSameAsIfItHadKnownTheLengthBefore)
{
  constexpr std::mt19937::result_type seed = 3;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> lengthExponent(0., 6.);
  std::uniform_real_distribution<double> share(0., 1.);

  for (int round = 0; round < 200; ++round)
  {
    const double length = std::pow(10., lengthExponent(random));
    std::vector<double> times{0., length};
    for (int i = 0; i < 300; ++i)
      times.push_back(length * share(random));
    std::sort(times.begin(), times.end());

    Timeline learning(boost::none);
    for (const double time : times)
      learning.personUpdated(snapshotAt(time, static_cast<float>(time / length)));
    Timeline knowing(learning.step());
    for (const double time : times)
      knowing.personUpdated(snapshotAt(time, static_cast<float>(time / length)));

    const std::vector<TimelineRow> learned = learning.rows().at(0);
    const std::vector<TimelineRow> known = knowing.rows().at(0);
    ASSERT_EQ(known.size(), learned.size()) << "length " << length;
    ASSERT_LE(learned.size(), 40U) << "length " << length;
    for (std::size_t i = 0; i < known.size(); ++i)
    {
      ASSERT_EQ(known[i].from(), learned[i].from()) << "length " << length;
      ASSERT_NEAR(known[i].valence(), learned[i].valence(), 1e-12) << "sums in another order, double precision";
    }
  }
}

KV::Force touchFrom(float before, float after)
{
  KV::Force force{};
  force.source = "Touch emotion";
  force.quantity = KV::ValenceQuantity;
  force.before = before;
  force.after = after;
  return force;
}

TEST(Timeline, KnowsWhatMovedEachRowAlsoWhereRowsWereMerged)
{
  Timeline timeline(boost::none);
  timeline.forceActed(touchFrom(0.f, 0.5f));
  timeline.personUpdated(snapshotAt(0.));
  timeline.forceActed(touchFrom(0.5f, 0.25f));
  timeline.personUpdated(snapshotAt(1.));
  KV::session::Snapshot other = snapshotAt(2.);
  other.person = 8;
  timeline.personUpdated(other);
  timeline.personUpdated(snapshotAt(300.));

  const std::vector<TimelineRow> rows = timeline.rows().at(0);
  ASSERT_EQ(2U, rows.size());
  const auto changes = rows[0].changes().of(KV::ValenceQuantity);
  ASSERT_EQ(1U, changes.size());
  EXPECT_EQ("Touch emotion", changes[0].source);
  EXPECT_EQ(0.75, changes[0].distance());
  EXPECT_EQ(0.25, changes[0].net());
  EXPECT_TRUE(rows[1].changes().of(KV::ValenceQuantity).empty());
  EXPECT_TRUE(timeline.rows().at(8).at(0).changes().of(KV::ValenceQuantity).empty()) << "it was somebody else's";
}

TEST(Timeline, TakesTheLongestTimesThatAClockCanShow)
{
  Timeline timeline(boost::none);
  timeline.personUpdated(snapshotAt(0.));
  KV::session::Snapshot last = snapshotAt(0.);
  last.sinceStart = Duration(std::numeric_limits<Duration::rep>::max());
  timeline.personUpdated(last);
  EXPECT_LE(timeline.rows().at(0).size(), 40U);
  EXPECT_LT(last.sinceStart / timeline.step(), 40);
}

TEST(Timeline, KeepsAStepThatWasGiven)
{
  Timeline timeline(inNanoseconds(0.5));
  for (int i = 0; i < 100; ++i)
    timeline.personUpdated(snapshotAt(0.5 * i));
  EXPECT_EQ(inNanoseconds(0.5), timeline.step());
  EXPECT_EQ(100U, timeline.rows().at(0).size());
}

TEST(Timeline, HasNoRowsWherePersonsWereNotUpdated)
{
  Timeline timeline(boost::none);
  timeline.personUpdated(snapshotAt(0.));
  timeline.personUpdated(snapshotAt(5.));
  const std::vector<TimelineRow> rows = timeline.rows().at(0);
  ASSERT_EQ(2U, rows.size());
  EXPECT_EQ(inNanoseconds(5.), rows[1].from());
}

TEST(Timeline, HasRowsOfTheSameLengthForAllPersons)
{
  Timeline timeline(boost::none);
  timeline.personUpdated(snapshotAt(0.));
  KV::session::Snapshot other = snapshotAt(1.5);
  other.person = 8;
  timeline.personUpdated(other);
  timeline.personUpdated(snapshotAt(300.));
  EXPECT_EQ(inNanoseconds(0.), timeline.rows().at(8).at(0).from());
  EXPECT_EQ(inNanoseconds(300.), timeline.rows().at(0).at(1).from());
}

TEST(TimelineRow, HasTheMeansOfItsUpdates)
{
  TimelineRow row(Duration(0));
  row.add(snapshotAt(0., 1.f, 0.5f));
  row.add(snapshotAt(0., 0.f, 1.f));
  EXPECT_DOUBLE_EQ(0.5, row.valence());
  EXPECT_DOUBLE_EQ(0.75, row.attention());
  EXPECT_DOUBLE_EQ(1., row.valenceConfidence());
}

TEST(TimelineRow, AveragesAnEstimateWhileItIsKnown)
{
  TimelineRow row(Duration(0));
  KV::session::Snapshot unknown = snapshotAt(0., -1.f, 0.f);
  unknown.valence.confidence = 0.f;
  unknown.attention.confidence = 0.f;
  row.add(unknown);
  EXPECT_FALSE(row.isValenceKnown());
  EXPECT_FALSE(row.isAttentionKnown());
  EXPECT_TRUE(std::isnan(row.valence()));
  EXPECT_TRUE(std::isnan(row.attention()));

  TimelineRow later(Duration(1));
  later.add(snapshotAt(1., 0.5f, 0.75f));
  row.add(later);
  EXPECT_TRUE(row.isValenceKnown());
  EXPECT_TRUE(row.isAttentionKnown());
  EXPECT_DOUBLE_EQ(0.5, row.valence());
  EXPECT_DOUBLE_EQ(1., row.valenceConfidence());
  EXPECT_DOUBLE_EQ(0.75, row.attention());
  EXPECT_DOUBLE_EQ(1., row.attentionConfidence());
}

TEST(TimelineRow, HasTheZoneAndTheStateOfPleasureOfMostUpdates)
{
  TimelineRow row(Duration(0));
  KV::session::Snapshot snapshot = snapshotAt(0.);
  snapshot.zone = ko::human::AttentionState::LookingDown;
  snapshot.pleasure = KV::PleasurePositive;
  row.add(snapshot);
  row.add(snapshot);
  row.add(snapshotAt(0.));
  EXPECT_EQ(ko::human::AttentionState::LookingDown, row.zone());
  EXPECT_EQ(KV::PleasurePositive, row.pleasure());
}

TEST(TimelineRow, IsSeenIfThePersonWasInHalfOfItsUpdates)
{
  KV::session::Snapshot unseen = snapshotAt(0.);
  unseen.seen = false;
  TimelineRow row(Duration(0));
  row.add(unseen);
  EXPECT_FALSE(row.seen());
  row.add(snapshotAt(0.));
  EXPECT_TRUE(row.seen());
  row.add(unseen);
  EXPECT_FALSE(row.seen());
}

}  // namespace
