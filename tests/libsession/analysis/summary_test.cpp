#include "summary.hpp"

#include "entries.hpp"

#include "support/restoredboundaries.hpp"
#include "support/tablename.hpp"

#include <gmock/gmock.h>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::Not;
using tools::PersonSummary;
using tools::Style;
using tools::Summary;

tools::Snapshot lookingDownAt(double sinceStart)
{
  tools::Snapshot snapshot = snapshotAt(sinceStart, -1.f, 0.f);
  snapshot.zone = ko::human::AttentionState::LookingDown;
  snapshot.pleasure = KV::PleasureNegative;
  return snapshot;
}

tools::Snapshot lookingUpAt(double sinceStart)
{
  tools::Snapshot snapshot = snapshotAt(sinceStart, 1.f, 1.f);
  snapshot.zone = ko::human::AttentionState::LookingUp;
  snapshot.pleasure = KV::PleasurePositive;
  return snapshot;
}

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
  tools::Snapshot unseen = lookingUpAt(0.5);
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
  const support::RestoredBoundaries restored;
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

TEST(Summary, DescribesAPerson)
{
  Summary summary;
  summary.personUpdated(lookingUpAt(0.));
  summary.personUpdated(lookingUpAt(0.5));
  summary.personUpdated(lookingDownAt(1.));
  summary.finish();
  EXPECT_EQ(
      "  span       0:00.0 to 0:01.0, 3 updates, seen for 100 % of the time\n"
      "  valence    +0.33 on average, with confidence 1.00\n"
      "  attention   0.67 on average, with confidence 1.00\n"
      "  engaged    67 % of the time (attention from 0.60), strictly 67 % (from 0.90)\n"
      "  zone       LookingUp 67 %, LookingDown 33 %\n"
      "  pleasure   positive 67 %, negative 33 %\n",
      summary.describe(0, 80, Style(false)));
}

struct VerdictCase
{
  const char* name;
  tools::ScopeVerdict verdict;
  const char* line;
};

class SummaryOfAVerdict : public ::testing::TestWithParam<VerdictCase>
{};

TEST_P(SummaryOfAVerdict, SaysHowItCameAbout)
{
  Summary summary;
  summary.personUpdated(snapshotAt(0.));
  summary.scopeJudged(GetParam().verdict);
  summary.finish();
  EXPECT_THAT(summary.describe(0, 80, Style(false)), HasSubstr(std::string("  verdict    ") + GetParam().line + "\n"));
}

std::map<std::int32_t, tools::ScopeVerdict::OfPerson> positiveAfter(std::size_t updates)
{
  return {{0, {"positive", updates}}};
}

const tools::Duration two = inNanoseconds(2.);
const tools::Duration four = inNanoseconds(4.);

INSTANTIATE_TEST_SUITE_P(
    Ends, SummaryOfAVerdict,
    ::testing::Values(VerdictCase{"Complete",
                                  {"a", two, four, tools::ScopeEnd::Complete, positiveAfter(9)},
                                  "positive  'a' (0:02.0 to 0:04.0, 9 updates)"},
                      VerdictCase{"NotStopped",
                                  {"a", two, four, tools::ScopeEnd::NotStopped, positiveAfter(1)},
                                  "positive  'a' (0:02.0 to 0:04.0, 1 update, not stopped)"},
                      VerdictCase{"CutShort",
                                  {"a", two, four, tools::ScopeEnd::CutShort, positiveAfter(9)},
                                  "positive  'a' (0:02.0 to 0:04.0, 9 updates, cut short by the end)"},
                      VerdictCase{"NotReached",
                                  {"a", two, four, tools::ScopeEnd::NotReached, {}},
                                  "-         'a' (from 0:02.0: the recording ended before)"},
                      VerdictCase{"NotOpen",
                                  {"a", two, two, tools::ScopeEnd::NotOpen, {}},
                                  "error     'a' (at 0:02.0: stopped, but not started)"},
                      VerdictCase{"Empty",
                                  {"a", two, four, tools::ScopeEnd::Complete, {}},
                                  "neutral   'a' (0:02.0 to 0:04.0, 0 updates, which counts as neutral)"}),
    support::RowName());

TEST(Summary, TellsScopesByTheirStartAndLongerOnesFirst)
{
  Summary summary;
  summary.personUpdated(snapshotAt(0.));
  summary.scopeJudged({"late", two, four, tools::ScopeEnd::Complete, positiveAfter(1)});
  summary.scopeJudged({"short", inNanoseconds(0.), two, tools::ScopeEnd::Complete, positiveAfter(1)});
  summary.scopeJudged({"long", inNanoseconds(0.), four, tools::ScopeEnd::Complete, positiveAfter(1)});
  summary.finish();
  const std::string text = summary.describe(0, 80, Style(false));
  EXPECT_LT(text.find("'long'"), text.find("'short'"));
  EXPECT_LT(text.find("'short'"), text.find("'late'"));
}

TEST(Summary, LetsNoControlCharacterOfAScopeThrough)
{
  Summary summary;
  summary.personUpdated(snapshotAt(0.));
  summary.scopeJudged({"a\033[31m\n", two, four, tools::ScopeEnd::Complete, positiveAfter(1)});
  summary.finish();
  EXPECT_THAT(summary.describe(0, 80, Style(false)), Not(HasSubstr("\033")));
}

TEST(Summary, SaysNothingOfAnAmbianceThatWasNotRecorded)
{
  EXPECT_EQ("", Summary().describeAmbiance(Style(false)));
}

TEST(Summary, DescribesTheAmbiance)
{
  Summary summary;
  summary.ambianceUpdated(0.1f, KV::AmbianceNotExcited);
  summary.ambianceUpdated(0.5f, KV::AmbianceExcited);
  EXPECT_EQ("Room\n  ambiance   agitation 0.30 on average and 0.50 at the end, excited in 50 % of 2 updates\n",
            summary.describeAmbiance(Style(false)));
}

}  // namespace
