#include "libsession/entries.hpp"

#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/summary.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

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

TEST(PersonSummary, AveragesAnEstimateWhileItIsKnown)
{
  PersonSummary summary;
  summary.add(snapshotAt(0., 0.5f, 0.75f));
  KV::session::Snapshot unknown = snapshotAt(1., -1.f, 0.f);
  unknown.valence.confidence = 0.f;
  unknown.attention.confidence = 0.f;
  summary.add(unknown);
  summary.finish();
  EXPECT_TRUE(summary.isValenceKnown());
  EXPECT_DOUBLE_EQ(0.5, summary.valence());
  EXPECT_DOUBLE_EQ(1., summary.valenceConfidence());
  EXPECT_DOUBLE_EQ(0.5, summary.valenceKnownShare());
  EXPECT_TRUE(summary.isAttentionKnown());
  EXPECT_DOUBLE_EQ(0.75, summary.attention());
  EXPECT_DOUBLE_EQ(1., summary.attentionConfidence());
  EXPECT_DOUBLE_EQ(0.5, summary.attentionKnownShare());
  EXPECT_DOUBLE_EQ(0.5, summary.lookingAtRobotShare()) << "of the whole time";
}

TEST(PersonSummary, HasNoMeanOfWhatWasNeverKnown)
{
  PersonSummary summary;
  KV::session::Snapshot unknown = snapshotAt(0., 0.5f, 0.75f);
  unknown.hadValenceEvidence = false;
  unknown.attention.confidence = 0.f;
  summary.add(unknown);
  summary.finish();
  EXPECT_FALSE(summary.isValenceKnown());
  EXPECT_TRUE(std::isnan(summary.valence()));
  EXPECT_TRUE(std::isnan(summary.valenceConfidence()));
  EXPECT_DOUBLE_EQ(0., summary.valenceKnownShare());
  EXPECT_FALSE(summary.isAttentionKnown());
  EXPECT_TRUE(std::isnan(summary.attention()));
  EXPECT_TRUE(std::isnan(summary.attentionConfidence()));
  EXPECT_TRUE(std::isnan(summary.lookingAtRobotShare()));
  EXPECT_TRUE(std::isnan(summary.strictlyLookingAtRobotShare()));
}

TEST(Summary, ListsVerdictsByTheBeginningAndTheLongerOneFirst)
{
  KV::session::Summary summary;
  const auto judge = [&](const char* scope, double from, double to) {
    summary.scopeJudged({scope, inNanoseconds(from), inNanoseconds(to), KV::session::ScopeEnd::Complete, {}});
  };
  judge("late", 2., 3.);
  judge("short", 0., 1.);
  judge("long", 0., 5.);
  judge("short as well", 0., 1.);
  summary.finish();
  std::vector<std::string> names;
  for (const KV::session::ScopeVerdict& verdict : summary.verdicts())
    names.push_back(verdict.name);
  EXPECT_EQ((std::vector<std::string>{"long", "short", "short as well", "late"}), names);
}

}  // namespace
