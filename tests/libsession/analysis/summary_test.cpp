#include "libsession/entries.hpp"

#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/summary.hpp>

#include <gtest/gtest.h>

namespace
{

using namespace replaytests;
using KV::session::PersonSummary;

TEST(PersonSummary, WeighsWhatAnUpdateSaidByTheTimeUntilTheNext)
{
  PersonSummary summary;
  summary.add(lookingDownAt(0.));
  summary.add(lookingUpAt(0.1));
  summary.add(lookingDownAt(0.4));
  summary.finish();  // the last holds for as long as the one before: 0.3 s
  EXPECT_NEAR(3. / 7., summary.share(KV::PleasurePositive), 1e-9);
  EXPECT_NEAR(4. / 7., summary.share(KV::PleasureNegative), 1e-9);
  EXPECT_NEAR(3. / 7., summary.share(ko::human::AttentionState::LookingUp), 1e-9);
  EXPECT_NEAR(-1. / 7., summary.valence(), 1e-9);
  EXPECT_NEAR(3. / 7., summary.attention(), 1e-9);
}

TEST(PersonSummary, LetsAnUpdateHoldForASecondAtMost)
{
  PersonSummary summary;
  summary.add(lookingUpAt(0.));
  summary.add(lookingDownAt(60.));
  summary.finish();
  EXPECT_NEAR(0.5, summary.share(KV::PleasurePositive), 1e-9);
}

TEST(PersonSummary, OfASingleUpdateIsWhatItSaid)
{
  PersonSummary summary;
  summary.add(lookingUpAt(3.));
  summary.finish();
  EXPECT_DOUBLE_EQ(1., summary.valence());
  EXPECT_DOUBLE_EQ(1., summary.share(KV::PleasurePositive));
  EXPECT_DOUBLE_EQ(1., summary.seenShare());
  EXPECT_EQ(inNanoseconds(3.), summary.from());
  EXPECT_EQ(inNanoseconds(3.), summary.to());
}

TEST(PersonSummary, OfUpdatesOfTheSameMomentIsNoDivisionByZero)
{
  PersonSummary summary;
  summary.add(lookingUpAt(3.));
  summary.add(lookingDownAt(3.));
  summary.finish();
  EXPECT_DOUBLE_EQ(-1., summary.valence());
  EXPECT_EQ(2U, summary.updates());
}

TEST(PersonSummary, DoesNotCountTheZoneOfSomebodyWhoIsNotSeen)
{
  PersonSummary summary;
  summary.add(lookingUpAt(0.));
  KV::session::Snapshot unseen = lookingUpAt(0.5);
  unseen.seen = false;
  summary.add(unseen);
  summary.finish();
  EXPECT_DOUBLE_EQ(0.5, summary.seenShare());
  EXPECT_DOUBLE_EQ(0.5, summary.share(ko::human::AttentionState::LookingUp));
  EXPECT_DOUBLE_EQ(0.5, summary.lookingAtRobotShare());
  EXPECT_DOUBLE_EQ(1., summary.share(KV::PleasurePositive));
}

TEST(PersonSummary, CountsEngagementByTheBoundaries)
{
  const KV::session::SavedBoundaries saved;
  KV::PersonState::setBinaryBoundaryLookingAtRobot(0.5f);
  KV::PersonState::setBinaryBoundaryStrictlyLookingAtRobot(0.75f);
  PersonSummary summary;
  summary.add(snapshotAt(0., 0.f, 0.49f));
  summary.add(snapshotAt(1., 0.f, 0.5f));
  summary.add(snapshotAt(2., 0.f, 0.74f));
  summary.add(snapshotAt(3., 0.f, 0.75f));
  summary.finish();
  EXPECT_DOUBLE_EQ(0.75, summary.lookingAtRobotShare());
  EXPECT_DOUBLE_EQ(0.25, summary.strictlyLookingAtRobotShare());
}

}  // namespace
